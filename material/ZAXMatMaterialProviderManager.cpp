#include "ZAXMatMaterialProviderManager.h"

#include "ZAXMatProvider.h"
#include "ZAXSysException.h"

#include <algorithm>

namespace {

QHash<QByteArray, ZAXMatMaterialProviderManager*>& Registry()
{
    static QHash<QByteArray, ZAXMatMaterialProviderManager*> registry;
    return registry;
}

} // namespace

class ZAXMatMaterialProviderManagerPrivate
{
public:
    QByteArray id;
};

ZAXMatMaterialProviderManager::ZAXMatMaterialProviderManager(const QByteArray& id)
    : d_ptr(std::make_unique<ZAXMatMaterialProviderManagerPrivate>())
{
    auto& registry = Registry();
    const auto hasId = [&id](const ZAXMatMaterialProviderManager* manager) { return manager->GetId() == id; };
    if (std::ranges::any_of(std::as_const(registry), hasId))
        throw ZAXSysException(QLatin1String("A provider manager with the given ID already exists."));
    d_ptr->id = id;
    registry.insert(id, this);
    // A manager that lives until the program ends, owning its providers, needs their registry to live longer still: it
    // must be made before the manager is, not by the first provider.
    ZAXMatProvider::GetProvider(id);
}

ZAXMatMaterialProviderManager::~ZAXMatMaterialProviderManager()
{
    Registry().removeIf([this](const auto& entry) { return entry.value() == this; });
}

QByteArray ZAXMatMaterialProviderManager::GetId() const
{
    Q_D(const ZAXMatMaterialProviderManager);
    return d->id;
}

QHash<QByteArray, ZAXMatMaterialProviderManager*> ZAXMatMaterialProviderManager::GetHash()
{
    return Registry();
}
