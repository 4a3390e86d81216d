#include "ZAXFeatLastSavedStore.h"

#include "ZAXFeatContainer.h"
#include "ZAXProbeFeatures.h"
#include "ZAXSysModules.h"

#include <QColor>
#include <QTest>

namespace {

using Store = ZAXFeatLastSavedStore;

/// Writes down what it is asked for, and answers with one value.
class CountingStore : public Store
{
public:
    QVariant GetValue(const QByteArray& className, const QByteArray& property) const override
    {
        calls.append("get " + className + ' ' + property);
        return answer;
    }
    void SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value) override
    {
        calls.append("set " + className + ' ' + property + ' ' + value.toByteArray());
    }
    void ReleaseModule(const void* module) override
    {
        Store::ReleaseModule(module);
        released.append(module);
    }

    QVariant answer;
    mutable QByteArrayList calls;
    QList<const void*> released;
};

const void* ThisModule()
{
    return ZAXSysModules::ModuleOf(reinterpret_cast<const void*>(&ThisModule));
}

struct OwnType
{
    int number = 1;
};

} // namespace

class Panel : public QObject
{
    Q_OBJECT

public:
    enum class Side
    {
        Front,
        Back,
    };
    Q_ENUM(Side)
};

class tst_ZAXFeatLastSavedStore : public QObject
{
    Q_OBJECT

private slots:
    void init() { Store::SetCurrent(nullptr); }
    void cleanup() { Store::SetCurrent(nullptr); }

    void knowsNothingAtFirst();
    void keepsValuesByClassAndProperty();
    void laterValueReplacesTheEarlier();
    void invalidValueForgets();
    void valuesUnderTheSameNamesFollowOneAnother();
    void storeInUseIsTheOneThatWasSet();
    void nullBringsANewStoreInMemory();
    void enumerationOfALeavingModuleBecomesItsNumber();
    void valueOfALeavingModulesTypeIsForgotten();
    void valuesOfQtsTypesOutliveTheModuleThatSavedThem_data();
    void valuesOfQtsTypesOutliveTheModuleThatSavedThem();
    void valuesOfOtherModulesStay();
    void storeInUseIsToldOfALeavingModule();
};

void tst_ZAXFeatLastSavedStore::knowsNothingAtFirst()
{
    QCOMPARE(Store::GetCurrent().GetValue("ZAXProbePart", "length"), QVariant());
}

void tst_ZAXFeatLastSavedStore::keepsValuesByClassAndProperty()
{
    Store& store = Store::GetCurrent();
    store.SetValue("A", "length", 1.0);
    store.SetValue("A", "width", 2.0);
    store.SetValue("B", "length", QStringLiteral("long"));
    QCOMPARE(store.GetValue("A", "length"), QVariant(1.0));
    QCOMPARE(store.GetValue("A", "width"), QVariant(2.0));
    QCOMPARE(store.GetValue("B", "length"), QVariant(QStringLiteral("long")));
    QCOMPARE(store.GetValue("B", "width"), QVariant());
    QCOMPARE(store.GetValue("a", "length"), QVariant());
    QCOMPARE(store.GetValue("Al", "ength"), QVariant());
}

void tst_ZAXFeatLastSavedStore::laterValueReplacesTheEarlier()
{
    Store::GetCurrent().SetValue("A", "length", 1.0);
    Store::GetCurrent().SetValue("A", "length", QStringLiteral("two"));
    QCOMPARE(Store::GetCurrent().GetValue("A", "length"), QVariant(QStringLiteral("two")));
}

void tst_ZAXFeatLastSavedStore::invalidValueForgets()
{
    Store::GetCurrent().SetValue("A", "length", 1.0);
    Store::GetCurrent().SetValue("A", "width", 2.0);
    Store::GetCurrent().SetValue("A", "length", QVariant());
    QCOMPARE(Store::GetCurrent().GetValue("A", "length"), QVariant());
    QCOMPARE(Store::GetCurrent().GetValue("A", "width"), QVariant(2.0));
}

void tst_ZAXFeatLastSavedStore::valuesUnderTheSameNamesFollowOneAnother()
{
    const QByteArray className("A");
    const QByteArray names[] = {"length", "width"};
    Store& store = Store::GetCurrent();
    const auto isKept = [&](int name, const QVariant& value) {
        store.SetValue(className, names[name], value);
        return store.GetValue(className, names[name]) == value;
    };
    QVERIFY(isKept(0, 1.0));
    QVERIFY(isKept(0, 2.0));
    QVERIFY(isKept(1, 3.0));
    QVERIFY(isKept(0, 4.0));
    QVERIFY(isKept(0, QVariant()));
    QVERIFY(isKept(0, QVariant()));
    QVERIFY(isKept(0, 5.0));
    QCOMPARE(store.GetValue(className, names[1]), QVariant(3.0));
    Store::SetCurrent(nullptr);
    Store::GetCurrent().SetValue(className, names[0], 6.0);
    QCOMPARE(Store::GetCurrent().GetValue(className, names[0]), QVariant(6.0));
}

void tst_ZAXFeatLastSavedStore::storeInUseIsTheOneThatWasSet()
{
    CountingStore store;
    store.answer = 7.5;
    Store::SetCurrent(&store);
    QCOMPARE(&Store::GetCurrent(), &store);
    ZAXFeatContainer container;
    ZAXProbePart* const part = AddPart(container, "part");
    QCOMPARE(part->length.GetValue(), 7.5);
    part->WriteLength(ZAXSysLengthValue(2.5));
    part->WriteLength(ZAXSysLengthValue(2.5));
    QCOMPARE(store.calls, QByteArrayList({"get ZAXProbePart length", "set ZAXProbePart length 2.5"}));
}

void tst_ZAXFeatLastSavedStore::nullBringsANewStoreInMemory()
{
    CountingStore store;
    Store::GetCurrent().SetValue("A", "length", 1.0);
    Store::SetCurrent(&store);
    Store::SetCurrent(nullptr);
    QVERIFY(&Store::GetCurrent() != &store);
    QCOMPARE(Store::GetCurrent().GetValue("A", "length"), QVariant());
    Store::GetCurrent().SetValue("A", "length", 2.0);
    QCOMPARE(Store::GetCurrent().GetValue("A", "length"), QVariant(2.0));
    QCOMPARE(store.calls, QByteArrayList());
}

void tst_ZAXFeatLastSavedStore::enumerationOfALeavingModuleBecomesItsNumber()
{
    Store::GetCurrent().SetValue("A", "side", QVariant::fromValue(Panel::Side::Back));
    Store::GetCurrent().ReleaseModule(ThisModule());
    const QVariant kept = Store::GetCurrent().GetValue("A", "side");
    QCOMPARE(kept.metaType(), QMetaType::fromType<int>());
    QCOMPARE(kept.toInt(), 1);
}

void tst_ZAXFeatLastSavedStore::valueOfALeavingModulesTypeIsForgotten()
{
    Store::GetCurrent().SetValue("A", "own", QVariant::fromValue(OwnType()));
    Store::GetCurrent().SetValue("A", "length", 1.0);
    Store::GetCurrent().ReleaseModule(ThisModule());
    QCOMPARE(Store::GetCurrent().GetValue("A", "own"), QVariant());
    QCOMPARE(Store::GetCurrent().GetValue("A", "length"), QVariant(1.0));
}

void tst_ZAXFeatLastSavedStore::valuesOfQtsTypesOutliveTheModuleThatSavedThem_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("double") << QVariant::fromValue(0.1);
    QTest::newRow("bool") << QVariant::fromValue(true);
    QTest::newRow("int") << QVariant::fromValue(7);
    QTest::newRow("text") << QVariant::fromValue(QStringLiteral("ø"));
    QTest::newRow("bytes") << QVariant::fromValue(QByteArray("ab"));
    QTest::newRow("colour") << QVariant::fromValue(QColor(1, 2, 3, 4));
    QTest::newRow("null text") << QVariant::fromValue(QString());
}

void tst_ZAXFeatLastSavedStore::valuesOfQtsTypesOutliveTheModuleThatSavedThem()
{
    QFETCH(QVariant, value);
    Store::GetCurrent().SetValue("A", "value", value);
    Store::GetCurrent().ReleaseModule(ThisModule());
    const QVariant kept = Store::GetCurrent().GetValue("A", "value");
    QCOMPARE(kept, value);
    QVERIFY(ZAXSysModules::ModuleOf(kept.metaType().iface()) != ThisModule());
}

void tst_ZAXFeatLastSavedStore::valuesOfOtherModulesStay()
{
    const void* const qt = ZAXSysModules::ModuleOf(&QObject::staticMetaObject);
    Store::GetCurrent().SetValue("A", "side", QVariant::fromValue(Panel::Side::Back));
    Store::GetCurrent().ReleaseModule(qt);
    QCOMPARE(Store::GetCurrent().GetValue("A", "side"), QVariant::fromValue(Panel::Side::Back));
}

void tst_ZAXFeatLastSavedStore::storeInUseIsToldOfALeavingModule()
{
    CountingStore store;
    Store::SetCurrent(&store);
    ZAXSysModules::Leave(ThisModule());
    QCOMPARE(store.released, QList<const void*>{ThisModule()});
}

QTEST_GUILESS_MAIN(tst_ZAXFeatLastSavedStore)
#include "tst_ZAXFeatLastSavedStore.moc"
