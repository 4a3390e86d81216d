#include "VirtualSlot.h"
#include "ZAXMatProviderBase.h"

#include <QTest>

#include <type_traits>

static_assert(std::has_virtual_destructor_v<ZAXMatProviderBase>);
static_assert(!std::is_copy_constructible_v<ZAXMatProviderBase> && !std::is_copy_assignable_v<ZAXMatProviderBase>);
static_assert(sizeof(ZAXMatProviderBase) == 2 * sizeof(void*), "a virtual table and the private data");

using Criterion = std::pair<QByteArray, QVariant>;
using Criteria = QMultiHash<QByteArray, Criterion>;
Q_DECLARE_METATYPE(Criteria)

namespace {

/// Overrides what must be overridden and counts.
class PlainCatalogue : public ZAXMatProviderBase
{
public:
    QList<QByteArray> GetMaterialKeys() const override
    {
        calls.append("keys");
        return keys;
    }
    ZAXMatDefinition GetMaterial(const QByteArray& key) const override
    {
        calls.append(key);
        return materials.value(key);
    }

    ZAXMatDefinition& Add(const QByteArray& key, const QString& materialType, const QVariant& thickness)
    {
        ZAXMatDefinition& material = materials[key];
        material.SetKey(key);
        material.SetValue("materialType", materialType);
        material.SetValue("thickness", thickness);
        keys.append(key);
        return material;
    }

    QList<QByteArray> keys;
    QHash<QByteArray, ZAXMatDefinition> materials;
    mutable QList<QByteArray> calls;
};

/// Declares a schema of its own.
class SchemaCatalogue : public PlainCatalogue
{
public:
    QList<QByteArray> GetSupportedMaterialProperties(const QByteArray& extension) const override
    {
        return extension.isEmpty() ? QList<QByteArray>{"thickness", "density"} : QList<QByteArray>{extension + "Gas"};
    }
    QList<QByteArray> GetSupportedPackagingProperties(const QByteArray& extension) const override
    {
        return extension.isEmpty() ? QList<QByteArray>{"length", "width"} : QList<QByteArray>{extension + "Angle"};
    }
};

} // namespace

class tst_ZAXMatProviderBase : public QObject
{
    Q_OBJECT

private slots:
    void theVirtualOperationsKeepTheirSlots_data();
    void theVirtualOperationsKeepTheirSlots();
    void aProviderOfKeysAndRecordsAloneIsReadOnly();
    void theStateIsWhatWasSetLast();
    void everyObjectHasAStateOfItsOwn();
    void materialPropertiesAreThoseOfTheSchema_data();
    void materialPropertiesAreThoseOfTheSchema();
    void packagingPropertiesAreThoseOfTheSchema_data();
    void packagingPropertiesAreThoseOfTheSchema();
    void withoutCriteriaAllMaterialsAreFoundInOrder();
    void duplicateKeysAreFoundTwice();
    void materialsAreFoundThatMeetAllCriteria_data();
    void materialsAreFoundThatMeetAllCriteria();
    void criteriaOfExtensionsAreMetByValuesOfExtensions();
    void anInvalidRecordMeetsCriteriaWithoutValueAlone();
    void aValueThatIsMissingInJsonIsStillAValue();
    void materialsAreFoundByTypeAndThickness_data();
    void materialsAreFoundByTypeAndThickness();
    void everyMaterialIsReadOnceWhateverTheCriteria();
};

void tst_ZAXMatProviderBase::theVirtualOperationsKeepTheirSlots_data()
{
    using P = ZAXMatProviderBase;
    QTest::addColumn<qint64>("slot");
    QTest::addColumn<qint64>("expected");
    const auto row = [](const char* name, std::ptrdiff_t slot, int expected) {
        QTest::newRow(name) << qint64(slot) << qint64(expected);
    };
    row("IsReadOnly", VirtualSlot(&P::IsReadOnly), 1);
    row("GetState", VirtualSlot(&P::GetState), 2);
    row("SetState", VirtualSlot(&P::SetState), 3);
    row("GetSupportedMaterialExtensions", VirtualSlot(&P::GetSupportedMaterialExtensions), 4);
    row("HasPackaging", VirtualSlot(&P::HasPackaging), 5);
    row("GetSupportedPackagingExtensions", VirtualSlot(&P::GetSupportedPackagingExtensions), 6);
    row("GetSupportedMaterialProperties", VirtualSlot(&P::GetSupportedMaterialProperties), 7);
    row("GetSupportedPackagingProperties", VirtualSlot(&P::GetSupportedPackagingProperties), 8);
    row("GetMaterialKeys", VirtualSlot(&P::GetMaterialKeys), 9);
    row("GetMaterial", VirtualSlot(&P::GetMaterial), 10);
    row("CreateMaterial", VirtualSlot(&P::CreateMaterial), 11);
    row("RemoveMaterial", VirtualSlot(&P::RemoveMaterial), 12);
    row("GetPackagingKeys", VirtualSlot(&P::GetPackagingKeys), 13);
    row("GetPackaging", VirtualSlot(&P::GetPackaging), 14);
    row("CreatePackaging", VirtualSlot(&P::CreatePackaging), 15);
    row("RemovePackaging", VirtualSlot(&P::RemovePackaging), 16);
    row("Update", VirtualSlot(&P::Update), 17);
}

void tst_ZAXMatProviderBase::theVirtualOperationsKeepTheirSlots()
{
    QFETCH(const qint64, slot);
    QTEST(slot, "expected");
}

void tst_ZAXMatProviderBase::aProviderOfKeysAndRecordsAloneIsReadOnly()
{
    PlainCatalogue catalogue;
    ZAXMatDefinition material = catalogue.Add("{k}", QLatin1String("Steel"), 2.0);
    QVERIFY(catalogue.IsReadOnly());
    QCOMPARE(catalogue.GetState(), ZAXMatProviderBase::State(100));
    QVERIFY(!catalogue.HasPackaging());
    QVERIFY(catalogue.GetSupportedMaterialExtensions().isEmpty());
    QVERIFY(catalogue.GetSupportedPackagingExtensions().isEmpty());
    QVERIFY(catalogue.GetSupportedMaterialProperties("").isEmpty());
    QVERIFY(catalogue.GetSupportedPackagingProperties("").isEmpty());
    QVERIFY(catalogue.CreateMaterial(QLatin1String("Steel")) == ZAXMatDefinition());
    QVERIFY(!catalogue.RemoveMaterial("{k}"));
    QVERIFY(catalogue.GetPackagingKeys("{k}").isEmpty());
    QVERIFY(catalogue.GetPackaging("{k}") == ZAXMatDefinition());
    QVERIFY(catalogue.CreatePackaging(QLatin1String("Sheet"), "{k}") == ZAXMatDefinition());
    QVERIFY(!catalogue.RemovePackaging("{k}"));
    QVERIFY(!catalogue.Update(material));
    QVERIFY(!catalogue.IsMaterialProperty("thickness", ""));
    QVERIFY(!catalogue.IsPackagingProperty("length", ""));
}

void tst_ZAXMatProviderBase::theStateIsWhatWasSetLast()
{
    PlainCatalogue catalogue;
    catalogue.SetState(ZAXMatProviderBase::State(7));
    QCOMPARE(catalogue.GetState(), ZAXMatProviderBase::State(7));
    catalogue.SetState(ZAXMatProviderBase::State(-1));
    QCOMPARE(catalogue.GetState(), ZAXMatProviderBase::State(-1));
}

void tst_ZAXMatProviderBase::everyObjectHasAStateOfItsOwn()
{
    PlainCatalogue one;
    const PlainCatalogue other;
    one.SetState(ZAXMatProviderBase::State(7));
    QCOMPARE(other.GetState(), ZAXMatProviderBase::InitialState);
}

void tst_ZAXMatProviderBase::materialPropertiesAreThoseOfTheSchema_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QByteArray>("extension");
    QTest::addColumn<bool>("expected");
    QTest::newRow("base") << QByteArray("thickness") << QByteArray("") << true;
    QTest::newRow("null key is the base") << QByteArray("density") << QByteArray() << true;
    QTest::newRow("extension") << QByteArray("CutGas") << QByteArray("Cut") << true;
    QTest::newRow("base property in an extension") << QByteArray("thickness") << QByteArray("Cut") << false;
    QTest::newRow("letter case") << QByteArray("Thickness") << QByteArray("") << false;
    QTest::newRow("part of a name") << QByteArray("thick") << QByteArray("") << false;
    QTest::newRow("arguments swapped") << QByteArray("") << QByteArray("thickness") << false;
    QTest::newRow("property of packagings") << QByteArray("length") << QByteArray("") << false;
}

void tst_ZAXMatProviderBase::materialPropertiesAreThoseOfTheSchema()
{
    QFETCH(const QByteArray, property);
    QFETCH(const QByteArray, extension);
    QTEST(SchemaCatalogue().IsMaterialProperty(property, extension), "expected");
}

void tst_ZAXMatProviderBase::packagingPropertiesAreThoseOfTheSchema_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QByteArray>("extension");
    QTest::addColumn<bool>("expected");
    QTest::newRow("base") << QByteArray("width") << QByteArray("") << true;
    QTest::newRow("extension") << QByteArray("GrainAngle") << QByteArray("Grain") << true;
    QTest::newRow("base property in an extension") << QByteArray("width") << QByteArray("Grain") << false;
    QTest::newRow("letter case") << QByteArray("WIDTH") << QByteArray("") << false;
    QTest::newRow("arguments swapped") << QByteArray("") << QByteArray("width") << false;
    QTest::newRow("property of materials") << QByteArray("thickness") << QByteArray("") << false;
}

void tst_ZAXMatProviderBase::packagingPropertiesAreThoseOfTheSchema()
{
    QFETCH(const QByteArray, property);
    QFETCH(const QByteArray, extension);
    QTEST(SchemaCatalogue().IsPackagingProperty(property, extension), "expected");
}

void tst_ZAXMatProviderBase::withoutCriteriaAllMaterialsAreFoundInOrder()
{
    PlainCatalogue catalogue;
    catalogue.Add("c", QLatin1String("Steel"), 2.0);
    catalogue.Add("a", QLatin1String("Brass"), 1.0);
    catalogue.Add("b", QLatin1String("Steel"), 1.0);
    QCOMPARE(catalogue.FindMaterials(Criteria()), (QList<QByteArray>{"c", "a", "b"}));
    QCOMPARE(catalogue.calls, (QList<QByteArray>{"keys", "c", "a", "b"}));
}

void tst_ZAXMatProviderBase::duplicateKeysAreFoundTwice()
{
    PlainCatalogue catalogue;
    catalogue.Add("a", QLatin1String("Steel"), 2.0);
    catalogue.keys = {"a", "b", "a"};
    QCOMPARE(catalogue.FindMaterials(QLatin1String("Steel"), 2.0), (QList<QByteArray>{"a", "a"}));
}

void tst_ZAXMatProviderBase::materialsAreFoundThatMeetAllCriteria_data()
{
    QTest::addColumn<Criteria>("criteria");
    QTest::addColumn<QList<QByteArray>>("found");
    const auto row = [](const char* name, const QList<Criterion>& base, const QList<QByteArray>& found) {
        Criteria criteria;
        for (const Criterion& criterion : base)
            criteria.insert("", criterion);
        QTest::newRow(name) << criteria << found;
    };
    row("one", {{"thickness", 2.0}}, {"s2", "b2"});
    row("two", {{"thickness", 2.0}, {"materialType", QLatin1String("Steel")}}, {"s2"});
    row("two of which one is not met", {{"thickness", 2.0}, {"materialType", QLatin1String("Zinc")}}, {});
    row("two values for one property", {{"thickness", 1.0}, {"thickness", 2.0}}, {});
    row("the same twice", {{"thickness", 2.0}, {"thickness", 2}}, {"s2", "b2"});
    row("property that none defines", {{"density", 7.85}}, {});
    row("no value where none defines the property", {{"density", QVariant()}}, {"s2", "s1", "b2", "none"});
    row("no value", {{"thickness", QVariant()}}, {"none"});
    row("text", {{"thickness", QLatin1String("2")}}, {});
    row("other number type", {{"thickness", 2LL}}, {"s2", "b2"});
    row("bytes for a text", {{"materialType", QByteArray("Steel")}}, {});
    row("letter case", {{"materialType", QLatin1String("steel")}}, {});
}

void tst_ZAXMatProviderBase::materialsAreFoundThatMeetAllCriteria()
{
    QFETCH(const Criteria, criteria);
    PlainCatalogue catalogue;
    catalogue.Add("s2", QLatin1String("Steel"), 2.0);
    catalogue.Add("s1", QLatin1String("Steel"), 1.0);
    catalogue.Add("b2", QLatin1String("Brass"), 2);
    catalogue.Add("none", QLatin1String("Steel"), QVariant());
    QTEST(catalogue.FindMaterials(criteria), "found");
}

void tst_ZAXMatProviderBase::criteriaOfExtensionsAreMetByValuesOfExtensions()
{
    PlainCatalogue catalogue;
    catalogue.Add("a", QLatin1String("Steel"), 2.0).SetValue("gas", QLatin1String("O2"), "Cut");
    catalogue.Add("b", QLatin1String("Steel"), 2.0).SetValue("gas", QLatin1String("O2"));
    catalogue.Add("c", QLatin1String("Steel"), 1.0).SetValue("gas", QLatin1String("O2"), "Cut");
    Criteria criteria{{"Cut", {"gas", QLatin1String("O2")}}};
    QCOMPARE(catalogue.FindMaterials(criteria), (QList<QByteArray>{"a", "c"}));
    criteria.insert("", {"thickness", 2.0});
    QCOMPARE(catalogue.FindMaterials(criteria), QList<QByteArray>{"a"});
}

void tst_ZAXMatProviderBase::anInvalidRecordMeetsCriteriaWithoutValueAlone()
{
    PlainCatalogue catalogue;
    catalogue.keys = {"unknown"};
    QCOMPARE(catalogue.FindMaterials(Criteria{{"", {"thickness", QVariant()}}}), QList<QByteArray>{"unknown"});
    QCOMPARE(catalogue.FindMaterials(Criteria{{"", {"thickness", 0.0}}}), QList<QByteArray>());
    QCOMPARE(catalogue.FindMaterials(Criteria{{"", {"comment", QString()}}}), QList<QByteArray>());
}

void tst_ZAXMatProviderBase::aValueThatIsMissingInJsonIsStillAValue()
{
    PlainCatalogue catalogue;
    catalogue.Add("a", QLatin1String("Steel"), QVariant::fromValue(nullptr));
    QCOMPARE(catalogue.FindMaterials(Criteria{{"", {"thickness", QVariant()}}}), QList<QByteArray>());
}

void tst_ZAXMatProviderBase::materialsAreFoundByTypeAndThickness_data()
{
    QTest::addColumn<QVariant>("materialType");
    QTest::addColumn<QVariant>("thickness");
    QTest::addColumn<bool>("isFound");
    const QVariant steel(QLatin1String("Steel"));
    QTest::newRow("double") << steel << QVariant(2.0) << true;
    QTest::newRow("integer") << steel << QVariant(2) << true;
    QTest::newRow("integer of JSON") << steel << QVariant(2LL) << true;
    QTest::newRow("slightly thicker") << steel << QVariant(2.0000001) << false;
    QTest::newRow("text") << steel << QVariant(QLatin1String("2")) << false;
    QTest::newRow("no thickness") << steel << QVariant() << false;
    QTest::newRow("letter case") << QVariant(QLatin1String("steel")) << QVariant(2.0) << false;
    QTest::newRow("bytes") << QVariant(QByteArray("Steel")) << QVariant(2.0) << false;
    QTest::newRow("no type") << QVariant() << QVariant(2.0) << false;
}

void tst_ZAXMatProviderBase::materialsAreFoundByTypeAndThickness()
{
    QFETCH(const QVariant, materialType);
    QFETCH(const QVariant, thickness);
    PlainCatalogue catalogue;
    catalogue.Add("a", QString(), thickness).SetValue("materialType", materialType);
    QTEST(!catalogue.FindMaterials(QLatin1String("Steel"), 2.0).isEmpty(), "isFound");
}

void tst_ZAXMatProviderBase::everyMaterialIsReadOnceWhateverTheCriteria()
{
    PlainCatalogue catalogue;
    catalogue.Add("a", QLatin1String("Steel"), 2.0);
    catalogue.Add("b", QLatin1String("Brass"), 2.0);
    catalogue.FindMaterials(QLatin1String("Zinc"), 5.0);
    QCOMPARE(catalogue.calls, (QList<QByteArray>{"keys", "a", "b"}));
}

QTEST_GUILESS_MAIN(tst_ZAXMatProviderBase)
#include "tst_ZAXMatProviderBase.moc"
