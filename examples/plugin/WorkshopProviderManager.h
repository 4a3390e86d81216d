#ifndef WORKSHOPPROVIDERMANAGER_H
#define WORKSHOPPROVIDERMANAGER_H

#include "WorkshopProvider.h"

#include <ZAXMatMaterialProviderManager.h>

#include <memory>

/// Creates the workshop's provider when providers are first asked for, and owns it.
class WorkshopProviderManager : public ZAXMatMaterialProviderManager
{
public:
    WorkshopProviderManager();

    /// Leaves a provider of that id alone, whoever made it.
    void UpdateProviders() override;

private:
    std::unique_ptr<WorkshopProvider> m_provider;
};

#endif
