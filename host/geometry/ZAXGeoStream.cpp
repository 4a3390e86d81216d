#include "ZAXGeoStream.h"

#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoStreamDevice.h"

#include <QMetaClassInfo>
#include <QMetaObject>

#include <optional>

class ZAXGeoStreamPrivate
{
public:
    ZAXGeoStreamPrivate(ZAXGeoContainer* container, QIODevice::OpenMode mode, const QByteArray& payload)
        : container(container)
    {
        device.setData(payload);
        device.open(mode);
        data.setDevice(&device);
        data.setVersion(QDataStream::Qt_6_4);
        data.setByteOrder(QDataStream::BigEndian);
        data.setFloatingPointPrecision(QDataStream::DoublePrecision);
    }

    ZAXGeoContainer* container;
    ZAXGeoStreamDevice device;
    QDataStream data;
    std::optional<QHash<QByteArray, int>> versions;
    std::function<ZAXGeoGeometryRef(const ZAXGeoGeometryRef&)> map;
    std::function<bool(const ZAXGeoGeometryRef&)> isUnavailable;
};

ZAXGeoStream::ZAXGeoStream(ZAXGeoContainer* container)
    : d_ptr(std::make_unique<ZAXGeoStreamPrivate>(container, QIODevice::WriteOnly, QByteArray()))
{
}

ZAXGeoStream::ZAXGeoStream(ZAXGeoContainer* container, const QByteArray& payload,
                           const QList<ZAXGeoGeometryRef>& references)
    : d_ptr(std::make_unique<ZAXGeoStreamPrivate>(container, QIODevice::ReadOnly, payload))
{
    d_ptr->device.SetReferences(references);
}

ZAXGeoStream::~ZAXGeoStream() = default;

ZAXGeoContainer* ZAXGeoStream::GetContainer() const
{
    return d_ptr->container;
}

int ZAXGeoStream::GetVersion(const QMetaObject* type) const
{
    return d_ptr->versions ? d_ptr->versions->value(type->className(), 1) : GetCurrentVersion(type);
}

void ZAXGeoStream::SetVersions(const QHash<QByteArray, int>& versions)
{
    d_ptr->versions = versions;
}

int ZAXGeoStream::GetCurrentVersion(const QMetaObject* type)
{
    // Only an entry of the class itself counts: a derived class without one does not take its base's version over.
    const int index = type->indexOfClassInfo("version");
    return index >= type->classInfoOffset() ? QByteArray(type->classInfo(index).value()).toInt() : 1;
}

ZAXGeoGeometryRef ZAXGeoStream::GetMappedReference(const ZAXGeoGeometryRef& reference) const
{
    const ZAXGeoGeometryRef mapped = MapReference(reference);
    const bool isPlaceholder =
        d_ptr->container && ZAXGeoContainerPrivate::Get(*d_ptr->container).placeholders.contains(mapped.GetId());
    if (isPlaceholder || (d_ptr->isUnavailable && mapped.IsValid() && d_ptr->isUnavailable(mapped)))
        return {};
    return mapped;
}

ZAXGeoGeometryRef ZAXGeoStream::MapReference(const ZAXGeoGeometryRef& reference) const
{
    return d_ptr->map && reference.IsValid() ? d_ptr->map(reference) : reference;
}

void ZAXGeoStream::SetReferenceMap(const std::function<ZAXGeoGeometryRef(const ZAXGeoGeometryRef&)>& map)
{
    d_ptr->map = map;
}

void ZAXGeoStream::SetUnavailable(const std::function<bool(const ZAXGeoGeometryRef&)>& isUnavailable)
{
    d_ptr->isUnavailable = isUnavailable;
}

QDataStream& ZAXGeoStream::GetDataStream()
{
    return d_ptr->data;
}

QByteArray ZAXGeoStream::GetPayload() const
{
    return d_ptr->device.data();
}

QList<ZAXGeoGeometryRef> ZAXGeoStream::GetReferences() const
{
    return d_ptr->device.GetReferences();
}
