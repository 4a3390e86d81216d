#include "VirtualSlot.h"
#include "ZAXMatMaterialProviderManager.h"
#include "ZAXSysException.h"

#include <QTest>

#include <memory>
#include <type_traits>

static_assert(std::has_virtual_destructor_v<ZAXMatMaterialProviderManager>);
static_assert(!std::is_copy_constructible_v<ZAXMatMaterialProviderManager>);
static_assert(!std::is_copy_assignable_v<ZAXMatMaterialProviderManager>);
static_assert(sizeof(ZAXMatMaterialProviderManager) == 2 * sizeof(void*), "a virtual table and the private data");

using Hash = QHash<QByteArray, ZAXMatMaterialProviderManager*>;

namespace {

class Manager : public ZAXMatMaterialProviderManager
{
public:
    explicit Manager(const QByteArray& id)
        : ZAXMatMaterialProviderManager(id), wasListedWhileUnderConstruction(GetHash().value(id) == this)
    {
    }

    void UpdateProviders() override {}

    const bool wasListedWhileUnderConstruction;
};

/// Reports another id than it registered under.
class Pretender : public Manager
{
public:
    Pretender(const QByteArray& id, const QByteArray& reported) : Manager(id), m_reported(reported) {}
    QByteArray GetId() const override { return m_reported; }

private:
    QByteArray m_reported;
};

QString MessageOfASecond(const QByteArray& id)
{
    try {
        const Manager second(id);
    } catch (const ZAXSysException& exception) {
        return exception.GetMessage();
    }
    return {};
}

} // namespace

class tst_ZAXMatMaterialProviderManager : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void theVirtualOperationsKeepTheirSlots();
    void theIdIsTheOneGiven_data();
    void theIdIsTheOneGiven();
    void aManagerIsRegisteredUntilItIsDestroyed();
    void aManagerIsListedWhileItsOwnConstructorRuns();
    void aSecondManagerOfTheSameIdIsRefused();
    void idsAreComparedByteForByte();
    void theIdsThatManagersReportCount();
    void aManagerThatTakesAnotherOnesPlaceLeavesNothingOfItBehind();
    void anIdIsFreeAgainOnceItsManagerIsGone();
    void aCopyOfTheRegistryIsUnaffectedByLaterChanges();
};

void tst_ZAXMatMaterialProviderManager::init()
{
    QCOMPARE(ZAXMatMaterialProviderManager::GetHash(), Hash());
}

void tst_ZAXMatMaterialProviderManager::theVirtualOperationsKeepTheirSlots()
{
    QCOMPARE(VirtualSlot(&ZAXMatMaterialProviderManager::UpdateProviders), 1);
    QCOMPARE(VirtualSlot(&ZAXMatMaterialProviderManager::GetId), 2);
}

void tst_ZAXMatMaterialProviderManager::theIdIsTheOneGiven_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::newRow("name") << QByteArray("company");
    QTest::newRow("bytes") << QByteArray("\0\xff a", 4);
    QTest::newRow("empty") << QByteArray("");
}

void tst_ZAXMatMaterialProviderManager::theIdIsTheOneGiven()
{
    QFETCH(const QByteArray, id);
    Manager manager(id);
    QCOMPARE(manager.GetId(), id);
    QCOMPARE(ZAXMatMaterialProviderManager::GetHash(), (Hash{{id, &manager}}));
}

void tst_ZAXMatMaterialProviderManager::aManagerIsRegisteredUntilItIsDestroyed()
{
    Manager first("first");
    {
        Manager second("second");
        QCOMPARE(ZAXMatMaterialProviderManager::GetHash(), (Hash{{"first", &first}, {"second", &second}}));
    }
    QCOMPARE(ZAXMatMaterialProviderManager::GetHash(), (Hash{{"first", &first}}));
}

void tst_ZAXMatMaterialProviderManager::aManagerIsListedWhileItsOwnConstructorRuns()
{
    QVERIFY(Manager("a").wasListedWhileUnderConstruction);
}

void tst_ZAXMatMaterialProviderManager::aSecondManagerOfTheSameIdIsRefused()
{
    Manager first("company");
    QCOMPARE(MessageOfASecond("company"), QLatin1String("A provider manager with the given ID already exists."));
    QCOMPARE(ZAXMatMaterialProviderManager::GetHash(), (Hash{{"company", &first}}));
}

void tst_ZAXMatMaterialProviderManager::idsAreComparedByteForByte()
{
    const Manager first("company");
    QCOMPARE(MessageOfASecond("Company"), QString());
    QCOMPARE(MessageOfASecond("company "), QString());
    QCOMPARE(MessageOfASecond(QByteArray("company\0", 8)), QString());
}

void tst_ZAXMatMaterialProviderManager::theIdsThatManagersReportCount()
{
    const Pretender pretender("registered", "reported");
    QCOMPARE(MessageOfASecond("reported"), QLatin1String("A provider manager with the given ID already exists."));
    QCOMPARE(MessageOfASecond("registered"), QString());
}

void tst_ZAXMatMaterialProviderManager::aManagerThatTakesAnotherOnesPlaceLeavesNothingOfItBehind()
{
    auto pretender = std::make_unique<Pretender>("registered", "reported");
    Manager heir("registered");
    QCOMPARE(ZAXMatMaterialProviderManager::GetHash(), (Hash{{"registered", &heir}}));
    pretender.reset();
    QCOMPARE(ZAXMatMaterialProviderManager::GetHash(), (Hash{{"registered", &heir}}));
}

void tst_ZAXMatMaterialProviderManager::anIdIsFreeAgainOnceItsManagerIsGone()
{
    std::make_unique<Manager>("company").reset();
    Manager next("company");
    QCOMPARE(ZAXMatMaterialProviderManager::GetHash(), (Hash{{"company", &next}}));
}

void tst_ZAXMatMaterialProviderManager::aCopyOfTheRegistryIsUnaffectedByLaterChanges()
{
    auto first = std::make_unique<Manager>("first");
    const auto* const address = first.get();
    const Hash copy = ZAXMatMaterialProviderManager::GetHash();
    const Manager second("second");
    first.reset();
    QCOMPARE(copy.size(), 1);
    QCOMPARE(static_cast<const void*>(copy.value("first")), static_cast<const void*>(address));
}

QTEST_GUILESS_MAIN(tst_ZAXMatMaterialProviderManager)
#include "tst_ZAXMatMaterialProviderManager.moc"
