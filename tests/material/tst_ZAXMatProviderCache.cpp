#include "RecordingProvider.h"
#include "ZAXMatProviderCache.h"

#include <QTest>

#include <memory>
#include <type_traits>

static_assert(std::is_base_of_v<ZAXMatProviderBase, ZAXMatProviderCache>);
static_assert(!std::is_base_of_v<ZAXMatProvider, ZAXMatProviderCache>);
static_assert(!std::is_constructible_v<ZAXMatProviderCache, ZAXMatProvider*>);
static_assert(sizeof(ZAXMatProviderCache) == sizeof(ZAXMatProviderBase) + sizeof(void*), "the private data alone");

using Caches = QList<ZAXMatProviderCache*>;
using Forward = void (*)(ZAXMatProviderCache&);
Q_DECLARE_METATYPE(Forward)

namespace {

/// A provider and its cache, which goes first.
struct Catalogue
{
    RecordingProvider provider{"p"};
    std::unique_ptr<ZAXMatProviderCache> cache{ZAXMatProviderCache::GetCache("p")};

    QStringList TakeCalls() const { return provider.TakeCalls(); }

    /// A record of the provider with another value, which the provider does not know of yet.
    static ZAXMatDefinition Changed(ZAXMatDefinition record, const QVariant& value)
    {
        record.SetValue("value", value);
        return record;
    }
    void UpdateMaterial(const QByteArray& key, const QVariant& value)
    {
        cache->Update(Changed(cache->GetMaterial(key), value));
    }
    void UpdatePackaging(const QByteArray& key, const QVariant& value)
    {
        cache->Update(Changed(cache->GetPackaging(key), value));
    }
};

QStringList Calls(std::initializer_list<const char*> calls)
{
    QStringList list;
    for (const char* const call : calls)
        list.append(QString::fromUtf8(call));
    return list;
}

QStringList Sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

class tst_ZAXMatProviderCache : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aProviderHasOneCache();
    void anUnknownProviderHasNoCache();
    void everyCacheIsListed();
    void theCacheKnowsItsProvider();
    void aDestroyedCacheIsForgotten();
    void destructionAsksTheProviderForItsId();
    void destructionForgetsWhateverStandsUnderTheReportedId();

    void theStateIsTheCachesOwn();
    void questionsOfTheSchemaAreForwardedEachTime_data();
    void questionsOfTheSchemaAreForwardedEachTime();
    void answersOfTheProviderAreForwarded();
    void propertiesAreTestedByTheSchemaOfTheProvider();

    void materialKeysAreFetchedOnce();
    void anEmptyListOfMaterialKeysIsFetchedAgain();
    void aListOfMaterialKeysIsUnaffectedByLaterChanges();
    void aRecordIsFetchedOnce();
    void anUnknownRecordIsFetchedEachTime();
    void aFetchedRecordIsCommitted();
    void aFetchedRecordIsStoredUnderTheKeyAskedFor();
    void materialsAndPackagingsAreApart();
    void searchesAreServedFromMemory();
    void packagingKeysAreFetchedOncePerMaterial();
    void anEmptyListOfPackagingKeysIsFetchedAgain();

    void aMaterialThatIsNotCreatedChangesNothing();
    void aCreatedMaterialIsStoredCommitted();
    void aCreatedMaterialIsAppendedToFetchedKeys();
    void aCreatedMaterialLeavesUnfetchedKeysUnfetched();
    void aPackagingThatIsNotCreatedChangesNothing();
    void aCreatedPackagingIsStoredCommitted();
    void aCreatedPackagingIsAppendedToFetchedKeys();
    void aCreatedPackagingIsAppendedToAFetchedEmptyList();
    void aCreatedPackagingLeavesUnfetchedKeysUnfetched();

    void aRefusedRemovalOfAMaterialChangesNothing();
    void aRemovedMaterialIsForgottenWithItsFetchedPackagings();
    void aRemovedMaterialTakesEveryOccurrenceOfItsKey();
    void packagingsThatWereNotFetchedByListAreNotForgotten();
    void aRefusedRemovalOfAPackagingChangesNothing();
    void aRemovedPackagingIsForgotten();
    void aRemovedPackagingTakesEveryOccurrenceOfItsKey();
    void aRemovedPackagingOfNoFetchedListIsForgotten();

    void anInvalidRecordIsNotUpdated();
    void anUpdateIsHandedOnAndCopied();
    void anUpdateKeepsTheIdentityOfTheCachedRecord();
    void aRefusedUpdateLeavesTheCachedRecord();
    void anUpdateOfAnyOtherTypeConcernsPackagings();
    void anUpdateOfARecordThatIsNotCachedIsReadFromTheProvider();
    void discardBringsCommittedRecordsBack();
    void discardLeavesKeysAndProvider();

    void commitHandsOverChangedRecordsThenCommits();
    void commitOfNothingCommitsTheProvider();
    void committedRecordsAreNotHandedOverAgain();
    void commitStopsAtARefusedMaterial();
    void commitStopsAtARefusedPackaging();
    void whatWasHandedOverBeforeARefusalStaysCommitted();
    void commitPassesOverRecordsWithoutKey();
    void recordsForgottenWhileTheyAreCommittedArePassedOver();

    void refreshForgetsEverything();
};

void tst_ZAXMatProviderCache::init()
{
    QCOMPARE(ZAXMatProviderCache::GetCaches(), Caches());
}

void tst_ZAXMatProviderCache::aProviderHasOneCache()
{
    const Catalogue catalogue;
    QVERIFY(catalogue.cache);
    QCOMPARE(ZAXMatProviderCache::GetCache("p"), catalogue.cache.get());
    QCOMPARE(catalogue.TakeCalls(), QStringList());
}

void tst_ZAXMatProviderCache::anUnknownProviderHasNoCache()
{
    QCOMPARE(ZAXMatProviderCache::GetCache("unknown"), nullptr);
    QCOMPARE(ZAXMatProviderCache::GetCaches(), Caches());
    const RecordingProvider provider("unknown");
    const std::unique_ptr<ZAXMatProviderCache> cache(ZAXMatProviderCache::GetCache("unknown"));
    QVERIFY(cache);
}

void tst_ZAXMatProviderCache::everyCacheIsListed()
{
    const Catalogue catalogue;
    const RecordingProvider other("other");
    const std::unique_ptr<ZAXMatProviderCache> cache(ZAXMatProviderCache::GetCache("other"));
    const Caches caches = ZAXMatProviderCache::GetCaches();
    QCOMPARE(caches.size(), 2);
    QVERIFY(caches.contains(cache.get()));
    QVERIFY(caches.contains(catalogue.cache.get()));
}

void tst_ZAXMatProviderCache::theCacheKnowsItsProvider()
{
    const Catalogue catalogue;
    QCOMPARE(catalogue.cache->GetProvider(), &catalogue.provider);
}

void tst_ZAXMatProviderCache::aDestroyedCacheIsForgotten()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m");
    catalogue.cache->GetMaterial("m");
    catalogue.cache.reset();
    QCOMPARE(ZAXMatProviderCache::GetCaches(), Caches());
    catalogue.cache.reset(ZAXMatProviderCache::GetCache("p"));
    catalogue.TakeCalls();
    catalogue.cache->GetMaterial("m");
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterial(m)"}));
}

void tst_ZAXMatProviderCache::destructionAsksTheProviderForItsId()
{
    Catalogue catalogue;
    catalogue.cache.reset();
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetProviderId()"}));
}

void tst_ZAXMatProviderCache::destructionForgetsWhateverStandsUnderTheReportedId()
{
    Catalogue catalogue;
    RecordingProvider other("other");
    std::unique_ptr<ZAXMatProviderCache> otherCache(ZAXMatProviderCache::GetCache("other"));
    const void* const stale = catalogue.cache.get();

    catalogue.provider.reportedId = "other";
    catalogue.cache.reset();
    QCOMPARE(ZAXMatProviderCache::GetCaches().size(), 1);
    QCOMPARE(static_cast<const void*>(ZAXMatProviderCache::GetCaches().constFirst()), stale);

    other.reportedId = "p";
    otherCache.reset();
    QCOMPARE(ZAXMatProviderCache::GetCaches(), Caches());
}

void tst_ZAXMatProviderCache::theStateIsTheCachesOwn()
{
    Catalogue catalogue;
    catalogue.cache->SetState(ZAXMatProviderBase::State(7));
    QCOMPARE(catalogue.cache->GetState(), ZAXMatProviderBase::State(7));
    QCOMPARE(catalogue.TakeCalls(), QStringList());
    QCOMPARE(catalogue.provider.GetState(), ZAXMatProviderBase::InitialState);
}

void tst_ZAXMatProviderCache::questionsOfTheSchemaAreForwardedEachTime_data()
{
    QTest::addColumn<Forward>("forward");
    QTest::addColumn<QString>("call");
    const auto row = [](const char* call, Forward forward) {
        QTest::newRow(call) << forward << QString::fromLatin1(call);
    };
    row("IsReadOnly()", [](ZAXMatProviderCache& cache) { cache.IsReadOnly(); });
    row("HasPackaging()", [](ZAXMatProviderCache& cache) { cache.HasPackaging(); });
    row("GetSupportedMaterialExtensions()", [](ZAXMatProviderCache& cache) { cache.GetSupportedMaterialExtensions(); });
    row("GetSupportedPackagingExtensions()",
        [](ZAXMatProviderCache& cache) { cache.GetSupportedPackagingExtensions(); });
    row("GetSupportedMaterialProperties(X)",
        [](ZAXMatProviderCache& cache) { cache.GetSupportedMaterialProperties("X"); });
    row("GetSupportedPackagingProperties(X)",
        [](ZAXMatProviderCache& cache) { cache.GetSupportedPackagingProperties("X"); });
}

void tst_ZAXMatProviderCache::questionsOfTheSchemaAreForwardedEachTime()
{
    QFETCH(const Forward, forward);
    QFETCH(const QString, call);
    const Catalogue catalogue;
    forward(*catalogue.cache);
    forward(*catalogue.cache);
    QCOMPARE(catalogue.TakeCalls(), (QStringList{call, call}));
}

void tst_ZAXMatProviderCache::answersOfTheProviderAreForwarded()
{
    Catalogue catalogue;
    catalogue.provider.materialSchema = {{"Cut"}, {{"Cut", {"gas"}}}};
    catalogue.provider.packagingSchema = {{"Grain"}, {{"Grain", {"angle"}}}};
    QVERIFY(!catalogue.cache->IsReadOnly());
    QVERIFY(catalogue.cache->HasPackaging());
    QCOMPARE(catalogue.cache->GetSupportedMaterialExtensions(), QList<QByteArray>{"Cut"});
    QCOMPARE(catalogue.cache->GetSupportedMaterialProperties("Cut"), QList<QByteArray>{"gas"});
    QCOMPARE(catalogue.cache->GetSupportedPackagingExtensions(), QList<QByteArray>{"Grain"});
    QCOMPARE(catalogue.cache->GetSupportedPackagingProperties("Grain"), QList<QByteArray>{"angle"});
    catalogue.provider.isReadOnly = true;
    catalogue.provider.hasPackaging = false;
    QVERIFY(catalogue.cache->IsReadOnly());
    QVERIFY(!catalogue.cache->HasPackaging());
}

void tst_ZAXMatProviderCache::propertiesAreTestedByTheSchemaOfTheProvider()
{
    Catalogue catalogue;
    catalogue.provider.materialSchema.properties = {{"", {"thickness"}}};
    catalogue.provider.packagingSchema.properties = {{"", {"length"}}};
    QVERIFY(catalogue.cache->IsMaterialProperty("thickness", ""));
    QVERIFY(!catalogue.cache->IsMaterialProperty("length", ""));
    QVERIFY(catalogue.cache->IsPackagingProperty("length", ""));
    QVERIFY(!catalogue.cache->IsPackagingProperty("thickness", ""));
}

void tst_ZAXMatProviderCache::materialKeysAreFetchedOnce()
{
    Catalogue catalogue;
    catalogue.provider.materialKeys = {"b", "a"};
    QCOMPARE(catalogue.cache->GetMaterialKeys(), (QList<QByteArray>{"b", "a"}));
    catalogue.provider.materialKeys = {"c"};
    QCOMPARE(catalogue.cache->GetMaterialKeys(), (QList<QByteArray>{"b", "a"}));
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterialKeys()"}));
}

void tst_ZAXMatProviderCache::anEmptyListOfMaterialKeysIsFetchedAgain()
{
    Catalogue catalogue;
    QCOMPARE(catalogue.cache->GetMaterialKeys(), QList<QByteArray>());
    catalogue.provider.materialKeys = {"a"};
    QCOMPARE(catalogue.cache->GetMaterialKeys(), QList<QByteArray>{"a"});
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterialKeys()", "GetMaterialKeys()"}));
}

void tst_ZAXMatProviderCache::aListOfMaterialKeysIsUnaffectedByLaterChanges()
{
    Catalogue catalogue;
    catalogue.provider.materialKeys = {"a", "b"};
    const QList<QByteArray> before = catalogue.cache->GetMaterialKeys();
    catalogue.cache->RemoveMaterial("a");
    QCOMPARE(before, (QList<QByteArray>{"a", "b"}));
}

void tst_ZAXMatProviderCache::aRecordIsFetchedOnce()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 2);
    QCOMPARE(catalogue.cache->GetMaterial("m").GetValue("value"), QVariant(1));
    QCOMPARE(catalogue.cache->GetPackaging("p").GetValue("value"), QVariant(2));
    catalogue.provider.materials.clear();
    catalogue.provider.packagings.clear();
    QCOMPARE(catalogue.cache->GetMaterial("m").GetValue("value"), QVariant(1));
    QCOMPARE(catalogue.cache->GetPackaging("p").GetValue("value"), QVariant(2));
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterial(m)", "GetPackaging(p)"}));
}

void tst_ZAXMatProviderCache::anUnknownRecordIsFetchedEachTime()
{
    Catalogue catalogue;
    QVERIFY(!catalogue.cache->GetMaterial("m").IsValid());
    QVERIFY(!catalogue.cache->GetPackaging("p").IsValid());
    catalogue.provider.AddMaterial("m");
    catalogue.provider.AddPackaging("m", "p");
    QVERIFY(catalogue.cache->GetMaterial("m").IsValid());
    QVERIFY(catalogue.cache->GetPackaging("p").IsValid());
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterial(m)", "GetPackaging(p)", "GetMaterial(m)", "GetPackaging(p)"}));
}

void tst_ZAXMatProviderCache::aFetchedRecordIsCommitted()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 2);
    QVERIFY(catalogue.provider.materials.value("m").IsChanged());
    QVERIFY(!catalogue.cache->GetMaterial("m").IsChanged());
    QVERIFY(!catalogue.cache->GetMaterial("m").IsChanged());
    QVERIFY(!catalogue.cache->GetPackaging("p").IsChanged());
    QVERIFY(!catalogue.cache->GetPackaging("p").IsChanged());
    QVERIFY(catalogue.provider.materials.value("m").IsChanged());
}

void tst_ZAXMatProviderCache::aFetchedRecordIsStoredUnderTheKeyAskedFor()
{
    Catalogue catalogue;
    catalogue.provider.materials.insert("alias", RecordingProvider::Record("m", ZAXMatDefinition::Material, 1));
    QCOMPARE(catalogue.cache->GetMaterial("alias").GetKey(), QByteArray("m"));
    catalogue.cache->GetMaterial("alias");
    catalogue.cache->GetMaterial("m");
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterial(alias)", "GetMaterial(m)"}));
}

void tst_ZAXMatProviderCache::materialsAndPackagingsAreApart()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("k", 1);
    catalogue.provider.AddPackaging("k", "k", 2);
    QCOMPARE(catalogue.cache->GetMaterial("k").GetValue("value"), QVariant(1));
    QCOMPARE(catalogue.cache->GetPackaging("k").GetValue("value"), QVariant(2));
}

void tst_ZAXMatProviderCache::searchesAreServedFromMemory()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("a", 1);
    catalogue.provider.AddMaterial("b", 2);
    const QMultiHash<QByteArray, std::pair<QByteArray, QVariant>> criteria{{"", {"value", 2}}};
    QCOMPARE(catalogue.cache->FindMaterials(criteria), QList<QByteArray>{"b"});
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterialKeys()", "GetMaterial(a)", "GetMaterial(b)"}));
    QCOMPARE(catalogue.cache->FindMaterials(criteria), QList<QByteArray>{"b"});
    QCOMPARE(catalogue.TakeCalls(), QStringList());
}

void tst_ZAXMatProviderCache::packagingKeysAreFetchedOncePerMaterial()
{
    Catalogue catalogue;
    catalogue.provider.packagingKeys = {{"m", {"b", "a"}}, {"n", {"c"}}};
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), (QList<QByteArray>{"b", "a"}));
    QCOMPARE(catalogue.cache->GetPackagingKeys("n"), QList<QByteArray>{"c"});
    catalogue.provider.packagingKeys.clear();
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), (QList<QByteArray>{"b", "a"}));
    QCOMPARE(catalogue.cache->GetPackagingKeys("n"), QList<QByteArray>{"c"});
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetPackagingKeys(m)", "GetPackagingKeys(n)"}));
}

void tst_ZAXMatProviderCache::anEmptyListOfPackagingKeysIsFetchedAgain()
{
    Catalogue catalogue;
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), QList<QByteArray>());
    catalogue.provider.packagingKeys = {{"m", {"a"}}};
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), QList<QByteArray>{"a"});
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetPackagingKeys(m)", "GetPackagingKeys(m)"}));
}

void tst_ZAXMatProviderCache::aMaterialThatIsNotCreatedChangesNothing()
{
    Catalogue catalogue;
    catalogue.provider.materialKeys = {"a"};
    catalogue.cache->GetMaterialKeys();
    catalogue.provider.created.SetName(QLatin1String("refused"));
    const ZAXMatDefinition created = catalogue.cache->CreateMaterial(QLatin1String("Steel"));
    QVERIFY(created == catalogue.provider.created);
    QCOMPARE(catalogue.cache->GetMaterialKeys(), QList<QByteArray>{"a"});
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterialKeys()", "CreateMaterial(Steel)"}));
    QVERIFY(!catalogue.cache->GetMaterial("").IsValid());
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterial()"}));
}

void tst_ZAXMatProviderCache::aCreatedMaterialIsStoredCommitted()
{
    Catalogue catalogue;
    catalogue.provider.created = RecordingProvider::Record("new", ZAXMatDefinition::Material, 1);
    const ZAXMatDefinition created = catalogue.cache->CreateMaterial(QLatin1String("Steel"));
    QVERIFY(created == catalogue.provider.created);
    QVERIFY(!created.IsChanged());
    QVERIFY(catalogue.cache->GetMaterial("new") == created);
    QVERIFY(!catalogue.cache->GetMaterial("new").IsChanged());
    QCOMPARE(catalogue.TakeCalls(), Calls({"CreateMaterial(Steel)"}));
}

void tst_ZAXMatProviderCache::aCreatedMaterialIsAppendedToFetchedKeys()
{
    Catalogue catalogue;
    catalogue.provider.materialKeys = {"b", "a"};
    catalogue.cache->GetMaterialKeys();
    catalogue.provider.created = RecordingProvider::Record("new", ZAXMatDefinition::Material, 1);
    catalogue.cache->CreateMaterial(QLatin1String("Steel"));
    catalogue.TakeCalls();
    QCOMPARE(catalogue.cache->GetMaterialKeys(), (QList<QByteArray>{"b", "a", "new"}));
    QCOMPARE(catalogue.TakeCalls(), QStringList());
}

void tst_ZAXMatProviderCache::aCreatedMaterialLeavesUnfetchedKeysUnfetched()
{
    Catalogue catalogue;
    catalogue.provider.created = RecordingProvider::Record("new", ZAXMatDefinition::Material, 1);
    catalogue.cache->CreateMaterial(QLatin1String("Steel"));
    catalogue.provider.materialKeys = {"new", "a"};
    QCOMPARE(catalogue.cache->GetMaterialKeys(), (QList<QByteArray>{"new", "a"}));
    QCOMPARE(catalogue.TakeCalls(), Calls({"CreateMaterial(Steel)", "GetMaterialKeys()"}));
}

void tst_ZAXMatProviderCache::aPackagingThatIsNotCreatedChangesNothing()
{
    Catalogue catalogue;
    catalogue.provider.packagingKeys = {{"m", {"a"}}};
    catalogue.cache->GetPackagingKeys("m");
    const ZAXMatDefinition created = catalogue.cache->CreatePackaging(QLatin1String("Sheet"), "m");
    QVERIFY(!created.IsValid());
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), QList<QByteArray>{"a"});
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetPackagingKeys(m)", "CreatePackaging(Sheet,m)"}));
}

void tst_ZAXMatProviderCache::aCreatedPackagingIsStoredCommitted()
{
    Catalogue catalogue;
    catalogue.provider.created = RecordingProvider::Record("new", ZAXMatDefinition::Packaging, 1);
    const ZAXMatDefinition created = catalogue.cache->CreatePackaging(QLatin1String("Sheet"), "m");
    QVERIFY(created == catalogue.provider.created);
    QVERIFY(!created.IsChanged());
    QVERIFY(catalogue.cache->GetPackaging("new") == created);
    QVERIFY(!catalogue.cache->GetPackaging("new").IsChanged());
    QCOMPARE(catalogue.TakeCalls(), Calls({"CreatePackaging(Sheet,m)"}));
}

void tst_ZAXMatProviderCache::aCreatedPackagingIsAppendedToFetchedKeys()
{
    Catalogue catalogue;
    catalogue.provider.packagingKeys = {{"m", {"b", "a"}}, {"n", {"c"}}};
    catalogue.cache->GetPackagingKeys("m");
    catalogue.cache->GetPackagingKeys("n");
    catalogue.provider.created = RecordingProvider::Record("new", ZAXMatDefinition::Packaging, 1);
    catalogue.cache->CreatePackaging(QLatin1String("Sheet"), "m");
    catalogue.TakeCalls();
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), (QList<QByteArray>{"b", "a", "new"}));
    QCOMPARE(catalogue.cache->GetPackagingKeys("n"), QList<QByteArray>{"c"});
    // Its material is known: removing it takes it out of that list.
    catalogue.cache->RemovePackaging("new");
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), (QList<QByteArray>{"b", "a"}));
    QCOMPARE(catalogue.TakeCalls(), Calls({"RemovePackaging(new)"}));
}

void tst_ZAXMatProviderCache::aCreatedPackagingIsAppendedToAFetchedEmptyList()
{
    Catalogue catalogue;
    catalogue.cache->GetPackagingKeys("m");
    catalogue.provider.created = RecordingProvider::Record("new", ZAXMatDefinition::Packaging, 1);
    catalogue.cache->CreatePackaging(QLatin1String("Sheet"), "m");
    catalogue.TakeCalls();
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), QList<QByteArray>{"new"});
    QCOMPARE(catalogue.TakeCalls(), QStringList());
}

void tst_ZAXMatProviderCache::aCreatedPackagingLeavesUnfetchedKeysUnfetched()
{
    Catalogue catalogue;
    catalogue.provider.created = RecordingProvider::Record("new", ZAXMatDefinition::Packaging, 1);
    catalogue.cache->CreatePackaging(QLatin1String("Sheet"), "m");
    catalogue.provider.packagingKeys = {{"m", {"new", "a"}}};
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), (QList<QByteArray>{"new", "a"}));
    QCOMPARE(catalogue.TakeCalls(), Calls({"CreatePackaging(Sheet,m)", "GetPackagingKeys(m)"}));
}

void tst_ZAXMatProviderCache::aRefusedRemovalOfAMaterialChangesNothing()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 2);
    catalogue.cache->GetMaterialKeys();
    catalogue.cache->GetMaterial("m");
    catalogue.cache->GetPackagingKeys("m");
    catalogue.cache->GetPackaging("p");
    catalogue.provider.refused = {"m"};
    catalogue.TakeCalls();
    QVERIFY(!catalogue.cache->RemoveMaterial("m"));
    QCOMPARE(catalogue.cache->GetMaterialKeys(), QList<QByteArray>{"m"});
    QVERIFY(catalogue.cache->GetMaterial("m").IsValid());
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), QList<QByteArray>{"p"});
    QVERIFY(catalogue.cache->GetPackaging("p").IsValid());
    QCOMPARE(catalogue.TakeCalls(), Calls({"RemoveMaterial(m)"}));
}

void tst_ZAXMatProviderCache::aRemovedMaterialIsForgottenWithItsFetchedPackagings()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddMaterial("n", 1);
    catalogue.provider.AddPackaging("m", "p", 2);
    catalogue.provider.AddPackaging("m", "q", 2);
    catalogue.provider.AddPackaging("n", "r", 2);
    catalogue.cache->GetMaterialKeys();
    catalogue.cache->GetMaterial("m");
    catalogue.cache->GetPackagingKeys("m");
    catalogue.cache->GetPackagingKeys("n");
    catalogue.cache->GetPackaging("p");
    catalogue.cache->GetPackaging("q");
    catalogue.cache->GetPackaging("r");
    catalogue.TakeCalls();
    QVERIFY(catalogue.cache->RemoveMaterial("m"));
    QCOMPARE(catalogue.cache->GetMaterialKeys(), QList<QByteArray>{"n"});
    QCOMPARE(catalogue.TakeCalls(), Calls({"RemoveMaterial(m)"}));
    catalogue.cache->GetMaterial("m");
    catalogue.cache->GetPackagingKeys("m");
    catalogue.cache->GetPackagingKeys("n");
    catalogue.cache->GetPackaging("p");
    catalogue.cache->GetPackaging("q");
    catalogue.cache->GetPackaging("r");
    QCOMPARE(catalogue.TakeCalls(),
             Calls({"GetMaterial(m)", "GetPackagingKeys(m)", "GetPackaging(p)", "GetPackaging(q)"}));
}

void tst_ZAXMatProviderCache::aRemovedMaterialTakesEveryOccurrenceOfItsKey()
{
    Catalogue catalogue;
    catalogue.provider.materialKeys = {"m", "a", "m"};
    catalogue.cache->GetMaterialKeys();
    catalogue.cache->RemoveMaterial("m");
    QCOMPARE(catalogue.cache->GetMaterialKeys(), QList<QByteArray>{"a"});
}

void tst_ZAXMatProviderCache::packagingsThatWereNotFetchedByListAreNotForgotten()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 2);
    catalogue.cache->GetPackaging("p");
    catalogue.cache->RemoveMaterial("m");
    catalogue.TakeCalls();
    QVERIFY(catalogue.cache->GetPackaging("p").IsValid());
    QCOMPARE(catalogue.TakeCalls(), QStringList());
}

void tst_ZAXMatProviderCache::aRefusedRemovalOfAPackagingChangesNothing()
{
    Catalogue catalogue;
    catalogue.provider.AddPackaging("m", "p", 2);
    catalogue.cache->GetPackagingKeys("m");
    catalogue.cache->GetPackaging("p");
    catalogue.provider.refused = {"p"};
    catalogue.TakeCalls();
    QVERIFY(!catalogue.cache->RemovePackaging("p"));
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), QList<QByteArray>{"p"});
    QVERIFY(catalogue.cache->GetPackaging("p").IsValid());
    QCOMPARE(catalogue.TakeCalls(), Calls({"RemovePackaging(p)"}));
}

void tst_ZAXMatProviderCache::aRemovedPackagingIsForgotten()
{
    Catalogue catalogue;
    catalogue.provider.AddPackaging("m", "p", 2);
    catalogue.provider.AddPackaging("m", "q", 2);
    catalogue.cache->GetPackagingKeys("m");
    catalogue.cache->GetPackaging("p");
    catalogue.TakeCalls();
    QVERIFY(catalogue.cache->RemovePackaging("p"));
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), QList<QByteArray>{"q"});
    QCOMPARE(catalogue.TakeCalls(), Calls({"RemovePackaging(p)"}));
    catalogue.cache->GetPackaging("p");
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetPackaging(p)"}));
}

void tst_ZAXMatProviderCache::aRemovedPackagingTakesEveryOccurrenceOfItsKey()
{
    Catalogue catalogue;
    catalogue.provider.packagingKeys = {{"m", {"p", "q", "p"}}};
    catalogue.cache->GetPackagingKeys("m");
    catalogue.cache->RemovePackaging("p");
    QCOMPARE(catalogue.cache->GetPackagingKeys("m"), QList<QByteArray>{"q"});
}

void tst_ZAXMatProviderCache::aRemovedPackagingOfNoFetchedListIsForgotten()
{
    Catalogue catalogue;
    catalogue.provider.AddPackaging("m", "p", 2);
    catalogue.provider.packagingKeys.insert("", {"p", "q"});
    catalogue.cache->GetPackaging("p");
    QVERIFY(catalogue.cache->RemovePackaging("p"));
    catalogue.TakeCalls();
    catalogue.cache->GetPackaging("p");
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetPackaging(p)"}));
}

void tst_ZAXMatProviderCache::anInvalidRecordIsNotUpdated()
{
    const Catalogue catalogue;
    QVERIFY(!catalogue.cache->Update(ZAXMatDefinition()));
    QCOMPARE(catalogue.TakeCalls(), QStringList());
}

void tst_ZAXMatProviderCache::anUpdateIsHandedOnAndCopied()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    ZAXMatDefinition record = catalogue.cache->GetMaterial("m");
    record.SetName(QLatin1String("Other"));
    record.SetValue("value", 2);
    catalogue.TakeCalls();
    QVERIFY(catalogue.cache->Update(record));
    QCOMPARE(catalogue.TakeCalls(), Calls({"Update(m)"}));
    QCOMPARE(catalogue.provider.updates.constLast().GetValue("value"), QVariant(2));
    const ZAXMatDefinition cached = catalogue.cache->GetMaterial("m");
    QCOMPARE(cached.GetName(), QLatin1String("Other"));
    QCOMPARE(cached.GetValue("value"), QVariant(2));
    QVERIFY(cached.IsChanged());
    QCOMPARE(catalogue.TakeCalls(), QStringList());
}

void tst_ZAXMatProviderCache::anUpdateKeepsTheIdentityOfTheCachedRecord()
{
    Catalogue catalogue;
    catalogue.provider.AddPackaging("m", "p", 1);
    catalogue.provider.packagings["p"].SetMaterialKey("m");
    ZAXMatDefinition record = catalogue.cache->GetPackaging("p");
    record.SetMaterialKey("elsewhere");
    record.SetValue("value", 2);
    catalogue.cache->Update(record);
    QCOMPARE(catalogue.cache->GetPackaging("p").GetMaterialKey(), QByteArray("m"));
    QCOMPARE(catalogue.cache->GetPackaging("p").GetValue("value"), QVariant(2));
}

void tst_ZAXMatProviderCache::aRefusedUpdateLeavesTheCachedRecord()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    const ZAXMatDefinition before = catalogue.cache->GetMaterial("m");
    catalogue.provider.refused = {"m"};
    QVERIFY(catalogue.cache->Update(Catalogue::Changed(before, 2)));
    QVERIFY(catalogue.cache->GetMaterial("m") == before);
    QVERIFY(!catalogue.cache->GetMaterial("m").IsChanged());
}

void tst_ZAXMatProviderCache::anUpdateOfAnyOtherTypeConcernsPackagings()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("k", 1);
    catalogue.provider.AddPackaging("m", "k", 1);
    catalogue.cache->GetMaterial("k");
    ZAXMatDefinition record = catalogue.cache->GetPackaging("k");
    record.SetType(static_cast<ZAXMatDefinition::Type>(2));
    catalogue.cache->Update(Catalogue::Changed(record, 2));
    QCOMPARE(catalogue.cache->GetPackaging("k").GetValue("value"), QVariant(2));
    QCOMPARE(catalogue.cache->GetPackaging("k").GetType(), ZAXMatDefinition::Packaging);
    QCOMPARE(catalogue.cache->GetMaterial("k").GetValue("value"), QVariant(1));
}

void tst_ZAXMatProviderCache::anUpdateOfARecordThatIsNotCachedIsReadFromTheProvider()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    QVERIFY(catalogue.cache->Update(Catalogue::Changed(catalogue.provider.materials.value("m"), 2)));
    catalogue.TakeCalls();
    QCOMPARE(catalogue.cache->GetMaterial("m").GetValue("value"), QVariant(1));
    QCOMPARE(catalogue.TakeCalls(), Calls({"GetMaterial(m)"}));
    QVERIFY(!catalogue.cache->GetMaterial("m").IsChanged());
}

void tst_ZAXMatProviderCache::discardBringsCommittedRecordsBack()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 1);
    const ZAXMatDefinition material = catalogue.cache->GetMaterial("m");
    const ZAXMatDefinition packaging = catalogue.cache->GetPackaging("p");
    catalogue.UpdateMaterial("m", 2);
    catalogue.UpdatePackaging("p", 2);
    catalogue.cache->Discard();
    QVERIFY(catalogue.cache->GetMaterial("m") == material);
    QVERIFY(!catalogue.cache->GetMaterial("m").IsChanged());
    QVERIFY(catalogue.cache->GetPackaging("p") == packaging);
    QVERIFY(!catalogue.cache->GetPackaging("p").IsChanged());
}

void tst_ZAXMatProviderCache::discardLeavesKeysAndProvider()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddMaterial("gone", 1);
    catalogue.cache->GetMaterialKeys();
    catalogue.provider.created = RecordingProvider::Record("new", ZAXMatDefinition::Material, 1);
    catalogue.cache->CreateMaterial(QLatin1String("Steel"));
    catalogue.cache->RemoveMaterial("gone");
    catalogue.UpdateMaterial("m", 2);
    catalogue.TakeCalls();
    catalogue.cache->Discard();
    QCOMPARE(catalogue.cache->GetMaterialKeys(), (QList<QByteArray>{"m", "new"}));
    QVERIFY(catalogue.cache->GetMaterial("new").IsValid());
    QCOMPARE(catalogue.TakeCalls(), QStringList());
    QCOMPARE(catalogue.provider.updates.constLast().GetValue("value"), QVariant(2));
}

void tst_ZAXMatProviderCache::commitHandsOverChangedRecordsThenCommits()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m1", 1);
    catalogue.provider.AddMaterial("m2", 1);
    catalogue.provider.AddMaterial("same", 1);
    catalogue.provider.AddPackaging("m1", "p1", 1);
    catalogue.provider.AddPackaging("m1", "same too", 1);
    catalogue.cache->GetMaterial("same");
    catalogue.cache->GetPackaging("same too");
    catalogue.UpdatePackaging("p1", 2);
    catalogue.UpdateMaterial("m1", 2);
    catalogue.UpdateMaterial("m2", 2);
    catalogue.provider.updates.clear();
    catalogue.TakeCalls();
    QVERIFY(catalogue.cache->Commit());
    const QStringList calls = catalogue.TakeCalls();
    QCOMPARE(Sorted(calls.mid(0, 2)), Calls({"Update(m1)", "Update(m2)"}));
    QCOMPARE(calls.mid(2), Calls({"Update(p1)", "Commit()"}));
    QCOMPARE(catalogue.provider.updates.constFirst().GetValue("value"), QVariant(2));
    QVERIFY(!catalogue.cache->GetMaterial("m1").IsChanged());
    QVERIFY(!catalogue.cache->GetMaterial("m2").IsChanged());
    QVERIFY(!catalogue.cache->GetPackaging("p1").IsChanged());
    QCOMPARE(catalogue.cache->GetPackaging("p1").GetValue("value"), QVariant(2));
}

void tst_ZAXMatProviderCache::commitOfNothingCommitsTheProvider()
{
    const Catalogue catalogue;
    QVERIFY(catalogue.cache->Commit());
    QCOMPARE(catalogue.TakeCalls(), Calls({"Commit()"}));
}

void tst_ZAXMatProviderCache::committedRecordsAreNotHandedOverAgain()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.UpdateMaterial("m", 2);
    catalogue.cache->Commit();
    catalogue.TakeCalls();
    QVERIFY(catalogue.cache->Commit());
    QCOMPARE(catalogue.TakeCalls(), Calls({"Commit()"}));
    catalogue.cache->Discard();
    QCOMPARE(catalogue.cache->GetMaterial("m").GetValue("value"), QVariant(2));
}

void tst_ZAXMatProviderCache::commitStopsAtARefusedMaterial()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 1);
    catalogue.UpdateMaterial("m", 2);
    catalogue.UpdatePackaging("p", 2);
    catalogue.provider.refused = {"m"};
    catalogue.TakeCalls();
    QVERIFY(!catalogue.cache->Commit());
    QCOMPARE(catalogue.TakeCalls(), Calls({"Update(m)"}));
    QVERIFY(catalogue.cache->GetMaterial("m").IsChanged());
    QVERIFY(catalogue.cache->GetPackaging("p").IsChanged());
}

void tst_ZAXMatProviderCache::commitStopsAtARefusedPackaging()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 1);
    catalogue.UpdateMaterial("m", 2);
    catalogue.UpdatePackaging("p", 2);
    catalogue.provider.refused = {"p"};
    catalogue.TakeCalls();
    QVERIFY(!catalogue.cache->Commit());
    QCOMPARE(catalogue.TakeCalls(), Calls({"Update(m)", "Update(p)"}));
    QVERIFY(!catalogue.cache->GetMaterial("m").IsChanged());
    QVERIFY(catalogue.cache->GetPackaging("p").IsChanged());
}

void tst_ZAXMatProviderCache::whatWasHandedOverBeforeARefusalStaysCommitted()
{
    Catalogue catalogue;
    for (const char* const key : {"a", "b", "c", "d"}) {
        catalogue.provider.AddMaterial(key, 1);
        catalogue.UpdateMaterial(key, 2);
    }
    catalogue.provider.refused = {"c"};
    catalogue.provider.updates.clear();
    QVERIFY(!catalogue.cache->Commit());
    const QList<ZAXMatDefinition> updates = std::exchange(catalogue.provider.updates, {});
    QCOMPARE(updates.constLast().GetKey(), QByteArray("c"));
    catalogue.provider.refused.clear();
    QVERIFY(catalogue.cache->Commit());
    // What the second Commit() hands over is the refused record and what came behind it.
    QCOMPARE(updates.size() - 1 + catalogue.provider.updates.size(), 4);
}

void tst_ZAXMatProviderCache::commitPassesOverRecordsWithoutKey()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 1);
    catalogue.cache->Update(Catalogue::Changed(catalogue.provider.materials.value("m"), 2));
    catalogue.cache->Update(Catalogue::Changed(catalogue.provider.packagings.value("p"), 2));
    catalogue.TakeCalls();
    QVERIFY(catalogue.cache->Commit());
    QCOMPARE(catalogue.TakeCalls(), Calls({"Commit()"}));
}

void tst_ZAXMatProviderCache::recordsForgottenWhileTheyAreCommittedArePassedOver()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("a", 1);
    catalogue.provider.AddMaterial("b", 1);
    catalogue.UpdateMaterial("a", 2);
    catalogue.UpdateMaterial("b", 2);
    catalogue.provider.updates.clear();
    catalogue.provider.whenUpdated = [&] { catalogue.cache->Refresh(); };
    QVERIFY(catalogue.cache->Commit());
    QCOMPARE(catalogue.provider.updates.size(), 1);
    QCOMPARE(catalogue.cache->GetMaterial("a").GetValue("value"), QVariant(1));
}

void tst_ZAXMatProviderCache::refreshForgetsEverything()
{
    Catalogue catalogue;
    catalogue.provider.AddMaterial("m", 1);
    catalogue.provider.AddPackaging("m", "p", 1);
    catalogue.cache->GetMaterialKeys();
    catalogue.cache->GetPackagingKeys("m");
    catalogue.UpdateMaterial("m", 2);
    catalogue.UpdatePackaging("p", 2);
    catalogue.TakeCalls();
    catalogue.cache->Refresh();
    QCOMPARE(catalogue.TakeCalls(), QStringList());
    QCOMPARE(catalogue.cache->GetMaterial("m").GetValue("value"), QVariant(1));
    QCOMPARE(catalogue.cache->GetPackaging("p").GetValue("value"), QVariant(1));
    catalogue.cache->GetMaterialKeys();
    catalogue.cache->GetPackagingKeys("m");
    QCOMPARE(catalogue.TakeCalls(),
             Calls({"GetMaterial(m)", "GetPackaging(p)", "GetMaterialKeys()", "GetPackagingKeys(m)"}));
    QVERIFY(catalogue.cache->Commit());
    QCOMPARE(catalogue.TakeCalls(), Calls({"Commit()"}));
}

QTEST_GUILESS_MAIN(tst_ZAXMatProviderCache)
#include "tst_ZAXMatProviderCache.moc"
