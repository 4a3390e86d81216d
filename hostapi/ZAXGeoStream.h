#ifndef ZAXGEOSTREAM_H
#define ZAXGEOSTREAM_H

#include "ZAXGeoExport.h"
#include "ZAXGeoGeometryRef.h"

#include <QByteArray>
#include <QDataStream>
#include <QHash>
#include <QList>

#include <functional>
#include <memory>

class ZAXGeoContainer;
class ZAXGeoStreamPrivate;

/// The stream that geometries save their fields to and load them from, one geometry's payload at a time.
///
/// Its data stream is pinned to QDataStream::Qt_6_4, big endian and double precision. References do not stand in the
/// payload but in a table beside it (see the stream operators of ZAXGeoGeometryRef), so that they can be mapped
/// without knowing what the payload means.
class ZAXGEOMETRY_EXPORT ZAXGeoStream
{
public:
    /// A stream to write to, for geometries of \a container.
    explicit ZAXGeoStream(ZAXGeoContainer* container);
    /// A stream that reads \a payload with its table of \a references, for geometries of \a container.
    ZAXGeoStream(ZAXGeoContainer* container, const QByteArray& payload,
                 const QList<ZAXGeoGeometryRef>& references = {});
    ~ZAXGeoStream();

    /// Makes the stream as new, to write the fields of another geometry.
    void Restart();
    /// Makes the stream as new, to read another \a payload with its table of \a references. What was set stays: the
    /// versions, the map, what is unavailable.
    void Restart(const QByteArray& payload, const QList<ZAXGeoGeometryRef>& references);

    ZAXGeoStream(const ZAXGeoStream&) = delete;
    ZAXGeoStream& operator=(const ZAXGeoStream&) = delete;

    /// The container that references of this stream are resolved in; may be null.
    ZAXGeoContainer* GetContainer() const;

    /// The version of the class \a type in the program that wrote the stream. Without a version table that is this
    /// program, and the version the "version" class information of \a type itself; with one, a class missing in the
    /// table has version 1.
    int GetVersion(const QMetaObject* type) const;
    /// Sets the version table, class name to version.
    void SetVersions(const QHash<QByteArray, int>& versions);
    /// The version of the class \a type in this program: its own "version" class information, 1 when it has none.
    static int GetCurrentVersion(const QMetaObject* type);

    /// Maps a reference as read from this stream to the geometry that stands for it in the container. Invalid for an
    /// invalid reference, and for one to a geometry that could not be brought along; MapReference() then tells what
    /// to write when the reference is saved again.
    ZAXGeoGeometryRef GetMappedReference(const ZAXGeoGeometryRef& reference) const;
    /// Maps a reference whether its geometry could be brought along or not: to itself unless SetReferenceMap() says
    /// otherwise.
    ZAXGeoGeometryRef MapReference(const ZAXGeoGeometryRef& reference) const;
    /// Sets what MapReference() answers for valid references; an invalid one maps to itself always.
    void SetReferenceMap(const std::function<ZAXGeoGeometryRef(const ZAXGeoGeometryRef&)>& map);
    /// Sets which mapped references lead to geometries that could not be brought along, beside those to placeholders.
    void SetUnavailable(const std::function<bool(const ZAXGeoGeometryRef&)>& isUnavailable);

    /// The stream of the fields. What goes wrong while reading shows in its status.
    QDataStream& GetDataStream();

    /// What was written, or what is read.
    QByteArray GetPayload() const;
    /// The same, good until the stream is written to or made as new.
    QByteArrayView ViewPayload() const;
    /// The reference table: each reference once, in the order of first writing.
    QList<ZAXGeoGeometryRef> GetReferences() const;

private:
    friend class ZAXGeoStreamPrivate;
    std::unique_ptr<ZAXGeoStreamPrivate> d_ptr;
};

/// Writes and reads fields of the most frequent types, to the same bytes as the data stream but not by way of it.
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator<<(ZAXGeoStream& stream, bool value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator>>(ZAXGeoStream& stream, bool& value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator<<(ZAXGeoStream& stream, qint32 value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator>>(ZAXGeoStream& stream, qint32& value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator<<(ZAXGeoStream& stream, double value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator>>(ZAXGeoStream& stream, double& value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator<<(ZAXGeoStream& stream, const QString& value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator>>(ZAXGeoStream& stream, QString& value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator<<(ZAXGeoStream& stream, const QByteArray& value);
ZAXGEOMETRY_EXPORT ZAXGeoStream& operator>>(ZAXGeoStream& stream, QByteArray& value);

/// Writes and reads a field by its QDataStream operators.
template <typename T>
ZAXGeoStream& operator<<(ZAXGeoStream& stream, const T& value)
{
    stream.GetDataStream() << value;
    return stream;
}

template <typename T>
ZAXGeoStream& operator>>(ZAXGeoStream& stream, T& value)
{
    stream.GetDataStream() >> value;
    return stream;
}

#endif
