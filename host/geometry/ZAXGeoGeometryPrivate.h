#ifndef ZAXGEOGEOMETRYPRIVATE_H
#define ZAXGEOGEOMETRYPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXGeoGeometry.h"

#include <QPointer>

#include "ZAXGeoContainer.h"

class ZAXGEOMETRY_EXPORT ZAXGeoGeometryPrivate
{
public:
    static ZAXGeoGeometryPrivate& Get(const ZAXGeoGeometry& geometry) { return *geometry.d_ptr; }

    /// Takes \a geometry out of its container's index, so that references no longer find it, and deletes it unless
    /// somebody still holds a reference count on it.
    static void Discard(ZAXGeoGeometry* geometry);

    QPointer<ZAXGeoContainer> container;
    quint64 id = 0;
    int references = 0;
    bool isDiscarded = false;
};

#endif
