#ifndef ZAXMATPROVIDERCACHE_H
#define ZAXMATPROVIDERCACHE_H

#include "ZAXMatProviderBase.h"

class ZAXMatProvider;
class ZAXMatProviderCachePrivate;

/// The catalogue of one provider in memory. Records and lists of keys are fetched from the provider once and served
/// from memory then; updated records are told from committed ones, so that they can be committed or discarded. What the
/// provider supports and whether it can be written to is asked of it each time; the state (GetState()) is the cache's
/// own.
///
/// There is one cache per provider id at most, made by GetCache(). Whoever uses caches deletes them, each before its
/// provider. Caches are used on one thread, and nothing here throws.
class ZAXMATERIAL_EXPORT ZAXMatProviderCache : public ZAXMatProviderBase
{
    Q_DECLARE_PRIVATE(ZAXMatProviderCache)

public:
    /// Takes the cache of the provider's id out of the registry. Asks the provider for that id.
    ~ZAXMatProviderCache() override;

    /// The cache of the provider registered under \a providerId, made at the first request; null when there is no such
    /// provider.
    static ZAXMatProviderCache* GetCache(const QByteArray& providerId);
    /// All caches, in no particular order.
    static QList<ZAXMatProviderCache*> GetCaches();

    /// The provider behind the cache, which does not own it.
    ZAXMatProvider* GetProvider() const;

    /// Hands every changed record to the provider's Update() and commits it, then calls the provider's Commit(). At the
    /// first record that the provider refuses it stops and returns false: what was handed over stays committed, the
    /// rest stays changed, and the provider's Commit() is not called.
    bool Commit();
    /// Brings every cached record back to its last committed state. What the provider was given, created or removed
    /// stays with it.
    void Discard();
    /// Forgets all records and keys, uncommitted changes included. The next reads go to the provider.
    void Refresh();

    bool IsReadOnly() const override;
    QList<QByteArray> GetSupportedMaterialExtensions() const override;
    bool HasPackaging() const override;
    QList<QByteArray> GetSupportedPackagingExtensions() const override;
    QList<QByteArray> GetSupportedMaterialProperties(const QByteArray& extension) const override;
    QList<QByteArray> GetSupportedPackagingProperties(const QByteArray& extension) const override;

    /// The provider's keys; those of materials created meanwhile come last. An empty list is asked for again each time.
    QList<QByteArray> GetMaterialKeys() const override;
    /// The record in committed form, or as Update() left it. An unknown key is asked for again each time.
    ZAXMatDefinition GetMaterial(const QByteArray& key) const override;
    ZAXMatDefinition CreateMaterial(const QString& name) override;
    /// Forgets the material and the packagings that GetPackagingKeys() gave for it, once the provider has removed it.
    bool RemoveMaterial(const QByteArray& key) override;
    /// The provider's keys; those of packagings created meanwhile come last. An empty list is asked for again each
    /// time.
    QList<QByteArray> GetPackagingKeys(const QByteArray& materialKey) const override;
    /// The record in committed form, or as Update() left it. An unknown key is asked for again each time.
    ZAXMatDefinition GetPackaging(const QByteArray& key) const override;
    ZAXMatDefinition CreatePackaging(const QString& name, const QByteArray& materialKey) override;
    bool RemovePackaging(const QByteArray& key) override;
    /// Hands \a definition to the provider and, if that takes it, copies name and values into the cached record, which
    /// is changed until Commit(). False for an invalid record alone: a refusal of the provider leaves the cached record
    /// as it is and returns true.
    bool Update(const ZAXMatDefinition& definition) override;

private:
    explicit ZAXMatProviderCache(ZAXMatProvider* provider);

    std::unique_ptr<ZAXMatProviderCachePrivate> d_ptr;
};

#endif
