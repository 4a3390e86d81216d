#include "ZAXGeoGeometry.h"

#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoGeometryPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXSysException.h"

#include <QDataStream>
#include <QIODevice>

namespace {

constexpr auto stateStreamVersion = QDataStream::Qt_6_4;

/// Reads the table of references of a state. Not the operator of QList, which makes room for whatever number a
/// damaged state claims.
QList<ZAXGeoGeometryRef> ReadReferences(QDataStream& data)
{
    QList<ZAXGeoGeometryRef> references;
    quint32 count = 0;
    data >> count;
    for (quint32 i = 0; i < count && data.status() == QDataStream::Ok; ++i) {
        ZAXGeoGeometryRef reference;
        data >> reference;
        references.append(reference);
    }
    return references;
}

} // namespace

void ZAXGeoGeometryPrivate::Discard(ZAXGeoGeometry* geometry)
{
    auto& d = Get(*geometry);
    if (d.container)
        ZAXGeoContainerPrivate::Get(*d.container).Remove(d.id, geometry);
    d.isDiscarded = true;
    if (d.references == 0)
        delete geometry;
}

ZAXGeoGeometry::ZAXGeoGeometry(ZAXGeoContainer* container) : ZAXGeoGeometry(ZAXGeoGeometryRef(), container) {}

ZAXGeoGeometry::ZAXGeoGeometry(const ZAXGeoGeometryRef& reference, ZAXGeoContainer* container)
    : d_ptr(std::make_unique<ZAXGeoGeometryPrivate>())
{
    d_ptr->container = container;
    if (!container)
        return;
    auto& index = ZAXGeoContainerPrivate::Get(*container);
    d_ptr->id = reference.IsValid() ? reference.GetId() : index.NextId();
    index.Insert(d_ptr->id, this);
}

ZAXGeoGeometry::~ZAXGeoGeometry()
{
    if (d_ptr->container)
        ZAXGeoContainerPrivate::Get(*d_ptr->container).Remove(d_ptr->id, this);
}

ZAXGeoContainer* ZAXGeoGeometry::GetContainer() const
{
    return d_ptr->container;
}

quint64 ZAXGeoGeometry::GetId() const
{
    return d_ptr->id;
}

void ZAXGeoGeometry::AddReference()
{
    ++d_ptr->references;
}

void ZAXGeoGeometry::RemoveReference()
{
    if (d_ptr->references == 0)
        throw ZAXSysException(QLatin1String("A reference was released that nobody holds."));
    if (--d_ptr->references == 0 && d_ptr->isDiscarded)
        delete this;
}

void ZAXGeoGeometry::Save(ZAXGeoStream&) const {}

void ZAXGeoGeometry::Load(ZAXGeoStream&) {}

void ZAXGeoGeometry::Initialize() {}

void ZAXGeoGeometry::InitializeNonStreamed() {}

void ZAXGeoGeometry::BeginStateLoad() {}

void ZAXGeoGeometry::EndStateLoad() {}

void ZAXGeoGeometry::Cleanup() {}

QByteArray ZAXGeoGeometry::GetCurrentState() const
{
    ZAXGeoStream stream(GetContainer());
    Save(stream);
    QByteArray state;
    QDataStream data(&state, QIODevice::WriteOnly);
    data.setVersion(stateStreamVersion);
    data << stream.GetReferences() << stream.GetPayload();
    return state;
}

void ZAXGeoGeometry::SetCurrentState(const QByteArray& state)
{
    QDataStream data(state);
    data.setVersion(stateStreamVersion);
    const QList<ZAXGeoGeometryRef> references = ReadReferences(data);
    QByteArray payload;
    data >> payload;
    if (data.status() != QDataStream::Ok || !data.atEnd())
        throw ZAXSysException(QLatin1String("The state of the object cannot be read."));
    ZAXGeoStream stream(GetContainer(), payload, references);
    // What the state referred to may be gone for good.
    stream.SetUnavailable([container = GetContainer()](const ZAXGeoGeometryRef& reference) {
        return container && !container->GetGeometryByRef(reference);
    });
    BeginStateLoad();
    Load(stream);
    if (stream.GetDataStream().status() != QDataStream::Ok || !stream.GetDataStream().atEnd())
        throw ZAXSysException(QLatin1String("The state of the object cannot be read."));
    EndStateLoad();
}
