#ifndef ZAXMATPROVIDER_H
#define ZAXMATPROVIDER_H

#include "ZAXMatProviderBase.h"

/// Base of the catalogues that are found by an id. A provider is registered from the end of this class's constructor,
/// when the derived class is not yet complete, to the start of its destructor. Whoever creates a provider deletes it,
/// and deletes its cache (ZAXMatProviderCache) first. Providers are created, deleted and listed on one thread.
///
/// The order of the virtual operations is part of the interface, since other modules derive from this class.
class ZAXMATERIAL_EXPORT ZAXMatProvider : public ZAXMatProviderBase
{
public:
    /// Takes the provider out of the registry.
    ~ZAXMatProvider() override;

    /// Name of the provider for the user.
    virtual QString GetProviderLabel() const = 0;
    /// The id that was given to the constructor.
    virtual QByteArray GetProviderId() const = 0;
    /// Writes pending changes to the provider's storage. By default there is nothing to do.
    virtual void Commit();

    /// The provider registered under \a id, null when there is none. Asks no provider manager.
    static ZAXMatProvider* GetProvider(const QByteArray& id);
    /// All registered providers, in no particular order, once every provider manager has brought its own up to date
    /// (ZAXMatMaterialProviderManager::UpdateProviders()).
    static QList<ZAXMatProvider*> GetProviders();

protected:
    /// Registers the provider under \a id, the one that GetProviderId() is to report.
    /// \throws ZAXSysException "A provider with the given ID already exists." when a registered provider reports that
    /// id; nothing is registered then.
    explicit ZAXMatProvider(const QByteArray& id);

    /// A new record with \a key and \a type and the schema that this provider declares: for a material all supported
    /// material extensions and the base properties, for any other type those of packagings, each pair without a value.
    /// The record has no name and reports no change.
    ZAXMatDefinition CreateDefinition(ZAXMatDefinition::Type type, const QByteArray& key) const;
};

#endif
