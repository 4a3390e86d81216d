#ifndef ZAXMATMATERIALPROVIDERMANAGER_H
#define ZAXMATMATERIALPROVIDERMANAGER_H

#include "ZAXMatGlobal.h"

#include <QByteArray>
#include <QHash>

#include <memory>

class ZAXMatMaterialProviderManagerPrivate;

/// Base of objects that are responsible for a set of providers and create them on demand:
/// ZAXMatProvider::GetProviders() asks every registered manager before it lists what there is.
///
/// A manager is registered from the end of this class's constructor to the start of its destructor. Whoever creates a
/// manager deletes it; the providers that it made are not deleted with it. Managers are created, deleted and listed on
/// one thread.
///
/// The order of the virtual operations is part of the interface, since other modules derive from this class.
class ZAXMATERIAL_EXPORT ZAXMatMaterialProviderManager
{
    Q_DECLARE_PRIVATE(ZAXMatMaterialProviderManager)

public:
    /// Takes the manager out of the registry.
    virtual ~ZAXMatMaterialProviderManager();
    ZAXMatMaterialProviderManager(const ZAXMatMaterialProviderManager&) = delete;
    ZAXMatMaterialProviderManager& operator=(const ZAXMatMaterialProviderManager&) = delete;

    /// Brings the providers into existence that this manager is responsible for. Called again and again, so it must not
    /// create a provider that is there already.
    virtual void UpdateProviders() = 0;
    /// The id given to the constructor.
    virtual QByteArray GetId() const;

    /// The registered managers by id. Later registrations do not change the copy, nor does a manager's end: do not
    /// keep it.
    static QHash<QByteArray, ZAXMatMaterialProviderManager*> GetHash();

protected:
    /// Registers the manager under \a id.
    /// \throws ZAXSysException "A provider manager with the given ID already exists." when a registered manager has
    /// that id; nothing is registered then.
    explicit ZAXMatMaterialProviderManager(const QByteArray& id);

private:
    std::unique_ptr<ZAXMatMaterialProviderManagerPrivate> d_ptr;
};

#endif
