#ifndef ZAXGEOCONTAINERPRIVATE_H
#define ZAXGEOCONTAINERPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXGeoContainer.h"

#include <QHash>
#include <QSet>

/// The identities of a container: who has which id, and which id comes next.
class ZAXGEOMETRY_EXPORT ZAXGeoContainerPrivate
{
public:
    static ZAXGeoContainerPrivate& Get(const ZAXGeoContainer& container) { return *container.d_ptr; }

    /// The id for a new geometry; never given twice. \throws ZAXSysException when there are none left, as after a file
    /// that claims so.
    quint64 NextId();
    /// Makes \a geometry known under \a id. \throws ZAXSysException when the id is taken.
    void Insert(quint64 id, ZAXGeoGeometry* geometry);
    /// Forgets \a geometry; harmless when it is not known.
    void Remove(quint64 id, const ZAXGeoGeometry* geometry);

    QHash<quint64, ZAXGeoGeometry*> geometries;
    /// Geometries that are kept although they were removed. References find them only while former states, from
    /// when they had not been, are restored.
    QHash<quint64, ZAXGeoGeometry*> aside;
    bool findsAside = false;
    /// The ids of geometries that only stand for ones that could not be made.
    QSet<quint64> placeholders;
    quint64 lastId = 0;
};

#endif
