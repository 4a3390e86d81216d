#include "ZAXGeoContainer.h"

#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoGeometry.h"
#include "ZAXSysException.h"
#include "ZAXSysModules.h"

#include <QLoggingCategory>
#include <QMetaObject>

#include <algorithm>
#include <limits>

namespace {

Q_LOGGING_CATEGORY(logTypes, "zax.geometry.types", QtInfoMsg)

QList<const QMetaObject*>& Types()
{
    // Never destroyed: modules may leave after the statics of this library are gone.
    static auto* const types = new QList<const QMetaObject*>;
    return *types;
}

bool HasTypeOf(const void* module)
{
    return std::ranges::any_of(Types(),
                               [module](const QMetaObject* type) { return ZAXSysModules::ModuleOf(type) == module; });
}

} // namespace

quint64 ZAXGeoContainerPrivate::NextId()
{
    if (lastId == std::numeric_limits<quint64>::max())
        throw ZAXSysException(QLatin1String("The document has no ids left for new objects."));
    return ++lastId;
}

void ZAXGeoContainerPrivate::Insert(quint64 id, ZAXGeoGeometry* geometry)
{
    if (geometries.contains(id))
        throw ZAXSysException(QString(QLatin1String("An object with the id %1 already exists.")).arg(id));
    geometries.insert(id, geometry);
    lastId = std::max(lastId, id);
}

void ZAXGeoContainerPrivate::Remove(quint64 id, const ZAXGeoGeometry* geometry)
{
    const auto entry = geometries.constFind(id);
    if (entry != geometries.constEnd() && entry.value() == geometry)
        geometries.erase(entry);
}

ZAXGeoContainer::ZAXGeoContainer(QObject* parent) : QObject(parent), d_ptr(std::make_unique<ZAXGeoContainerPrivate>())
{
}

ZAXGeoContainer::~ZAXGeoContainer() = default;

ZAXGeoGeometry* ZAXGeoContainer::GetGeometryByRef(const ZAXGeoGeometryRef& reference) const
{
    ZAXGeoGeometry* const geometry = d_ptr->geometries.value(reference.GetId());
    return geometry || !d_ptr->findsAside ? geometry : d_ptr->aside.value(reference.GetId());
}

QList<ZAXGeoGeometry*> ZAXGeoContainer::GetGeometries() const
{
    auto geometries = d_ptr->geometries.values();
    std::ranges::sort(geometries, {}, &ZAXGeoGeometry::GetId);
    return geometries;
}

void ZAXGeoContainer::RegisterType(const QMetaObject* type)
{
    if (!type || Types().contains(type))
        return;
    Types().append(type);
    qCDebug(logTypes, "registered %s", type->className());
}

void ZAXGeoContainer::UnregisterType(const QMetaObject* type)
{
    if (!Types().removeOne(type))
        return;
    qCDebug(logTypes, "unregistered %s", type->className());
    const void* const module = ZAXSysModules::ModuleOf(type);
    if (!HasTypeOf(module))
        ZAXSysModules::Leave(module);
}

QList<const QMetaObject*> ZAXGeoContainer::GetRegisteredTypes()
{
    return Types();
}

const QMetaObject* ZAXGeoContainer::FindType(const QByteArray& className)
{
    const auto& types = Types();
    const auto found = std::find_if(types.crbegin(), types.crend(),
                                    [&](const QMetaObject* type) { return className == type->className(); });
    return found != types.crend() ? *found : nullptr;
}
