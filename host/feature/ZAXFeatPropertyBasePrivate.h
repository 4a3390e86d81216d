#ifndef ZAXFEATPROPERTYBASEPRIVATE_H
#define ZAXFEATPROPERTYBASEPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXFeatPropertyBase.h"
#include "ZAXGeoGeometryRef.h"

class ZAXFeatValuePropertyBase;
struct ZAXFeatValueAccess;

class ZAXFeatPropertyBasePrivate
{
public:
    static ZAXFeatPropertyBasePrivate& Get(const ZAXFeatPropertyBase& property) { return *property.d_ptr; }

    ZAXFeatObject* feature;
    int index;
    bool isInput;
    /// What an object property points at; null for properties of other kinds.
    ZAXFeatObject* pointed = nullptr;
    /// What an object property would point at, were it there.
    ZAXGeoGeometryRef unavailable = {};
    /// How to get at the value of a bound value property; null for all others.
    const ZAXFeatValueAccess* access = nullptr;
    /// The next one of the feature's properties with such an access.
    ZAXFeatValuePropertyBase* nextValue = nullptr;
};

#endif
