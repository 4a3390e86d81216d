#include "ZAXHostStateLoader.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXSysException.h"

#include <QCoreApplication>

std::unique_ptr<ZAXFeatObject> ZAXHostStateLoader::Make(const QMetaObject* type, const ZAXGeoGeometryRef& reference)
{
    QObject* const made =
        type->inherits(&ZAXFeatObject::staticMetaObject)
            ? type->newInstance(Q_ARG(ZAXGeoContainer*, m_container), Q_ARG(ZAXGeoGeometryRef, reference))
            : nullptr;
    if (!made)
        throw ZAXSysException(QCoreApplication::translate("ZAXHostDocument", "The class %1 cannot be re-created.")
                                  .arg(QLatin1String(type->className())));
    auto* const feature = static_cast<ZAXFeatObject*>(made);
    // It was not yet of the class that it is while it got its place.
    ZAXFeatObjectPrivate::Get(*feature).TreeChanged();
    return std::unique_ptr<ZAXFeatObject>(feature);
}

void ZAXHostStateLoader::Load(ZAXFeatObject* feature, const QByteArray& payload,
                              const QList<ZAXGeoGeometryRef>& references)
{
    ZAXGeoStream stream(m_container, payload, references);
    if (!m_versions.isEmpty())
        stream.SetVersions(m_versions);
    stream.SetReferenceMap(m_map);
    stream.SetUnavailable(m_isUnavailable);
    m_loaded.append(feature);
    feature->BeginStateLoad();
    feature->Load(stream);
    const QDataStream& data = stream.GetDataStream();
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
