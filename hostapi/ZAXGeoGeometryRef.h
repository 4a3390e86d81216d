#ifndef ZAXGEOGEOMETRYREF_H
#define ZAXGEOGEOMETRYREF_H

#include "ZAXGeoExport.h"

#include <QHashFunctions>
#include <QMetaType>

class QDataStream;
class ZAXGeoGeometry;

/// A reference to a geometry of a container, by the geometry's id; it may outlive the geometry. Ids are never used
/// again within a container. A value; the default-constructed reference is invalid and refers to nothing.
class ZAXGEOMETRY_EXPORT ZAXGeoGeometryRef
{
public:
    ZAXGeoGeometryRef() noexcept = default;
    /// A reference to \a geometry; invalid for null.
    explicit ZAXGeoGeometryRef(const ZAXGeoGeometry* geometry) noexcept;

    /// The reference to the geometry with \a id; 0 gives an invalid one.
    static ZAXGeoGeometryRef FromId(quint64 id) noexcept
    {
        ZAXGeoGeometryRef reference;
        reference.m_id = id;
        return reference;
    }

    /// True when the reference was made from a geometry, whether that still exists or not.
    bool IsValid() const noexcept { return m_id != 0; }
    /// The id of the geometry, 0 for an invalid reference.
    quint64 GetId() const noexcept { return m_id; }

    friend bool operator==(const ZAXGeoGeometryRef& a, const ZAXGeoGeometryRef& b) noexcept { return a.m_id == b.m_id; }
    friend bool operator!=(const ZAXGeoGeometryRef& a, const ZAXGeoGeometryRef& b) noexcept { return a.m_id != b.m_id; }
    friend size_t qHash(const ZAXGeoGeometryRef& reference, size_t seed = 0) noexcept
    {
        return qHash(reference.m_id, seed);
    }

private:
    quint64 m_id = 0;
};

/// On the data stream of a ZAXGeoStream the reference goes through the stream's reference table (a quint32, the
/// reference's place in the table counted from 1, 0 for an invalid one); on any other stream it is its id, a quint64.
/// Reading a place outside the table gives an invalid reference and the status QDataStream::ReadCorruptData.
ZAXGEOMETRY_EXPORT QDataStream& operator<<(QDataStream& stream, const ZAXGeoGeometryRef& reference);
ZAXGEOMETRY_EXPORT QDataStream& operator>>(QDataStream& stream, ZAXGeoGeometryRef& reference);

Q_DECLARE_METATYPE(ZAXGeoGeometryRef)

#endif
