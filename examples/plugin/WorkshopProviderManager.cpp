#include "WorkshopProviderManager.h"

WorkshopProviderManager::WorkshopProviderManager() : ZAXMatMaterialProviderManager("WorkshopProviderManager") {}

void WorkshopProviderManager::UpdateProviders()
{
    if (!ZAXMatProvider::GetProvider(WorkshopProvider::Id()))
        m_provider = std::make_unique<WorkshopProvider>();
}
