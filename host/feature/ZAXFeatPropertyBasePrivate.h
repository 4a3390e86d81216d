#ifndef ZAXFEATPROPERTYBASEPRIVATE_H
#define ZAXFEATPROPERTYBASEPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXFeatPropertyBase.h"
#include "ZAXGeoGeometryRef.h"

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
};

#endif
