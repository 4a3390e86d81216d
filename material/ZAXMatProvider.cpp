#include "ZAXMatProvider.h"

#include "ZAXMatMaterialProviderManager.h"
#include "ZAXSysException.h"

#include <QHash>

#include <algorithm>

namespace {

QHash<QByteArray, ZAXMatProvider*>& Registry()
{
    static QHash<QByteArray, ZAXMatProvider*> registry;
    return registry;
}

} // namespace

ZAXMatProvider::ZAXMatProvider(const QByteArray& id)
{
    auto& registry = Registry();
    const auto hasId = [&id](const ZAXMatProvider* provider) { return provider->GetProviderId() == id; };
    if (std::ranges::any_of(std::as_const(registry), hasId))
        throw ZAXSysException(QLatin1String("A provider with the given ID already exists."));
    registry.insert(id, this);
}

ZAXMatProvider::~ZAXMatProvider()
{
    Registry().removeIf([this](const auto& entry) { return entry.value() == this; });
}

void ZAXMatProvider::Commit() {}

ZAXMatProvider* ZAXMatProvider::GetProvider(const QByteArray& id)
{
    return Registry().value(id);
}

QList<ZAXMatProvider*> ZAXMatProvider::GetProviders()
{
    const QList<ZAXMatMaterialProviderManager*> managers = ZAXMatMaterialProviderManager::GetHash().values();
    for (ZAXMatMaterialProviderManager* const manager : managers)
        manager->UpdateProviders();
    return Registry().values();
}

ZAXMatDefinition ZAXMatProvider::CreateDefinition(ZAXMatDefinition::Type type, const QByteArray& key) const
{
    const bool isMaterial = type == ZAXMatDefinition::Material;
    QList<QByteArray> extensions = isMaterial ? GetSupportedMaterialExtensions() : GetSupportedPackagingExtensions();
    extensions.append(QByteArray());
    QMultiHash<QByteArray, QByteArray> allowedProperties;
    for (const QByteArray& extension : std::as_const(extensions)) {
        const QList<QByteArray> properties =
            isMaterial ? GetSupportedMaterialProperties(extension) : GetSupportedPackagingProperties(extension);
        for (const QByteArray& property : properties)
            allowedProperties.insert(extension, property);
    }
    return ZAXMatDefinition(key, type, allowedProperties);
}
