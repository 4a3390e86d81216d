#include "ZAXGeoGeometryRef.h"

#include "ZAXGeoGeometry.h"
#include "ZAXGeoStreamDevice.h"

#include <QDataStream>

ZAXGeoGeometryRef::ZAXGeoGeometryRef(const ZAXGeoGeometry* geometry) noexcept : m_id(geometry ? geometry->GetId() : 0)
{
}

QDataStream& operator<<(QDataStream& stream, const ZAXGeoGeometryRef& reference)
{
    if (auto* const device = dynamic_cast<ZAXGeoStreamDevice*>(stream.device()))
        return stream << device->PlaceOf(reference);
    return stream << reference.GetId();
}

QDataStream& operator>>(QDataStream& stream, ZAXGeoGeometryRef& reference)
{
    reference = {};
    if (const auto* const device = dynamic_cast<ZAXGeoStreamDevice*>(stream.device())) {
        quint32 place = 0;
        stream >> place;
        if (place > static_cast<quint32>(device->GetReferences().size()))
            stream.setStatus(QDataStream::ReadCorruptData);
        else if (place > 0)
            reference = device->GetReferences().at(place - 1);
        return stream;
    }
    quint64 id = 0;
    stream >> id;
    reference = ZAXGeoGeometryRef::FromId(id);
    return stream;
}

namespace {

// The host's copy of the meta-type must be the first one that Qt meets, not one in a module that may leave.
[[maybe_unused]] const int metaTypeId = qRegisterMetaType<ZAXGeoGeometryRef>();

} // namespace
