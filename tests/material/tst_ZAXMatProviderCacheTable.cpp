#include "ZAXMatProviderCachePrivate.h"

#include <QTest>

#include <array>

using Table = ZAXMatProviderCacheTable;
using Caches = QList<ZAXMatProviderCache*>;

namespace {

/// Addresses that stand for caches: the table never looks at what it holds.
std::array<void*, 2> places;

ZAXMatProviderCache* Cache(std::size_t place)
{
    return reinterpret_cast<ZAXMatProviderCache*>(&places.at(place));
}

} // namespace

/// The table is compiled into this program, since the library keeps its own to itself.
class tst_ZAXMatProviderCacheTable : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { Table::Release(); }
    void withoutStorageItIsEmpty();
    void entriesAreFoundByProviderId();
    void anEntryReplacesTheOneBefore();
    void removingTakesOneEntryOut();
    void releasedItIsEmpty();
    void releasedItTakesRemovalsAndAnotherRelease();
    void releasedItTakesNewEntries();
};

void tst_ZAXMatProviderCacheTable::withoutStorageItIsEmpty()
{
    QCOMPARE(Table::Find("a"), nullptr);
    QCOMPARE(Table::Values(), Caches());
    Table::Remove("a");
    QCOMPARE(Table::Values(), Caches());
}

void tst_ZAXMatProviderCacheTable::entriesAreFoundByProviderId()
{
    Table::Insert("a", Cache(0));
    Table::Insert("b", Cache(1));
    QCOMPARE(Table::Find("a"), Cache(0));
    QCOMPARE(Table::Find("b"), Cache(1));
    QCOMPARE(Table::Find("A"), nullptr);
    Caches values = Table::Values();
    std::sort(values.begin(), values.end(), std::less<>());
    QCOMPARE(values, (Caches{Cache(0), Cache(1)}));
}

void tst_ZAXMatProviderCacheTable::anEntryReplacesTheOneBefore()
{
    Table::Insert("a", Cache(0));
    Table::Insert("a", Cache(1));
    QCOMPARE(Table::Values(), Caches{Cache(1)});
}

void tst_ZAXMatProviderCacheTable::removingTakesOneEntryOut()
{
    Table::Insert("a", Cache(0));
    Table::Insert("b", Cache(1));
    Table::Remove("a");
    Table::Remove("unknown");
    QCOMPARE(Table::Find("a"), nullptr);
    QCOMPARE(Table::Values(), Caches{Cache(1)});
}

void tst_ZAXMatProviderCacheTable::releasedItIsEmpty()
{
    Table::Insert("a", Cache(0));
    Table::Release();
    QCOMPARE(Table::Find("a"), nullptr);
    QCOMPARE(Table::Values(), Caches());
}

void tst_ZAXMatProviderCacheTable::releasedItTakesRemovalsAndAnotherRelease()
{
    Table::Insert("a", Cache(0));
    Table::Release();
    Table::Remove("a");
    Table::Release();
    QCOMPARE(Table::Values(), Caches());
}

void tst_ZAXMatProviderCacheTable::releasedItTakesNewEntries()
{
    Table::Insert("a", Cache(0));
    Table::Release();
    Table::Insert("b", Cache(1));
    QCOMPARE(Table::Find("b"), Cache(1));
    QCOMPARE(Table::Values(), Caches{Cache(1)});
}

QTEST_GUILESS_MAIN(tst_ZAXMatProviderCacheTable)
#include "tst_ZAXMatProviderCacheTable.moc"
