#ifndef ZAXFEATPROPERTYBASEPRIVATE_H
#define ZAXFEATPROPERTYBASEPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXFeatObjectPropertyBase.h"
#include "ZAXFeatValuePropertyBase.h"

/// What the host alone does with the data of properties.
class ZAXFeatPropertyBasePrivate
{
public:
    static int Index(const ZAXFeatPropertyBase& property) { return property.m_index; }
    /// How to get at the value; null for a property without a binding.
    static const ZAXFeatValueAccess* Access(const ZAXFeatValuePropertyBase& property) { return property.m_access; }
    /// The next one of the feature's properties with such an access.
    static ZAXFeatValuePropertyBase*& Next(ZAXFeatValuePropertyBase& property) { return property.m_next; }
    /// Has the property point at nothing, since what it points at is no more.
    static void ForgetPointed(ZAXFeatObjectPropertyBase& property) { property.m_pointed = nullptr; }
};

#endif
