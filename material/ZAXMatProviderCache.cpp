#include "ZAXMatProviderCache.h"

#include "ZAXMatDefinitionPrivate.h"
#include "ZAXMatProvider.h"
#include "ZAXMatProviderCachePrivate.h"

#include <algorithm>
#include <utility>

namespace {

/// The record under \a key: the stored one, or what \a fetch gives, which is stored in committed form when valid.
template <typename Fetch>
ZAXMatDefinition ReadThrough(ZAXMatRecordTable& records, const QByteArray& key, Fetch fetch)
{
    const ZAXMatDefinition* const cached = std::as_const(records).Find(key);
    if (cached && !ZAXMatDefinitionPrivate::Of(*cached).key.isEmpty())
        return *cached;
    ZAXMatDefinition record = fetch(key);
    if (record.IsValid()) {
        record.Commit();
        records.Insert(key, record);
    }
    return record;
}

} // namespace

ZAXMatRecordTable& ZAXMatProviderCachePrivate::RecordsOf(ZAXMatDefinition::Type type)
{
    return type == ZAXMatDefinition::Material ? materials : packagings;
}

bool ZAXMatProviderCachePrivate::CommitRecords(ZAXMatRecordTable& records)
{
    // Over a copy of the keys, since a provider may ask its own cache something while it updates a record.
    const QList<QByteArray> keys = records.GetKeys();
    return std::ranges::all_of(keys, [&](const QByteArray& key) {
        const ZAXMatDefinition record = records.Value(key);
        if (!record.IsValid() || !record.IsChanged())
            return true;
        if (!provider->Update(record))
            return false;
        if (ZAXMatDefinition* const stored = records.Find(key))
            stored->Commit();
        return true;
    });
}

ZAXMatProviderCache::ZAXMatProviderCache(ZAXMatProvider* provider)
    : d_ptr(std::make_unique<ZAXMatProviderCachePrivate>(provider))
{
}

ZAXMatProviderCache::~ZAXMatProviderCache()
{
    Q_D(ZAXMatProviderCache);
    if (d->provider)
        ZAXMatProviderCacheTable::Remove(d->provider->GetProviderId());
}

ZAXMatProviderCache* ZAXMatProviderCache::GetCache(const QByteArray& providerId)
{
    if (ZAXMatProviderCache* const cache = ZAXMatProviderCacheTable::Find(providerId))
        return cache;
    ZAXMatProvider* const provider = ZAXMatProvider::GetProvider(providerId);
    if (!provider)
        return nullptr;
    auto* const cache = new ZAXMatProviderCache(provider);
    ZAXMatProviderCacheTable::Insert(providerId, cache);
    return cache;
}

QList<ZAXMatProviderCache*> ZAXMatProviderCache::GetCaches()
{
    return ZAXMatProviderCacheTable::Values();
}

ZAXMatProvider* ZAXMatProviderCache::GetProvider() const
{
    Q_D(const ZAXMatProviderCache);
    return d->provider;
}

bool ZAXMatProviderCache::Commit()
{
    Q_D(ZAXMatProviderCache);
    if (!d->CommitRecords(d->materials) || !d->CommitRecords(d->packagings))
        return false;
    d->provider->Commit();
    return true;
}

void ZAXMatProviderCache::Discard()
{
    Q_D(ZAXMatProviderCache);
    std::ranges::for_each(d->materials, &ZAXMatDefinition::Revert);
    std::ranges::for_each(d->packagings, &ZAXMatDefinition::Revert);
}

void ZAXMatProviderCache::Refresh()
{
    Q_D(ZAXMatProviderCache);
    d->materials.Clear();
    d->packagings.Clear();
    d->materialKeys.clear();
    d->materialPackagings.clear();
    d->packagingMaterial.clear();
}

bool ZAXMatProviderCache::IsReadOnly() const
{
    Q_D(const ZAXMatProviderCache);
    return d->provider->IsReadOnly();
}

QList<QByteArray> ZAXMatProviderCache::GetSupportedMaterialExtensions() const
{
    Q_D(const ZAXMatProviderCache);
    return d->provider->GetSupportedMaterialExtensions();
}

bool ZAXMatProviderCache::HasPackaging() const
{
    Q_D(const ZAXMatProviderCache);
    return d->provider->HasPackaging();
}

QList<QByteArray> ZAXMatProviderCache::GetSupportedPackagingExtensions() const
{
    Q_D(const ZAXMatProviderCache);
    return d->provider->GetSupportedPackagingExtensions();
}

QList<QByteArray> ZAXMatProviderCache::GetSupportedMaterialProperties(const QByteArray& extension) const
{
    Q_D(const ZAXMatProviderCache);
    return d->provider->GetSupportedMaterialProperties(extension);
}

QList<QByteArray> ZAXMatProviderCache::GetSupportedPackagingProperties(const QByteArray& extension) const
{
    Q_D(const ZAXMatProviderCache);
    return d->provider->GetSupportedPackagingProperties(extension);
}

QList<QByteArray> ZAXMatProviderCache::GetMaterialKeys() const
{
    auto* const d = d_ptr.get();
    if (d->materialKeys.isEmpty())
        d->materialKeys = d->provider->GetMaterialKeys();
    return d->materialKeys;
}

ZAXMatDefinition ZAXMatProviderCache::GetMaterial(const QByteArray& key) const
{
    auto* const d = d_ptr.get();
    return ReadThrough(d->materials, key, [d](const QByteArray& key) { return d->provider->GetMaterial(key); });
}

ZAXMatDefinition ZAXMatProviderCache::CreateMaterial(const QString& name)
{
    Q_D(ZAXMatProviderCache);
    ZAXMatDefinition material = d->provider->CreateMaterial(name);
    if (!material.IsValid())
        return material;
    material.Commit();
    d->materials.Insert(material.GetKey(), material);
    if (!d->materialKeys.isEmpty())
        d->materialKeys.append(material.GetKey());
    return material;
}

bool ZAXMatProviderCache::RemoveMaterial(const QByteArray& key)
{
    Q_D(ZAXMatProviderCache);
    if (!d->provider->RemoveMaterial(key))
        return false;
    d->materials.Remove(key);
    d->materialKeys.removeAll(key);
    const QList<QByteArray> packagingKeys = d->materialPackagings.take(key);
    for (const QByteArray& packagingKey : packagingKeys) {
        d->packagings.Remove(packagingKey);
        d->packagingMaterial.remove(packagingKey);
    }
    return true;
}

QList<QByteArray> ZAXMatProviderCache::GetPackagingKeys(const QByteArray& materialKey) const
{
    auto* const d = d_ptr.get();
    const QList<QByteArray> cached = d->materialPackagings.value(materialKey);
    if (!cached.isEmpty())
        return cached;
    // Kept even when empty: the packagings created from now on belong to the list.
    const QList<QByteArray> keys = d->provider->GetPackagingKeys(materialKey);
    d->materialPackagings.insert(materialKey, keys);
    for (const QByteArray& key : keys)
        d->packagingMaterial.insert(key, materialKey);
    return keys;
}

ZAXMatDefinition ZAXMatProviderCache::GetPackaging(const QByteArray& key) const
{
    auto* const d = d_ptr.get();
    return ReadThrough(d->packagings, key, [d](const QByteArray& key) { return d->provider->GetPackaging(key); });
}

ZAXMatDefinition ZAXMatProviderCache::CreatePackaging(const QString& name, const QByteArray& materialKey)
{
    Q_D(ZAXMatProviderCache);
    ZAXMatDefinition packaging = d->provider->CreatePackaging(name, materialKey);
    if (!packaging.IsValid())
        return packaging;
    packaging.Commit();
    d->packagings.Insert(packaging.GetKey(), packaging);
    const auto keys = d->materialPackagings.find(materialKey);
    if (keys != d->materialPackagings.end()) {
        keys->append(packaging.GetKey());
        d->packagingMaterial.insert(packaging.GetKey(), materialKey);
    }
    return packaging;
}

bool ZAXMatProviderCache::RemovePackaging(const QByteArray& key)
{
    Q_D(ZAXMatProviderCache);
    if (!d->provider->RemovePackaging(key))
        return false;
    const auto keys = d->materialPackagings.find(d->packagingMaterial.value(key));
    if (keys != d->materialPackagings.end())
        keys->removeAll(key);
    d->packagings.Remove(key);
    d->packagingMaterial.remove(key);
    return true;
}

bool ZAXMatProviderCache::Update(const ZAXMatDefinition& definition)
{
    Q_D(ZAXMatProviderCache);
    if (!definition.IsValid())
        return false;
    if (d->provider->Update(definition))
        d->RecordsOf(definition.GetType())[definition.GetKey()].CopyValues(definition);
    return true;
}
