#include "ZAXHostStateLoader.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXSysException.h"

#include <QCoreApplication>

namespace {

/// The index of the constructor for re-creation; -1 for a class without it.
int ConstructorOf(const QMetaObject* type)
{
    if (!type->inherits(&ZAXFeatObject::staticMetaObject))
        return -1;
    const QByteArray name = QByteArray(type->className()).split(':').constLast();
    return type->indexOfConstructor(name + "(ZAXGeoContainer*,ZAXGeoGeometryRef)");
}

} // namespace

ZAXHostStateLoader::ZAXHostStateLoader(ZAXFeatContainer* container)
    : m_container(container), m_stream(std::make_unique<ZAXGeoStream>(container, QByteArray()))
{
}

ZAXHostStateLoader::~ZAXHostStateLoader() = default;

void ZAXHostStateLoader::SetVersions(const QHash<QByteArray, int>& versions)
{
    if (!versions.isEmpty())
        m_stream->SetVersions(versions);
}

void ZAXHostStateLoader::SetReferenceMap(const std::function<ZAXGeoGeometryRef(const ZAXGeoGeometryRef&)>& map)
{
    m_stream->SetReferenceMap(map);
}

void ZAXHostStateLoader::SetUnavailable(const std::function<bool(const ZAXGeoGeometryRef&)>& isUnavailable)
{
    m_stream->SetUnavailable(isUnavailable);
}

QObject* ZAXHostStateLoader::Construct(const QMetaObject* type, const ZAXGeoGeometryRef& reference)
{
    // What QMetaObject::newInstance() does, but that it looks for the constructor each time.
    auto constructor = m_constructors.constFind(type);
    if (constructor == m_constructors.constEnd())
        constructor = m_constructors.insert(type, ConstructorOf(type));
    if (constructor.value() < 0)
        return nullptr;
    QObject* made = nullptr;
    ZAXGeoContainer* container = m_container;
    ZAXGeoGeometryRef copy = reference;
    void* arguments[] = {&made, &container, &copy};
    return type->static_metacall(QMetaObject::CreateInstance, constructor.value(), arguments) < 0 ? made : nullptr;
}

std::unique_ptr<ZAXFeatObject> ZAXHostStateLoader::Make(const QMetaObject* type, const ZAXGeoGeometryRef& reference)
{
    QObject* const made = Construct(type, reference);
    if (!made)
        throw ZAXSysException(QCoreApplication::translate("ZAXHostDocument", "The class %1 cannot be re-created.")
                                  .arg(QLatin1String(type->className())));
    return std::unique_ptr<ZAXFeatObject>(static_cast<ZAXFeatObject*>(made));
}

void ZAXHostStateLoader::Load(ZAXFeatObject* feature, const QByteArray& payload,
                              const QList<ZAXGeoGeometryRef>& references)
{
    m_stream->Restart(payload, references);
    m_loaded.append(feature);
    feature->BeginStateLoad();
    feature->Load(*m_stream);
    const QDataStream& data = m_stream->GetDataStream();
    if (data.status() != QDataStream::Ok || !data.atEnd())
        throw ZAXSysException(
            QCoreApplication::translate("ZAXHostDocument", "The data of the object are not what its class reads."));
}

void ZAXHostStateLoader::EndLoad(const std::function<void(ZAXFeatObject*, const QString&)>& refused)
{
    const auto loaded = std::exchange(m_loaded, {});
    const auto tryEach = [&](void (ZAXGeoGeometry::*operation)()) {
        for (ZAXFeatObject* feature : loaded) {
            try {
                (feature->*operation)();
            } catch (const std::exception& exception) {
                refused(feature, QString::fromUtf8(exception.what()));
            }
        }
    };
    tryEach(&ZAXGeoGeometry::InitializeNonStreamed);
    tryEach(&ZAXGeoGeometry::EndStateLoad);
}

void ZAXHostStateLoader::EndLoad()
{
    for (ZAXFeatObject* feature : std::as_const(m_loaded))
        feature->InitializeNonStreamed();
    for (ZAXFeatObject* feature : std::as_const(m_loaded))
        feature->EndStateLoad();
    m_loaded.clear();
}
