#ifndef ZAXMATPROVIDERCACHEPRIVATE_H
#define ZAXMATPROVIDERCACHEPRIVATE_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"
#include "ZAXMatRecordTable.h"

#include <QHash>
#include <QList>

class ZAXMatProvider;
class ZAXMatProviderCache;

/// What a cache remembers. A record is stored only when it is valid, and committed unless Update() changed it; what
/// Update() finds no record for is stored without a key, which reads and commits pass over.
class ZAXMatProviderCachePrivate
{
public:
    explicit ZAXMatProviderCachePrivate(ZAXMatProvider* provider) : provider(provider) {}

    ZAXMatProvider* const provider;
    ZAXMatRecordTable materials;
    ZAXMatRecordTable packagings;
    /// Empty means not fetched yet.
    QList<QByteArray> materialKeys;
    QHash<QByteArray, QList<QByteArray>> materialPackagings;
    /// Has every packaging key of every list above.
    QHash<QByteArray, QByteArray> packagingMaterial;

    /// The table that \a type is kept in: packagings for anything but a material.
    ZAXMatRecordTable& RecordsOf(ZAXMatDefinition::Type type);
    /// Hands the changed ones of \a records to the provider and commits them; false at the first refusal.
    bool CommitRecords(ZAXMatRecordTable& records);
};

/// The process-wide table of caches by provider id, which owns none of them. Its storage is made by the first Insert()
/// and given back by Release(), at a fixed step of the library's unloading, for a cache may be deleted later than that:
/// the table is empty then.
class ZAXMatProviderCacheTable
{
public:
    /// The cache of \a providerId, null when there is none.
    static ZAXMatProviderCache* Find(const QByteArray& providerId);
    /// Puts \a cache in the place of what stands under \a providerId.
    static void Insert(const QByteArray& providerId, ZAXMatProviderCache* cache);
    /// Takes the entry out, whatever cache it holds, if there is one.
    static void Remove(const QByteArray& providerId);
    /// All caches, in no particular order.
    static QList<ZAXMatProviderCache*> Values();
    /// Gives the storage back. The caches live on.
    static void Release();
};

#endif
