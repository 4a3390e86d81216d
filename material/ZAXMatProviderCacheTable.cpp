#include "ZAXMatProviderCachePrivate.h"

#include <utility>

namespace {

// A plain pointer: no static destructor decides when the table goes, Release() does.
QHash<QByteArray, ZAXMatProviderCache*>* caches = nullptr;

} // namespace

ZAXMatProviderCache* ZAXMatProviderCacheTable::Find(const QByteArray& providerId)
{
    return caches ? caches->value(providerId) : nullptr;
}

void ZAXMatProviderCacheTable::Insert(const QByteArray& providerId, ZAXMatProviderCache* cache)
{
    if (!caches)
        caches = new QHash<QByteArray, ZAXMatProviderCache*>;
    caches->insert(providerId, cache);
}

void ZAXMatProviderCacheTable::Remove(const QByteArray& providerId)
{
    if (caches)
        caches->remove(providerId);
}

QList<ZAXMatProviderCache*> ZAXMatProviderCacheTable::Values()
{
    return caches ? caches->values() : QList<ZAXMatProviderCache*>();
}

void ZAXMatProviderCacheTable::Release()
{
    delete std::exchange(caches, nullptr);
}
