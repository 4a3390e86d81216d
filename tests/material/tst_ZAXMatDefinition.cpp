#include "ZAXMatDefinition.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <climits>
#include <thread>
#include <type_traits>

static_assert(std::has_virtual_destructor_v<ZAXMatDefinition>);
static_assert(sizeof(ZAXMatDefinition) == 2 * sizeof(void*), "a virtual table and one shared pointer");

using Change = void (*)(ZAXMatDefinition&);
Q_DECLARE_METATYPE(Change)

namespace {

/// A packaging with values in the base and in the extension "Grain", committed under the name "Sheet".
ZAXMatDefinition CommittedRecord()
{
    ZAXMatDefinition record;
    record.SetKey("{k}");
    record.SetMaterialKey("{m}");
    record.SetName(QLatin1String("Sheet"));
    record.SetType(ZAXMatDefinition::Packaging);
    record.SetValue("length", 2000.5);
    record.SetValue("comment", QLatin1String("dry"));
    record.SetValue("angle", 90, "Grain");
    record.Commit();
    return record;
}

QJsonValue Parse(const char* json)
{
    return QJsonDocument::fromJson(json).object();
}

QByteArray Print(const QJsonValue& value)
{
    return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
}

template <typename List>
List Sorted(List list)
{
    std::sort(list.begin(), list.end());
    return list;
}

} // namespace

class tst_ZAXMatDefinition : public QObject
{
    Q_OBJECT

private slots:
    void aDefaultRecordIsEmpty();
    void onlyTheKeyMakesARecordValid();
    void everyMemberIsStoredAsGiven();
    void anyTypeIsCarried_data();
    void anyTypeIsCarried();

    void setValueTellsWhetherThePairWasDefined();
    void setValueStoresAnyValue_data();
    void setValueStoresAnyValue();
    void theExtensionIsTheBaseUnlessGiven();
    void extensionsAreSeparate();
    void getValueDefinesNothing();
    void anAllowedPropertyIsDefinedWithoutValue();
    void allowingAPropertyAgainClearsItsValueAlone();
    void aRemovedPropertyIsNotDefined();
    void removingTheLastPropertyKeepsTheExtension();
    void removingWhatIsAbsentChangesNothing_data();
    void removingWhatIsAbsentChangesNothing();
    void schemaAndValuesTakeTheirArgumentsInOppositeOrder();
    void definedExtensionsAndPropertiesAreListed();
    void anyNumberOfPairsIsKept_data();
    void anyNumberOfPairsIsKept();
    void recordsReadAlikeChangeByThemselves();

    void changesOfNameAndValuesAreReported_data();
    void changesOfNameAndValuesAreReported();
    void commitMakesTheCurrentStateTheSavedOne();
    void revertBringsTheSavedStateBack();
    void revertOfARecordNeverCommittedEmptiesIt();
    void copyValuesReplacesNameAndWholeTables();
    void copyValuesKeepsIdentityAndSavedCopies();
    void copyValuesOfEqualValuesIsNoChange();
    void copyValuesOfItselfChangesNothing();

    void equality_data();
    void equality();
    void aCopyIsUnaffectedByLaterChanges_data();
    void aCopyIsUnaffectedByLaterChanges();
    void anAssignedRecordIsUnaffectedByLaterChanges();
    void assigningARecordToItselfOrToItsCopyKeepsIt();
    void copiesLiveInDifferentThreads();

    void theJsonFormHasExactlyItsMembers();
    void theJsonFormOfAnEmptyRecord();
    void aMissingValueIsWrittenAsNull();
    void anExtensionWithoutPropertiesIsWrittenAsAnEmptyObject();
    void savedCopiesAreNotWritten();
    void anythingButAnObjectReadsAsAnEmptyOne_data();
    void anythingButAnObjectReadsAsAnEmptyOne();
    void malformedMembersReadAsTheirDefaults_data();
    void malformedMembersReadAsTheirDefaults();
    void aTableThatIsReadReplacesTheOneOfItsExtension();
    void malformedTablesReadAsEmptyOnes();
    void propertiesThatAreNoObjectLeaveTheValues();
    void readingLeavesTheSavedCopies();
    void anEmptyRecordReadsAsUnchanged();
    void valuesComeBackInTheTypesOfJson_data();
    void valuesComeBackInTheTypesOfJson();
    void keysOfAsciiComeBackAndOthersDoNot_data();
    void keysOfAsciiComeBackAndOthersDoNot();
    void namesOfPropertiesAndExtensionsAreReadAsLatin1();
    void namesThatAreTheSameAsLatin1ReadAsTheLastOfThem();
    void aRecordComesBackFromItsJsonForm();
};

void tst_ZAXMatDefinition::aDefaultRecordIsEmpty()
{
    const ZAXMatDefinition record;
    QVERIFY(!record.IsValid());
    QCOMPARE(record.GetKey(), QByteArray());
    QCOMPARE(record.GetMaterialKey(), QByteArray());
    QCOMPARE(record.GetName(), QString());
    QCOMPARE(record.GetType(), ZAXMatDefinition::Material);
    QCOMPARE(record.GetDefinedExtensions(), QList<QByteArray>());
    QCOMPARE(record.GetDefinedProperties(""), QList<QByteArray>());
    QVERIFY(!record.IsDefined("thickness"));
    QVERIFY(!record.GetValue("thickness").isValid());
    QVERIFY(!record.GetValue("thickness", "Grain").isValid());
    QVERIFY(!record.IsChanged());
}

void tst_ZAXMatDefinition::onlyTheKeyMakesARecordValid()
{
    ZAXMatDefinition record;
    record.SetName(QLatin1String("Steel"));
    record.SetMaterialKey("{m}");
    record.SetType(ZAXMatDefinition::Packaging);
    record.SetValue("thickness", 2.0);
    QVERIFY(!record.IsValid());
    record.SetKey("{k}");
    QVERIFY(record.IsValid());
    record.SetKey("");
    QVERIFY(!record.IsValid());
}

void tst_ZAXMatDefinition::everyMemberIsStoredAsGiven()
{
    const QByteArray bytes("\0\xff{k}", 5);
    ZAXMatDefinition record;
    record.SetKey(bytes);
    record.SetMaterialKey(bytes + bytes);
    record.SetName(QStringLiteral(" Stål  2 mm "));
    QCOMPARE(record.GetKey(), bytes);
    QCOMPARE(record.GetMaterialKey(), bytes + bytes);
    QCOMPARE(record.GetName(), QStringLiteral(" Stål  2 mm "));
}

void tst_ZAXMatDefinition::anyTypeIsCarried_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("material") << 0;
    QTest::newRow("packaging") << 1;
    QTest::newRow("unknown") << 2;
    QTest::newRow("negative") << -1;
    QTest::newRow("largest") << INT_MAX;
}

void tst_ZAXMatDefinition::anyTypeIsCarried()
{
    QFETCH(const int, type);
    ZAXMatDefinition record;
    record.SetType(static_cast<ZAXMatDefinition::Type>(type));
    QCOMPARE(static_cast<int>(record.GetType()), type);
}

void tst_ZAXMatDefinition::setValueTellsWhetherThePairWasDefined()
{
    ZAXMatDefinition record;
    QVERIFY(!record.SetValue("thickness", 2.0, ""));
    QVERIFY(record.IsDefined("thickness", ""));
    QCOMPARE(record.GetValue("thickness", ""), QVariant(2.0));
    QVERIFY(record.SetValue("thickness", 3.0, ""));
    QCOMPARE(record.GetValue("thickness", ""), QVariant(3.0));
    QVERIFY(!record.SetValue("thickness", 4.0, "Grain"));
}

void tst_ZAXMatDefinition::setValueStoresAnyValue_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("text") << QVariant(QLatin1String("dry"));
    QTest::newRow("number") << QVariant(2.5);
    QTest::newRow("bytes") << QVariant(QByteArray("b"));
    QTest::newRow("null of JSON") << QVariant::fromValue(nullptr);
    QTest::newRow("nothing") << QVariant();
}

void tst_ZAXMatDefinition::setValueStoresAnyValue()
{
    QFETCH(const QVariant, value);
    ZAXMatDefinition record;
    record.SetValue("comment", 1);
    record.SetValue("comment", value);
    QVERIFY(record.IsDefined("comment"));
    QCOMPARE(record.GetValue("comment").metaType(), value.metaType());
    QCOMPARE(record.GetValue("comment"), value);
}

void tst_ZAXMatDefinition::theExtensionIsTheBaseUnlessGiven()
{
    ZAXMatDefinition record;
    record.SetValue("thickness", 2.0);
    QVERIFY(record.IsDefined("thickness", ""));
    QCOMPARE(record.GetValue("thickness", ""), QVariant(2.0));
    QCOMPARE(record.GetValue("thickness"), QVariant(2.0));
}

void tst_ZAXMatDefinition::extensionsAreSeparate()
{
    ZAXMatDefinition record;
    record.SetValue("angle", 1);
    record.SetValue("angle", 2, "Grain");
    record.SetValue("angle", 3, "grain");
    QCOMPARE(record.GetValue("angle"), QVariant(1));
    QCOMPARE(record.GetValue("angle", "Grain"), QVariant(2));
    QCOMPARE(record.GetValue("angle", "grain"), QVariant(3));
}

void tst_ZAXMatDefinition::getValueDefinesNothing()
{
    const ZAXMatDefinition record;
    QVERIFY(!record.GetValue("angle", "Grain").isValid());
    QVERIFY(!record.IsDefined("angle", "Grain"));
    QVERIFY(record.GetDefinedProperties("Grain").isEmpty());
    QVERIFY(record.GetDefinedExtensions().isEmpty());
}

void tst_ZAXMatDefinition::anAllowedPropertyIsDefinedWithoutValue()
{
    ZAXMatDefinition record;
    record.AddAllowedProperty("Grain", "angle");
    QVERIFY(record.IsDefined("angle", "Grain"));
    QVERIFY(!record.GetValue("angle", "Grain").isValid());
    QVERIFY(record.SetValue("angle", 90, "Grain"));
}

void tst_ZAXMatDefinition::allowingAPropertyAgainClearsItsValueAlone()
{
    ZAXMatDefinition record;
    record.SetValue("density", 7.85);
    record.SetValue("thickness", 2.0);
    record.SetValue("density", 1.0, "Grain");
    record.AddAllowedProperty("", "density");
    QVERIFY(record.IsDefined("density"));
    QVERIFY(!record.GetValue("density").isValid());
    QCOMPARE(record.GetValue("thickness"), QVariant(2.0));
    QCOMPARE(record.GetValue("density", "Grain"), QVariant(1.0));
}

void tst_ZAXMatDefinition::aRemovedPropertyIsNotDefined()
{
    ZAXMatDefinition record;
    record.SetValue("density", 7.85);
    record.SetValue("thickness", 2.0);
    record.RemoveAllowedProperty("", "density");
    QVERIFY(!record.IsDefined("density"));
    QVERIFY(!record.GetValue("density").isValid());
    QVERIFY(record.IsDefined("thickness"));
}

void tst_ZAXMatDefinition::removingTheLastPropertyKeepsTheExtension()
{
    ZAXMatDefinition record;
    record.SetValue("angle", 90, "Grain");
    record.RemoveAllowedProperty("Grain", "angle");
    QCOMPARE(record.GetDefinedExtensions(), QList<QByteArray>{"Grain"});
    QCOMPARE(record.GetDefinedProperties("Grain"), QList<QByteArray>());
}

void tst_ZAXMatDefinition::removingWhatIsAbsentChangesNothing_data()
{
    QTest::addColumn<QByteArray>("extension");
    QTest::addColumn<QByteArray>("property");
    QTest::newRow("absent extension") << QByteArray("Trim") << QByteArray("angle");
    QTest::newRow("absent property") << QByteArray("Grain") << QByteArray("margin");
    QTest::newRow("arguments swapped") << QByteArray("angle") << QByteArray("Grain");
}

void tst_ZAXMatDefinition::removingWhatIsAbsentChangesNothing()
{
    QFETCH(const QByteArray, extension);
    QFETCH(const QByteArray, property);
    const ZAXMatDefinition before = CommittedRecord();
    ZAXMatDefinition record = before;
    record.RemoveAllowedProperty(extension, property);
    QVERIFY(record == before);
    QVERIFY(!record.IsChanged());
}

void tst_ZAXMatDefinition::schemaAndValuesTakeTheirArgumentsInOppositeOrder()
{
    ZAXMatDefinition record;
    record.AddAllowedProperty("Grain", "angle");
    QVERIFY(record.IsDefined("angle", "Grain"));
    QVERIFY(!record.IsDefined("Grain", "angle"));
    record.SetValue("angle", 90, "Grain");
    QCOMPARE(record.GetValue("angle", "Grain"), QVariant(90));
    QVERIFY(!record.GetValue("Grain", "angle").isValid());
    record.RemoveAllowedProperty("Grain", "angle");
    QVERIFY(!record.IsDefined("angle", "Grain"));
}

void tst_ZAXMatDefinition::definedExtensionsAndPropertiesAreListed()
{
    const ZAXMatDefinition record = CommittedRecord();
    QCOMPARE(Sorted(record.GetDefinedExtensions()), (QList<QByteArray>{"", "Grain"}));
    QCOMPARE(Sorted(record.GetDefinedProperties("")), (QList<QByteArray>{"comment", "length"}));
    QCOMPARE(record.GetDefinedProperties("Grain"), QList<QByteArray>{"angle"});
    QCOMPARE(record.GetDefinedProperties("Trim"), QList<QByteArray>());
}

void tst_ZAXMatDefinition::anyNumberOfPairsIsKept_data()
{
    QTest::addColumn<int>("extensions");
    QTest::addColumn<int>("properties");
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("some") << 3 << 16;
    QTest::newRow("many properties") << 2 << 300;
    QTest::newRow("many extensions") << 100 << 2;
}

void tst_ZAXMatDefinition::anyNumberOfPairsIsKept()
{
    QFETCH(const int, extensions);
    QFETCH(const int, properties);
    const auto name = [](int i) { return QByteArray::number(i * 7919 % 1009); };
    ZAXMatDefinition record;
    for (int p = 0; p < properties; ++p) {
        for (int e = 0; e < extensions; ++e)
            QVERIFY(!record.SetValue(name(p), 1000 * e + p, name(e)));
    }
    QCOMPARE(record.GetDefinedExtensions().size(), extensions);
    for (int e = 0; e < extensions; ++e) {
        QCOMPARE(record.GetDefinedProperties(name(e)).size(), properties);
        for (int p = 0; p < properties; ++p)
            QCOMPARE(record.GetValue(name(p), name(e)), QVariant(1000 * e + p));
        QVERIFY(!record.IsDefined("x", name(e)));
        record.RemoveAllowedProperty(name(e), name(properties / 2));
        QVERIFY(!record.IsDefined(name(properties / 2), name(e)));
    }
    QCOMPARE(record.GetValue(name(0), "x"), QVariant());
    for (int e = 0; e < extensions; ++e)
        QCOMPARE(record.GetDefinedProperties(name(e)).size(), properties - 1);
}

void tst_ZAXMatDefinition::recordsReadAlikeChangeByThemselves()
{
    const QJsonValue json = Parse(R"({"properties":{"":{"a":1,"b":2},"Grain":{"angle":90}}})");
    ZAXMatDefinition one;
    ZAXMatDefinition other;
    one.FromJson(json);
    other.FromJson(json);
    one.RemoveAllowedProperty("", "a");
    one.AddAllowedProperty("Aa", "margin");
    one.SetValue("angle", 45, "Grain");
    QCOMPARE(one.GetDefinedProperties(""), QList<QByteArray>{"b"});
    QCOMPARE(Sorted(one.GetDefinedExtensions()), (QList<QByteArray>{"", "Aa", "Grain"}));
    QCOMPARE(Sorted(other.GetDefinedProperties("")), (QList<QByteArray>{"a", "b"}));
    QCOMPARE(Sorted(other.GetDefinedExtensions()), (QList<QByteArray>{"", "Grain"}));
    QCOMPARE(other.GetValue("angle", "Grain"), QVariant(90LL));
    QCOMPARE(one.GetValue("b"), QVariant(2LL));
    QCOMPARE(one.GetValue("angle", "Grain"), QVariant(45));
}

void tst_ZAXMatDefinition::changesOfNameAndValuesAreReported_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("isChanged");
    const auto row = [](const char* name, Change change, bool isChanged) {
        QTest::newRow(name) << change << isChanged;
    };
    row(
        "nothing", [](ZAXMatDefinition&) {}, false);
    row(
        "name", [](ZAXMatDefinition& r) { r.SetName(QLatin1String("Roll")); }, true);
    row(
        "same name", [](ZAXMatDefinition& r) { r.SetName(QLatin1String("Sheet")); }, false);
    row(
        "letter case of the name", [](ZAXMatDefinition& r) { r.SetName(QLatin1String("sheet")); }, true);
    row(
        "value", [](ZAXMatDefinition& r) { r.SetValue("length", 1.0); }, true);
    row(
        "same value", [](ZAXMatDefinition& r) { r.SetValue("length", 2000.5); }, false);
    row(
        "value there and back", [](ZAXMatDefinition& r) { r.SetValue("length", 1), r.SetValue("length", 2000.5); },
        false);
    row(
        "same number of another type", [](ZAXMatDefinition& r) { r.SetValue("angle", 90.0, "Grain"); }, false);
    row(
        "text of the number", [](ZAXMatDefinition& r) { r.SetValue("angle", QLatin1String("90"), "Grain"); }, true);
    row(
        "bytes of the text", [](ZAXMatDefinition& r) { r.SetValue("comment", QByteArray("dry")); }, true);
    row(
        "value in an extension", [](ZAXMatDefinition& r) { r.SetValue("angle", 0, "Grain"); }, true);
    row(
        "value cleared", [](ZAXMatDefinition& r) { r.AddAllowedProperty("", "length"); }, true);
    row(
        "pair added", [](ZAXMatDefinition& r) { r.AddAllowedProperty("", "width"); }, true);
    row(
        "pair removed", [](ZAXMatDefinition& r) { r.RemoveAllowedProperty("", "length"); }, true);
    row(
        "pair exchanged",
        [](ZAXMatDefinition& r) { r.RemoveAllowedProperty("", "length"), r.SetValue("width", 2000.5); }, true);
    row(
        "extension added", [](ZAXMatDefinition& r) { r.AddAllowedProperty("Trim", "margin"); }, true);
    row(
        "extension emptied", [](ZAXMatDefinition& r) { r.RemoveAllowedProperty("Grain", "angle"); }, true);
    row(
        "key", [](ZAXMatDefinition& r) { r.SetKey("{other}"); }, false);
    row(
        "material key", [](ZAXMatDefinition& r) { r.SetMaterialKey("{other}"); }, false);
    row(
        "type", [](ZAXMatDefinition& r) { r.SetType(ZAXMatDefinition::Material); }, false);
}

void tst_ZAXMatDefinition::changesOfNameAndValuesAreReported()
{
    QFETCH(const Change, change);
    QFETCH(const bool, isChanged);
    ZAXMatDefinition record = CommittedRecord();
    change(record);
    QCOMPARE(record.IsChanged(), isChanged);
}

void tst_ZAXMatDefinition::commitMakesTheCurrentStateTheSavedOne()
{
    ZAXMatDefinition record = CommittedRecord();
    record.SetName(QLatin1String("Roll"));
    record.SetValue("angle", 45, "Grain");
    QVERIFY(record.IsChanged());
    record.Commit();
    QVERIFY(!record.IsChanged());
    record.Revert();
    QCOMPARE(record.GetName(), QLatin1String("Roll"));
    QCOMPARE(record.GetValue("angle", "Grain"), QVariant(45));
}

void tst_ZAXMatDefinition::revertBringsTheSavedStateBack()
{
    const ZAXMatDefinition before = CommittedRecord();
    ZAXMatDefinition record = before;
    record.SetName(QLatin1String("Roll"));
    record.SetValue("length", 1.0);
    record.SetValue("margin", 10, "Trim");
    record.RemoveAllowedProperty("Grain", "angle");
    record.Revert();
    QVERIFY(!record.IsChanged());
    QVERIFY(record == before);
    QCOMPARE(record.GetName(), QLatin1String("Sheet"));
    QCOMPARE(record.GetValue("length"), QVariant(2000.5));
    QVERIFY(!record.IsDefined("margin", "Trim"));
}

void tst_ZAXMatDefinition::revertOfARecordNeverCommittedEmptiesIt()
{
    ZAXMatDefinition record;
    record.SetKey("{k}");
    record.SetName(QLatin1String("Sheet"));
    record.SetValue("length", 1.0);
    record.Revert();
    QCOMPARE(record.GetKey(), QByteArray("{k}"));
    QCOMPARE(record.GetName(), QString());
    QCOMPARE(record.GetDefinedExtensions(), QList<QByteArray>());
}

void tst_ZAXMatDefinition::copyValuesReplacesNameAndWholeTables()
{
    ZAXMatDefinition other;
    other.SetName(QLatin1String("Roll"));
    other.SetValue("width", 500.0);
    ZAXMatDefinition record = CommittedRecord();
    record.CopyValues(other);
    QCOMPARE(record.GetName(), QLatin1String("Roll"));
    QCOMPARE(record.GetDefinedExtensions(), QList<QByteArray>{""});
    QCOMPARE(record.GetDefinedProperties(""), QList<QByteArray>{"width"});
    QCOMPARE(record.GetValue("width"), QVariant(500.0));
}

void tst_ZAXMatDefinition::copyValuesKeepsIdentityAndSavedCopies()
{
    ZAXMatDefinition other;
    other.SetKey("{other}");
    other.SetMaterialKey("{other material}");
    other.SetType(ZAXMatDefinition::Material);
    other.SetName(QLatin1String("Roll"));
    other.Commit();
    ZAXMatDefinition record = CommittedRecord();
    record.CopyValues(other);
    QCOMPARE(record.GetKey(), QByteArray("{k}"));
    QCOMPARE(record.GetMaterialKey(), QByteArray("{m}"));
    QCOMPARE(record.GetType(), ZAXMatDefinition::Packaging);
    QVERIFY(record.IsChanged());
    record.Revert();
    QVERIFY(record == CommittedRecord());
}

void tst_ZAXMatDefinition::copyValuesOfEqualValuesIsNoChange()
{
    ZAXMatDefinition record = CommittedRecord();
    ZAXMatDefinition other;
    other.FromJson(record.ToJson());
    record.CopyValues(other);
    QVERIFY(!record.IsChanged());
}

void tst_ZAXMatDefinition::copyValuesOfItselfChangesNothing()
{
    ZAXMatDefinition record = CommittedRecord();
    record.SetName(QLatin1String("Roll"));
    const ZAXMatDefinition before = record;
    record.CopyValues(record);
    QVERIFY(record == before);
    QVERIFY(record.IsChanged());
}

void tst_ZAXMatDefinition::equality_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("isEqual");
    const auto row = [](const char* name, Change change, bool isEqual) { QTest::newRow(name) << change << isEqual; };
    row(
        "nothing", [](ZAXMatDefinition&) {}, true);
    row(
        "key", [](ZAXMatDefinition& r) { r.SetKey("{K}"); }, false);
    row(
        "name", [](ZAXMatDefinition& r) { r.SetName(QLatin1String("Roll")); }, false);
    row(
        "type", [](ZAXMatDefinition& r) { r.SetType(ZAXMatDefinition::Material); }, false);
    row(
        "value", [](ZAXMatDefinition& r) { r.SetValue("angle", 1, "Grain"); }, false);
    row(
        "same number of another type", [](ZAXMatDefinition& r) { r.SetValue("angle", 90.0, "Grain"); }, true);
    row(
        "text of the number", [](ZAXMatDefinition& r) { r.SetValue("angle", QLatin1String("90"), "Grain"); }, false);
    row(
        "pair without value", [](ZAXMatDefinition& r) { r.AddAllowedProperty("", "width"); }, false);
    row(
        "extension emptied", [](ZAXMatDefinition& r) { r.RemoveAllowedProperty("Grain", "angle"); }, false);
    row(
        "material key", [](ZAXMatDefinition& r) { r.SetMaterialKey("{other}"); }, true);
    row(
        "saved state", [](ZAXMatDefinition& r) { r.SetName({}), r.Commit(), r.SetName(QLatin1String("Sheet")); }, true);
}

void tst_ZAXMatDefinition::equality()
{
    QFETCH(const Change, change);
    QFETCH(const bool, isEqual);
    const ZAXMatDefinition one = CommittedRecord();
    ZAXMatDefinition other = CommittedRecord();
    change(other);
    QCOMPARE(one == other, isEqual);
    QCOMPARE(other == one, isEqual);
    QCOMPARE(one != other, !isEqual);
    QCOMPARE(other != one, !isEqual);
}

void tst_ZAXMatDefinition::aCopyIsUnaffectedByLaterChanges_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, Change change) { QTest::newRow(name) << change; };
    row("SetKey", [](ZAXMatDefinition& r) { r.SetKey("{other}"); });
    row("SetMaterialKey", [](ZAXMatDefinition& r) { r.SetMaterialKey("{other}"); });
    row("SetName", [](ZAXMatDefinition& r) { r.SetName(QLatin1String("Other")); });
    row("SetType", [](ZAXMatDefinition& r) { r.SetType(ZAXMatDefinition::Material); });
    row("AddAllowedProperty", [](ZAXMatDefinition& r) { r.AddAllowedProperty("Grain", "angle"); });
    row("RemoveAllowedProperty", [](ZAXMatDefinition& r) { r.RemoveAllowedProperty("Grain", "angle"); });
    row("SetValue", [](ZAXMatDefinition& r) { r.SetValue("angle", 1, "Grain"); });
    row("Commit", [](ZAXMatDefinition& r) { r.Commit(); });
    row("Revert", [](ZAXMatDefinition& r) { r.Revert(); });
    row("CopyValues", [](ZAXMatDefinition& r) { r.CopyValues(ZAXMatDefinition()); });
    row("FromJson", [](ZAXMatDefinition& r) { r.FromJson(Parse(R"({"key":"x","properties":{"Grain":{}}})")); });
}

void tst_ZAXMatDefinition::aCopyIsUnaffectedByLaterChanges()
{
    QFETCH(const Change, change);
    ZAXMatDefinition record = CommittedRecord();
    record.SetName(QLatin1String("Roll"));
    const ZAXMatDefinition copy = record;
    const ZAXMatDefinition assigned = [&] {
        ZAXMatDefinition r;
        return r = record;
    }();
    change(record);
    for (const ZAXMatDefinition& kept : {copy, assigned}) {
        QCOMPARE(kept.GetKey(), QByteArray("{k}"));
        QCOMPARE(kept.GetMaterialKey(), QByteArray("{m}"));
        QCOMPARE(kept.GetType(), ZAXMatDefinition::Packaging);
        QCOMPARE(kept.GetName(), QLatin1String("Roll"));
        QCOMPARE(kept.GetValue("angle", "Grain"), QVariant(90));
        QCOMPARE(kept.GetValue("length"), QVariant(2000.5));
        QVERIFY(kept.IsChanged());
    }
}

void tst_ZAXMatDefinition::anAssignedRecordIsUnaffectedByLaterChanges()
{
    ZAXMatDefinition record = CommittedRecord();
    ZAXMatDefinition other;
    other.SetValue("margin", 10, "Trim");
    other = record;
    record.SetValue("angle", 1, "Grain");
    QVERIFY(other == CommittedRecord());
    other.SetValue("angle", 2, "Grain");
    QCOMPARE(record.GetValue("angle", "Grain"), QVariant(1));
}

void tst_ZAXMatDefinition::assigningARecordToItselfOrToItsCopyKeepsIt()
{
    ZAXMatDefinition record = CommittedRecord();
    ZAXMatDefinition& same = record;
    record = same;
    QVERIFY(record == CommittedRecord());
    ZAXMatDefinition copy = record;
    record = copy;
    QVERIFY(record == CommittedRecord());
    QVERIFY(!record.IsChanged());
}

void tst_ZAXMatDefinition::copiesLiveInDifferentThreads()
{
    const ZAXMatDefinition record = CommittedRecord();
    const auto changeCopies = [record](int value) {
        for (int i = 0; i < 1000; ++i) {
            ZAXMatDefinition copy = record;
            copy.SetValue("angle", value, "Grain");
        }
    };
    std::thread first(changeCopies, 1);
    std::thread second(changeCopies, 2);
    first.join();
    second.join();
    QVERIFY(record == CommittedRecord());
}

void tst_ZAXMatDefinition::theJsonFormHasExactlyItsMembers()
{
    ZAXMatDefinition record = CommittedRecord();
    record.SetName(QString::fromUtf8("Tôle"));
    QCOMPARE(Print(record.ToJson()),
             QByteArray(R"({"key":"{k}","materialKey":"{m}","name":"Tôle",)"
                        R"("properties":{"":{"comment":"dry","length":2000.5},"Grain":{"angle":90}},"type":1})"));
}

void tst_ZAXMatDefinition::theJsonFormOfAnEmptyRecord()
{
    QCOMPARE(Print(ZAXMatDefinition().ToJson()),
             QByteArray(R"({"key":"","materialKey":"","name":"","properties":{},"type":0})"));
}

void tst_ZAXMatDefinition::aMissingValueIsWrittenAsNull()
{
    ZAXMatDefinition record;
    record.AddAllowedProperty("", "thickness");
    QCOMPARE(Print(record.ToJson().toObject().value(QLatin1String("properties"))),
             QByteArray(R"({"":{"thickness":null}})"));
}

void tst_ZAXMatDefinition::anExtensionWithoutPropertiesIsWrittenAsAnEmptyObject()
{
    ZAXMatDefinition record;
    record.AddAllowedProperty("Grain", "angle");
    record.RemoveAllowedProperty("Grain", "angle");
    QCOMPARE(Print(record.ToJson().toObject().value(QLatin1String("properties"))), QByteArray(R"({"Grain":{}})"));
}

void tst_ZAXMatDefinition::savedCopiesAreNotWritten()
{
    ZAXMatDefinition committed = CommittedRecord();
    ZAXMatDefinition changed = CommittedRecord();
    changed.SetName(QLatin1String("Other"));
    changed.Commit();
    changed.SetName(QLatin1String("Sheet"));
    QVERIFY(changed.IsChanged());
    QCOMPARE(Print(changed.ToJson()), Print(committed.ToJson()));
}

void tst_ZAXMatDefinition::anythingButAnObjectReadsAsAnEmptyOne_data()
{
    QTest::addColumn<QJsonValue>("json");
    QTest::newRow("number") << QJsonValue(42);
    QTest::newRow("array") << QJsonValue(QJsonArray{1, 2});
    QTest::newRow("null") << QJsonValue(QJsonValue::Null);
    QTest::newRow("undefined") << QJsonValue(QJsonValue::Undefined);
    QTest::newRow("text") << QJsonValue(QLatin1String("{}"));
    QTest::newRow("bool") << QJsonValue(true);
    QTest::newRow("empty object") << QJsonValue(QJsonObject());
}

void tst_ZAXMatDefinition::anythingButAnObjectReadsAsAnEmptyOne()
{
    QFETCH(const QJsonValue, json);
    ZAXMatDefinition record = CommittedRecord();
    record.FromJson(json);
    QCOMPARE(record.GetKey(), QByteArray());
    QCOMPARE(record.GetMaterialKey(), QByteArray());
    QCOMPARE(record.GetName(), QString());
    QCOMPARE(record.GetType(), ZAXMatDefinition::Material);
    QCOMPARE(Sorted(record.GetDefinedExtensions()), (QList<QByteArray>{"", "Grain"}));
    QCOMPARE(record.GetValue("length"), QVariant(2000.5));
    QCOMPARE(record.GetValue("angle", "Grain"), QVariant(90));
}

void tst_ZAXMatDefinition::malformedMembersReadAsTheirDefaults_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("materialKey");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("type");
    const auto row = [](const char* name, const char* json, const char* key, const char* materialKey,
                        const char* recordName, int type) {
        QTest::newRow(name) << QByteArray(json) << QByteArray(key) << QByteArray(materialKey)
                            << QString::fromLatin1(recordName) << type;
    };
    row("all there", R"({"key":"k","materialKey":"m","name":"n","type":1})", "k", "m", "n", 1);
    row("key missing", R"({"materialKey":"m","name":"n","type":1})", "", "m", "n", 1);
    row("key a number", R"({"key":5,"materialKey":"m","name":"n","type":1})", "", "m", "n", 1);
    row("material key missing", R"({"key":"k","name":"n","type":1})", "k", "", "n", 1);
    row("material key null", R"({"key":"k","materialKey":null,"name":"n","type":1})", "k", "", "n", 1);
    row("name missing", R"({"key":"k","materialKey":"m","type":1})", "k", "m", "", 1);
    row("name an object", R"({"key":"k","materialKey":"m","name":{},"type":1})", "k", "m", "", 1);
    row("type missing", R"({"key":"k","materialKey":"m","name":"n"})", "k", "m", "n", 0);
    row("type a text", R"({"key":"k","materialKey":"m","name":"n","type":"1"})", "k", "m", "n", 0);
    row("type null", R"({"key":"k","materialKey":"m","name":"n","type":null})", "k", "m", "n", 0);
    row("type a fraction", R"({"key":"k","materialKey":"m","name":"n","type":1.5})", "k", "m", "n", 0);
    row("type beyond an integer", R"({"key":"k","materialKey":"m","name":"n","type":1e12})", "k", "m", "n", 0);
    row("type a whole fraction", R"({"key":"k","materialKey":"m","name":"n","type":1.0})", "k", "m", "n", 1);
    row("type unknown", R"({"key":"k","materialKey":"m","name":"n","type":2})", "k", "m", "n", 2);
    row("type negative", R"({"key":"k","materialKey":"m","name":"n","type":-7})", "k", "m", "n", -7);
    row("member unknown", R"({"key":"k","materialKey":"m","name":"n","type":1,"Key":"x","extra":[1]})", "k", "m", "n",
        1);
}

void tst_ZAXMatDefinition::malformedMembersReadAsTheirDefaults()
{
    QFETCH(const QByteArray, json);
    ZAXMatDefinition record = CommittedRecord();
    record.FromJson(Parse(json.constData()));
    QTEST(record.GetKey(), "key");
    QTEST(record.GetMaterialKey(), "materialKey");
    QTEST(record.GetName(), "name");
    QTEST(static_cast<int>(record.GetType()), "type");
}

void tst_ZAXMatDefinition::aTableThatIsReadReplacesTheOneOfItsExtension()
{
    ZAXMatDefinition record = CommittedRecord();
    record.SetValue("margin", 10, "Trim");
    record.FromJson(Parse(R"({"properties":{"Grain":{"radius":1.5},"New":{"a":true}}})"));
    QCOMPARE(Sorted(record.GetDefinedExtensions()), (QList<QByteArray>{"", "Grain", "New", "Trim"}));
    QCOMPARE(record.GetDefinedProperties("Grain"), QList<QByteArray>{"radius"});
    QCOMPARE(record.GetValue("radius", "Grain"), QVariant(1.5));
    QCOMPARE(record.GetValue("a", "New"), QVariant(true));
    QCOMPARE(record.GetValue("margin", "Trim"), QVariant(10));
    QCOMPARE(Sorted(record.GetDefinedProperties("")), (QList<QByteArray>{"comment", "length"}));
}

void tst_ZAXMatDefinition::malformedTablesReadAsEmptyOnes()
{
    ZAXMatDefinition record = CommittedRecord();
    record.FromJson(Parse(R"({"properties":{"Grain":[1],"":null}})"));
    QCOMPARE(Sorted(record.GetDefinedExtensions()), (QList<QByteArray>{"", "Grain"}));
    QCOMPARE(record.GetDefinedProperties(""), QList<QByteArray>());
    QCOMPARE(record.GetDefinedProperties("Grain"), QList<QByteArray>());
}

void tst_ZAXMatDefinition::propertiesThatAreNoObjectLeaveTheValues()
{
    ZAXMatDefinition record = CommittedRecord();
    record.FromJson(Parse(R"({"key":"{k}","name":"Sheet","type":1,"properties":["Grain"]})"));
    QVERIFY(record == CommittedRecord());
}

void tst_ZAXMatDefinition::readingLeavesTheSavedCopies()
{
    ZAXMatDefinition record = CommittedRecord();
    record.FromJson(Parse(R"({"key":"{new}","name":"New","properties":{"Grain":{"angle":1}}})"));
    QVERIFY(record.IsChanged());
    record.Revert();
    QCOMPARE(record.GetKey(), QByteArray("{new}"));
    QCOMPARE(record.GetName(), QLatin1String("Sheet"));
    QCOMPARE(record.GetValue("angle", "Grain"), QVariant(90));
}

void tst_ZAXMatDefinition::anEmptyRecordReadsAsUnchanged()
{
    ZAXMatDefinition record;
    record.FromJson(Parse(R"({"key":"k","materialKey":"m","type":1,"properties":{}})"));
    QVERIFY(!record.IsChanged());
    ZAXMatDefinition named;
    named.FromJson(Parse(R"({"name":"n"})"));
    QVERIFY(named.IsChanged());
    ZAXMatDefinition filled;
    filled.FromJson(Parse(R"({"properties":{"":{}}})"));
    QVERIFY(filled.IsChanged());
}

void tst_ZAXMatDefinition::valuesComeBackInTheTypesOfJson_data()
{
    QTest::addColumn<QVariant>("written");
    QTest::addColumn<QVariant>("read");
    QTest::newRow("fraction") << QVariant(2.5) << QVariant(2.5);
    QTest::newRow("whole number held as double") << QVariant(2.0) << QVariant(2LL);
    QTest::newRow("integer") << QVariant(7) << QVariant(7LL);
    QTest::newRow("float") << QVariant(0.5F) << QVariant(0.5);
    QTest::newRow("shortest fraction") << QVariant(0.1) << QVariant(0.1);
    QTest::newRow("bool") << QVariant(true) << QVariant(true);
    QTest::newRow("text") << QVariant(QString::fromUtf8("Stål")) << QVariant(QString::fromUtf8("Stål"));
    QTest::newRow("text of a number") << QVariant(QLatin1String("2.50")) << QVariant(QLatin1String("2.50"));
    QTest::newRow("bytes") << QVariant(QByteArray("ab")) << QVariant(QLatin1String("ab"));
    QTest::newRow("nothing") << QVariant() << QVariant::fromValue(nullptr);
}

void tst_ZAXMatDefinition::valuesComeBackInTheTypesOfJson()
{
    QFETCH(const QVariant, written);
    QFETCH(const QVariant, read);
    ZAXMatDefinition record;
    record.SetValue("value", written);
    ZAXMatDefinition other;
    other.FromJson(QJsonDocument::fromJson(Print(record.ToJson())).object());
    QCOMPARE(other.GetValue("value").metaType(), read.metaType());
    QCOMPARE(other.GetValue("value"), read);
}

void tst_ZAXMatDefinition::keysOfAsciiComeBackAndOthersDoNot_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QByteArray>("read");
    const QByteArray uuid("{0a1b2c3d-0a1b-2c3d-4e5f-0a1b2c3d4e5f}");
    QTest::newRow("generated key") << uuid << uuid;
    QTest::newRow("UTF-8") << QByteArray("\xc3\xb8") << QByteArray("\xf8");
    QTest::newRow("UTF-8 beyond Latin-1") << QByteArray("\xe2\x82\xac") << QByteArray("?");
    QTest::newRow("no UTF-8") << QByteArray("\xf8") << QByteArray("?");
}

void tst_ZAXMatDefinition::keysOfAsciiComeBackAndOthersDoNot()
{
    QFETCH(const QByteArray, written);
    ZAXMatDefinition record;
    record.SetKey(written);
    record.SetMaterialKey(written);
    QCOMPARE(record.ToJson().toObject().value(QLatin1String("key")).toString(), QString::fromUtf8(written));
    QCOMPARE(record.ToJson().toObject().value(QLatin1String("materialKey")).toString(), QString::fromUtf8(written));
    ZAXMatDefinition other;
    other.FromJson(record.ToJson());
    QTEST(other.GetKey(), "read");
    QTEST(other.GetMaterialKey(), "read");
}

void tst_ZAXMatDefinition::namesOfPropertiesAndExtensionsAreReadAsLatin1()
{
    ZAXMatDefinition record;
    record.FromJson(Parse(R"({"properties":{"ø":{"å":1}}})"));
    QCOMPARE(record.GetValue("\xe5", "\xf8"), QVariant(1LL));
}

void tst_ZAXMatDefinition::namesThatAreTheSameAsLatin1ReadAsTheLastOfThem()
{
    // Neither character is part of Latin-1.
    ZAXMatDefinition record;
    record.FromJson(Parse(R"({"properties":{"Grain":{"α":1,"β":2},"γ":{"a":1},"δ":{"b":2}}})"));
    QCOMPARE(Sorted(record.GetDefinedExtensions()), (QList<QByteArray>{"?", "Grain"}));
    QCOMPARE(record.GetDefinedProperties("Grain"), QList<QByteArray>{"?"});
    QCOMPARE(record.GetValue("?", "Grain"), QVariant(2LL));
    QCOMPARE(record.GetDefinedProperties("?"), QList<QByteArray>{"b"});
}

void tst_ZAXMatDefinition::aRecordComesBackFromItsJsonForm()
{
    const ZAXMatDefinition record = CommittedRecord();
    ZAXMatDefinition other;
    other.FromJson(QJsonDocument::fromJson(Print(record.ToJson())).object());
    QVERIFY(other == record);
    QCOMPARE(other.GetMaterialKey(), record.GetMaterialKey());
    QVERIFY(other.IsChanged());
    QCOMPARE(Print(other.ToJson()), Print(record.ToJson()));
}

QTEST_GUILESS_MAIN(tst_ZAXMatDefinition)
#include "tst_ZAXMatDefinition.moc"
