#include "RecordingProvider.h"
#include "VirtualSlot.h"
#include "ZAXMatMaterialProviderManager.h"
#include "ZAXMatProvider.h"
#include "ZAXSysException.h"

#include <QTest>

#include <memory>
#include <type_traits>

static_assert(std::is_base_of_v<ZAXMatProviderBase, ZAXMatProvider>);
static_assert(!std::is_copy_constructible_v<ZAXMatProvider> && !std::is_copy_assignable_v<ZAXMatProvider>);
static_assert(sizeof(ZAXMatProvider) == sizeof(ZAXMatProviderBase), "no data of its own");

namespace {

/// Makes a provider the first time it is asked, as managers of other modules do.
class Manager : public ZAXMatMaterialProviderManager
{
public:
    explicit Manager(const QByteArray& id, QList<QByteArray>* log = nullptr)
        : ZAXMatMaterialProviderManager(id), m_log(log)
    {
    }

    void UpdateProviders() override
    {
        ++updates;
        if (m_log)
            m_log->append(GetId());
        if (!m_provider)
            m_provider = std::make_unique<RecordingProvider>("of " + GetId());
    }

    ZAXMatProvider* Provider() const { return m_provider.get(); }

    int updates = 0;

private:
    std::unique_ptr<RecordingProvider> m_provider;
    QList<QByteArray>* m_log;
};

/// Looks itself up before it is complete, and while it goes.
class SelfFinder : public RecordingProvider
{
public:
    SelfFinder(const QByteArray& id, bool* wasRegisteredAtItsEnd)
        : RecordingProvider(id), foundItself(GetProvider(id) == this), m_wasRegisteredAtItsEnd(wasRegisteredAtItsEnd)
    {
    }
    ~SelfFinder() override { *m_wasRegisteredAtItsEnd = GetProvider(reportedId) == this; }

    const bool foundItself;

private:
    bool* m_wasRegisteredAtItsEnd;
};

QString MessageOfASecond(const QByteArray& id)
{
    try {
        const RecordingProvider second(id);
    } catch (const ZAXSysException& exception) {
        return exception.GetMessage();
    }
    return {};
}

QList<ZAXMatProvider*> SortedProviders()
{
    QList<ZAXMatProvider*> providers = ZAXMatProvider::GetProviders();
    std::sort(providers.begin(), providers.end(), std::less<>());
    return providers;
}

QList<ZAXMatProvider*> Sorted(QList<ZAXMatProvider*> providers)
{
    std::sort(providers.begin(), providers.end(), std::less<>());
    return providers;
}

using Pairs = QMap<QByteArray, QList<QByteArray>>;

/// The defined pairs: extension key to sorted property names.
Pairs Defined(const ZAXMatDefinition& record)
{
    Pairs pairs;
    const QList<QByteArray> extensions = record.GetDefinedExtensions();
    for (const QByteArray& extension : extensions) {
        QList<QByteArray> properties = record.GetDefinedProperties(extension);
        std::sort(properties.begin(), properties.end());
        pairs.insert(extension, properties);
    }
    return pairs;
}

} // namespace

class tst_ZAXMatProvider : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void theVirtualOperationsKeepTheirSlots_data();
    void theVirtualOperationsKeepTheirSlots();
    void aProviderIsFoundByItsIdUntilItIsDestroyed();
    void aProviderIsRegisteredFromItsBaseConstructorToItsBaseDestructor();
    void anUnknownIdFindsNothing();
    void aSecondProviderOfTheSameIdIsRefused();
    void idsAreComparedByteForByte();
    void theIdsThatProvidersReportAreAskedForAndCount();
    void aProviderThatTakesAnotherOnesPlaceLeavesNothingOfItBehind();
    void anIdIsFreeAgainOnceItsProviderIsGone();
    void commitDoesNothingByDefault();
    void everyManagerIsAskedOnceWheneverProvidersAreListed();
    void managersAreAskedInTheOrderOfTheirRegistry();
    void providersOfManagersAreListed();
    void lookingAProviderUpAsksNoManager();
    void aNewRecordHasTheSchemaOfItsType_data();
    void aNewRecordHasTheSchemaOfItsType();
    void aNewRecordIsUnnamedAndUnchanged();
    void aProviderWithoutSchemaMakesValidRecords();
    void theSchemaIsAskedForInOrderWithTheBaseLast();
};

void tst_ZAXMatProvider::init()
{
    QCOMPARE(ZAXMatProvider::GetProviders(), QList<ZAXMatProvider*>());
}

void tst_ZAXMatProvider::theVirtualOperationsKeepTheirSlots_data()
{
    using P = ZAXMatProvider;
    QTest::addColumn<qint64>("slot");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("first of the base") << qint64(VirtualSlot(&P::IsReadOnly)) << qint64(1);
    QTest::newRow("last of the base") << qint64(VirtualSlot(&P::Update)) << qint64(17);
    QTest::newRow("GetProviderLabel") << qint64(VirtualSlot(&P::GetProviderLabel)) << qint64(18);
    QTest::newRow("GetProviderId") << qint64(VirtualSlot(&P::GetProviderId)) << qint64(19);
    QTest::newRow("Commit") << qint64(VirtualSlot(&P::Commit)) << qint64(20);
}

void tst_ZAXMatProvider::theVirtualOperationsKeepTheirSlots()
{
    QFETCH(const qint64, slot);
    QTEST(slot, "expected");
}

void tst_ZAXMatProvider::aProviderIsFoundByItsIdUntilItIsDestroyed()
{
    RecordingProvider first("first");
    {
        RecordingProvider second("second");
        QCOMPARE(ZAXMatProvider::GetProvider("first"), &first);
        QCOMPARE(ZAXMatProvider::GetProvider("second"), &second);
        QCOMPARE(SortedProviders(), Sorted({&first, &second}));
    }
    QCOMPARE(ZAXMatProvider::GetProvider("second"), nullptr);
    QCOMPARE(ZAXMatProvider::GetProviders(), QList<ZAXMatProvider*>{&first});
}

void tst_ZAXMatProvider::aProviderIsRegisteredFromItsBaseConstructorToItsBaseDestructor()
{
    bool wasRegisteredAtItsEnd = false;
    {
        const SelfFinder provider("a", &wasRegisteredAtItsEnd);
        QVERIFY(provider.foundItself);
    }
    QVERIFY(wasRegisteredAtItsEnd);
    QCOMPARE(ZAXMatProvider::GetProvider("a"), nullptr);
}

void tst_ZAXMatProvider::anUnknownIdFindsNothing()
{
    QCOMPARE(ZAXMatProvider::GetProvider("a"), nullptr);
    RecordingProvider provider("a");
    QCOMPARE(ZAXMatProvider::GetProvider("A"), nullptr);
    QCOMPARE(ZAXMatProvider::GetProvider(""), nullptr);
    QCOMPARE(ZAXMatProvider::GetProviders(), QList<ZAXMatProvider*>{&provider});
}

void tst_ZAXMatProvider::aSecondProviderOfTheSameIdIsRefused()
{
    RecordingProvider first("company");
    QCOMPARE(MessageOfASecond("company"), QLatin1String("A provider with the given ID already exists."));
    QCOMPARE(ZAXMatProvider::GetProvider("company"), &first);
    QCOMPARE(ZAXMatProvider::GetProviders(), QList<ZAXMatProvider*>{&first});
}

void tst_ZAXMatProvider::idsAreComparedByteForByte()
{
    const RecordingProvider first("company");
    QCOMPARE(MessageOfASecond("Company"), QString());
    QCOMPARE(MessageOfASecond("compan"), QString());
    QCOMPARE(MessageOfASecond(QByteArray("company\0", 8)), QString());
}

void tst_ZAXMatProvider::theIdsThatProvidersReportAreAskedForAndCount()
{
    RecordingProvider pretender("registered");
    pretender.reportedId = "reported";
    QCOMPARE(MessageOfASecond("reported"), QLatin1String("A provider with the given ID already exists."));
    QCOMPARE(pretender.TakeCalls(), QStringList{QLatin1String("GetProviderId()")});
    QCOMPARE(ZAXMatProvider::GetProvider("reported"), nullptr);
    QCOMPARE(ZAXMatProvider::GetProvider("registered"), &pretender);
    QCOMPARE(MessageOfASecond("other"), QString());
}

void tst_ZAXMatProvider::aProviderThatTakesAnotherOnesPlaceLeavesNothingOfItBehind()
{
    auto pretender = std::make_unique<RecordingProvider>("registered");
    pretender->reportedId = "reported";
    RecordingProvider heir("registered");
    QCOMPARE(ZAXMatProvider::GetProvider("registered"), &heir);
    pretender.reset();
    QCOMPARE(ZAXMatProvider::GetProvider("registered"), &heir);
}

void tst_ZAXMatProvider::anIdIsFreeAgainOnceItsProviderIsGone()
{
    std::make_unique<RecordingProvider>("company").reset();
    const RecordingProvider next("company");
    QCOMPARE(ZAXMatProvider::GetProvider("company"), &next);
}

void tst_ZAXMatProvider::commitDoesNothingByDefault()
{
    RecordingProvider provider("a");
    provider.AddMaterial("{k}", 1);
    provider.ZAXMatProvider::Commit();
    QCOMPARE(provider.TakeCalls(), QStringList());
}

void tst_ZAXMatProvider::everyManagerIsAskedOnceWheneverProvidersAreListed()
{
    Manager first("first");
    Manager second("second");
    ZAXMatProvider::GetProviders();
    QCOMPARE(first.updates, 1);
    QCOMPARE(second.updates, 1);
    ZAXMatProvider::GetProviders();
    QCOMPARE(first.updates, 2);
    QCOMPARE(second.updates, 2);
}

void tst_ZAXMatProvider::managersAreAskedInTheOrderOfTheirRegistry()
{
    QList<QByteArray> log;
    const Manager a("a", &log);
    const Manager b("b", &log);
    const Manager c("c", &log);
    ZAXMatProvider::GetProviders();
    QCOMPARE(log, ZAXMatMaterialProviderManager::GetHash().keys());
}

void tst_ZAXMatProvider::providersOfManagersAreListed()
{
    RecordingProvider own("own");
    Manager first("first");
    Manager second("second");
    const QList<ZAXMatProvider*> providers = SortedProviders();
    QVERIFY(first.Provider());
    QCOMPARE(providers, Sorted({&own, first.Provider(), second.Provider()}));
}

void tst_ZAXMatProvider::lookingAProviderUpAsksNoManager()
{
    const Manager manager("company");
    QCOMPARE(ZAXMatProvider::GetProvider("of company"), nullptr);
    QCOMPARE(manager.updates, 0);
}

void tst_ZAXMatProvider::aNewRecordHasTheSchemaOfItsType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<Pairs>("pairs");
    const Pairs packaging{{"", {"length"}}, {"Grain", {"angle"}}};
    QTest::newRow("material") << 0 << Pairs{{"", {"density", "thickness"}}, {"Cut", {"gas"}}, {"Dry", {"hours"}}};
    QTest::newRow("packaging") << 1 << packaging;
    QTest::newRow("any other") << 2 << packaging;
    QTest::newRow("negative") << -1 << packaging;
}

void tst_ZAXMatProvider::aNewRecordHasTheSchemaOfItsType()
{
    QFETCH(const int, type);
    RecordingProvider provider("a");
    provider.materialSchema = {{"Cut", "Dry", "Bare"},
                               {{"", {"thickness", "density"}}, {"Cut", {"gas"}}, {"Dry", {"hours"}}}};
    provider.packagingSchema = {{"Grain"}, {{"", {"length"}}, {"Grain", {"angle"}}}};
    const auto record = provider.CreateDefinition(static_cast<ZAXMatDefinition::Type>(type), "{k}");
    QTEST(Defined(record), "pairs");
    QCOMPARE(static_cast<int>(record.GetType()), type);
    QCOMPARE(record.GetKey(), QByteArray("{k}"));
}

void tst_ZAXMatProvider::aNewRecordIsUnnamedAndUnchanged()
{
    RecordingProvider provider("a");
    provider.materialSchema = {{"Cut"}, {{"", {"thickness"}}, {"Cut", {"gas"}}}};
    ZAXMatDefinition record = provider.CreateDefinition(ZAXMatDefinition::Material, "{k}");
    QCOMPARE(record.GetName(), QString());
    QCOMPARE(record.GetMaterialKey(), QByteArray());
    QVERIFY(!record.GetValue("thickness").isValid());
    QVERIFY(!record.GetValue("gas", "Cut").isValid());
    QVERIFY(!record.IsChanged());
    record.SetValue("gas", 1, "Cut");
    record.Revert();
    QVERIFY(record.IsDefined("gas", "Cut"));
    QVERIFY(!record.GetValue("gas", "Cut").isValid());
}

void tst_ZAXMatProvider::aProviderWithoutSchemaMakesValidRecords()
{
    const RecordingProvider provider("a");
    const ZAXMatDefinition record = provider.CreateDefinition(ZAXMatDefinition::Material, "{k}");
    QVERIFY(record.IsValid());
    QCOMPARE(record.GetDefinedExtensions(), QList<QByteArray>());
}

void tst_ZAXMatProvider::theSchemaIsAskedForInOrderWithTheBaseLast()
{
    RecordingProvider provider("a");
    provider.materialSchema.names = {"B", "A"};
    provider.packagingSchema.names = {"D", "C"};
    provider.CreateDefinition(ZAXMatDefinition::Material, "{k}");
    QCOMPARE(provider.TakeCalls(), (QStringList{QLatin1String("GetSupportedMaterialExtensions()"),
                                                QLatin1String("GetSupportedMaterialProperties(B)"),
                                                QLatin1String("GetSupportedMaterialProperties(A)"),
                                                QLatin1String("GetSupportedMaterialProperties()")}));
    provider.CreateDefinition(ZAXMatDefinition::Packaging, "{k}");
    QCOMPARE(provider.TakeCalls(), (QStringList{QLatin1String("GetSupportedPackagingExtensions()"),
                                                QLatin1String("GetSupportedPackagingProperties(D)"),
                                                QLatin1String("GetSupportedPackagingProperties(C)"),
                                                QLatin1String("GetSupportedPackagingProperties()")}));
}

QTEST_GUILESS_MAIN(tst_ZAXMatProvider)
#include "tst_ZAXMatProvider.moc"
