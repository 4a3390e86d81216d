#include "ZAXMatDefinition.h"
#include "ZAXMatTestDocument.h"
#include "ZAXMatTestListeners.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

using Type = ZAXMatDefinition::Type;

namespace {

/// A material that composes its label.
class LabelledMaterial : public ZAXMatMaterial
{
public:
    explicit LabelledMaterial(ZAXMatRoot* root) : ZAXMatMaterial(root) {}
    QString GetLabel() const override { return QLatin1String("of ") + ZAXMatMaterial::GetLabel(); }
};

ZAXMatDefinition Record(Type type)
{
    ZAXMatDefinition record;
    record.SetKey("{k}");
    record.SetName(QLatin1String("Steel"));
    record.SetType(type);
    return record;
}

/// The record as it comes back from a catalogue's file.
ZAXMatDefinition ThroughJson(const ZAXMatDefinition& record)
{
    const QByteArray text = QJsonDocument(record.ToJson().toObject()).toJson();
    ZAXMatDefinition read;
    read.FromJson(QJsonDocument::fromJson(text).object());
    return read;
}

/// A document with a material, a packaging and a folder.
struct Document : ZAXTestDocument
{
    ZAXMatMaterial* material = CreateMaterial();
    ZAXMatPackaging* packaging = Create<ZAXMatPackaging>(material);
};

} // namespace

/// The exchange of catalogue records with features.
class tst_ZAXMatDefinitionExchange : public QObject
{
    Q_OBJECT

private slots:
    void recordAndFeatureMustBeOfOneKind_data();
    void recordAndFeatureMustBeOfOneKind();
    void aRefusedLoadLeavesTheRecord();
    void theNameIsTheLabelThatTheFeatureComposes();
    void definedValuesAreLoadedAndNothingElse();
    void allPropertiesOfAPackagingAreLoaded();
    void aPropertyThatTheFeatureLacksLoadsAsNoValue();
    void valuesOfExtensionsAreLoaded();
    void valuesOfMissingExtensionsStay();
    void loadingCreatesNoExtension();
    void aFeatureThatCanHaveNoExtensionsLeavesTheirValues();
    void loadingLeavesTheSavedCopies();
    void loadingLeavesCopiesOfTheRecord();

    void nameAndValuesAreSaved();
    void allPropertiesOfAPackagingAreSaved();
    void savingIgnoresTheType();
    void numbersOfAnyTypeArrive_data();
    void numbersOfAnyTypeArrive();
    void aTextIsReadAsALength_data();
    void aTextIsReadAsALength();
    void missingValuesAreHandedOverAsTheyAre_data();
    void missingValuesAreHandedOverAsTheyAre();
    void valuesThatAPropertyRefusesAreIgnored();
    void aNameThatTheFeatureLacksBecomesADynamicProperty();
    void missingExtensionsAreCreatedAndFilled();
    void anExtensionIsCreatedEvenWithoutProperties();
    void existingExtensionsAreFilled();
    void savingTellsOfEveryChange();
    void anExtensionOfTheWrongKindIsRefused_data();
    void anExtensionOfTheWrongKindIsRefused();
    void aRefusalLeavesWhatIsWritten();
    void aFeatureThatCanHaveNoExtensionsTakesTheRest();
    void listsOfExtensionsAreNotWritten();
    void savingLeavesTheRecord();
    void aRecordThatChangesMeanwhileIsSavedAsItWas();

    void aMaterialComesBackExactlyThroughTheCatalogue();
};

void tst_ZAXMatDefinitionExchange::recordAndFeatureMustBeOfOneKind_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("feature");
    QTest::addColumn<QString>("message");
    const QString refusal = Text("Types do not match.");
    const QString none = Text("(nothing was thrown)");
    QTest::newRow("material and material") << 0 << QByteArray("ZAXMatMaterial") << none;
    QTest::newRow("material and derived material") << 0 << QByteArray("ZAXTestCoatedMaterial") << none;
    QTest::newRow("material and packaging") << 0 << QByteArray("ZAXMatPackaging") << refusal;
    QTest::newRow("material and root") << 0 << QByteArray("ZAXMatRoot") << refusal;
    QTest::newRow("material and extension") << 0 << QByteArray("ZAXTestPiercing") << refusal;
    QTest::newRow("packaging and packaging") << 1 << QByteArray("ZAXMatPackaging") << none;
    QTest::newRow("packaging and material") << 1 << QByteArray("ZAXMatMaterial") << refusal;
    QTest::newRow("packaging and root") << 1 << QByteArray("ZAXMatRoot") << refusal;
    QTest::newRow("other and material") << 2 << QByteArray("ZAXMatMaterial") << none;
    QTest::newRow("other and packaging") << -1 << QByteArray("ZAXMatPackaging") << none;
    QTest::newRow("other and root") << 2 << QByteArray("ZAXMatRoot") << none;
}

void tst_ZAXMatDefinitionExchange::recordAndFeatureMustBeOfOneKind()
{
    QFETCH(const int, type);
    QFETCH(const QByteArray, feature);
    Document document;
    ZAXTestCoatedMaterial coated(document.root);
    const QHash<QByteArray, const ZAXFeatObject*> features{
        {"ZAXMatMaterial", document.material},
        {"ZAXTestCoatedMaterial", &coated},
        {"ZAXMatPackaging", document.packaging},
        {"ZAXMatRoot", document.root},
        {"ZAXTestPiercing", document.Create<ZAXTestPiercing>(document.material)},
    };
    ZAXMatDefinition record = Record(static_cast<Type>(type));
    QTEST(MessageThrownBy([&] { record.LoadFromFeature(features.value(feature)); }), "message");
}

void tst_ZAXMatDefinitionExchange::aRefusedLoadLeavesTheRecord()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Packaging);
    record.SetValue("comment", Text("dry"));
    record.Commit();
    const ZAXMatDefinition before = record;
    QCOMPARE(MessageThrownBy([&] { record.LoadFromFeature(document.material); }), Text("Types do not match."));
    QVERIFY(record == before);
    QVERIFY(!record.IsChanged());
}

void tst_ZAXMatDefinitionExchange::theNameIsTheLabelThatTheFeatureComposes()
{
    Document document;
    LabelledMaterial material(document.root);
    material.SetLabel(Text("Blåstål"));
    ZAXMatDefinition record = Record(Type::Material);
    record.LoadFromFeature(&material);
    QCOMPARE(record.GetName(), Text("of Blåstål"));
}

void tst_ZAXMatDefinitionExchange::definedValuesAreLoadedAndNothingElse()
{
    Document document;
    document.material->SetThickness(2.5);
    document.material->SetMaterialType(Text("S235JR"));
    document.material->SetNestingColor(Qt::green);
    ZAXMatDefinition record = Record(Type::Material);
    record.AddAllowedProperty("", "thickness");
    record.AddAllowedProperty("", "nestingColor");
    record.SetValue("materialType", Text("other"));
    record.LoadFromFeature(document.material);
    QCOMPARE(record.GetValue("thickness"), QVariant::fromValue(ZAXSysLengthValue(2.5)));
    QCOMPARE(record.GetValue("materialType"), QVariant(Text("S235JR")));
    QCOMPARE(record.GetValue("nestingColor"), QVariant(QColor(Qt::green)));
    QCOMPARE(record.GetDefinedProperties("").size(), 3);
    QCOMPARE(record.GetDefinedExtensions(), QList<QByteArray>{""});
}

void tst_ZAXMatDefinitionExchange::allPropertiesOfAPackagingAreLoaded()
{
    Document document;
    document.packaging->SetLength(3000);
    document.packaging->SetForm(ZAXMatPackaging::Roll);
    document.packaging->SetCost(12.5);
    document.packaging->SetActive(true);
    ZAXMatDefinition record = Record(Type::Packaging);
    for (const char* const property : {"length", "form", "cost", "isActive"})
        record.AddAllowedProperty("", property);
    record.LoadFromFeature(document.packaging);
    QCOMPARE(record.GetValue("length"), QVariant::fromValue(ZAXSysLengthValue(3000)));
    QCOMPARE(record.GetValue("form"), QVariant::fromValue(ZAXMatPackaging::Roll));
    QCOMPARE(record.GetValue("cost"), QVariant(12.5));
    QCOMPARE(record.GetValue("isActive"), QVariant(true));
}

void tst_ZAXMatDefinitionExchange::aPropertyThatTheFeatureLacksLoadsAsNoValue()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("hardness", 60);
    record.LoadFromFeature(document.material);
    QVERIFY(record.IsDefined("hardness"));
    QVERIFY(!record.GetValue("hardness").isValid());
}

void tst_ZAXMatDefinitionExchange::valuesOfExtensionsAreLoaded()
{
    Document document;
    auto* const gas = qobject_cast<ZAXTestAssistGas*>(document.material->GetExtension("ZAXTestAssistGas", true));
    gas->SetPressure(8.5);
    gas->SetExtensionEnabled(true);
    ZAXMatDefinition record = Record(Type::Material);
    record.AddAllowedProperty("ZAXTestAssistGas", "pressure");
    record.AddAllowedProperty("ZAXTestAssistGas", "isExtensionEnabled");
    record.LoadFromFeature(document.material);
    QCOMPARE(record.GetValue("pressure", "ZAXTestAssistGas"), QVariant(8.5));
    QCOMPARE(record.GetValue("isExtensionEnabled", "ZAXTestAssistGas"), QVariant(true));

    auto* const trim = qobject_cast<ZAXTestTrim*>(document.packaging->GetExtension("ZAXTestTrim", true));
    trim->SetMargin(10);
    ZAXMatDefinition packaging = Record(Type::Packaging);
    packaging.AddAllowedProperty("ZAXTestTrim", "margin");
    packaging.LoadFromFeature(document.packaging);
    QCOMPARE(packaging.GetValue("margin", "ZAXTestTrim"), QVariant(10.0));
}

void tst_ZAXMatDefinitionExchange::valuesOfMissingExtensionsStay()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("pressure", 8.5, "ZAXTestAssistGas");
    record.SetValue("margin", 10, "ZAXTestTrim");
    record.SetValue("x", 1, "Unknown");
    record.LoadFromFeature(document.material);
    QCOMPARE(record.GetValue("pressure", "ZAXTestAssistGas"), QVariant(8.5));
    QCOMPARE(record.GetValue("margin", "ZAXTestTrim"), QVariant(10));
    QCOMPARE(record.GetValue("x", "Unknown"), QVariant(1));
}

void tst_ZAXMatDefinitionExchange::loadingCreatesNoExtension()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("pressure", 8.5, "ZAXTestAssistGas");
    record.LoadFromFeature(document.material);
    QVERIFY(document.material->GetExtensions().isEmpty());
    QCOMPARE(document.material->GetChildren(), QList<ZAXFeatObject*>{document.packaging});
}

void tst_ZAXMatDefinitionExchange::aFeatureThatCanHaveNoExtensionsLeavesTheirValues()
{
    Document document;
    document.root->SetLabel(Text("All"));
    ZAXMatDefinition record = Record(static_cast<Type>(2));
    record.SetValue("pressure", 8.5, "ZAXTestAssistGas");
    record.SetValue("objectName", 1);
    document.root->setObjectName(Text("root"));
    record.LoadFromFeature(document.root);
    QCOMPARE(record.GetName(), Text("All"));
    QCOMPARE(record.GetValue("objectName"), QVariant(Text("root")));
    QCOMPARE(record.GetValue("pressure", "ZAXTestAssistGas"), QVariant(8.5));
}

void tst_ZAXMatDefinitionExchange::loadingLeavesTheSavedCopies()
{
    Document document;
    document.material->SetLabel(Text("Steel"));
    document.material->SetThickness(2);
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", QVariant::fromValue(ZAXSysLengthValue(2)));
    record.Commit();
    record.LoadFromFeature(document.material);
    QVERIFY(!record.IsChanged());
    document.material->SetThickness(3);
    record.LoadFromFeature(document.material);
    QVERIFY(record.IsChanged());
    record.Revert();
    QCOMPARE(record.GetValue("thickness"), QVariant::fromValue(ZAXSysLengthValue(2)));
}

void tst_ZAXMatDefinitionExchange::loadingLeavesCopiesOfTheRecord()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", 7);
    const ZAXMatDefinition copy = record;
    record.LoadFromFeature(document.material);
    QCOMPARE(copy.GetName(), Text("Steel"));
    QCOMPARE(copy.GetValue("thickness"), QVariant(7));
}

void tst_ZAXMatDefinitionExchange::nameAndValuesAreSaved()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", 2.5);
    record.SetValue("density", 7.85);
    record.SetValue("category", Text("Métal"));
    record.SetValue("nestingColor", QColor(Qt::red));
    record.SaveToFeature(document.material);
    QCOMPARE(document.material->GetLabel(), Text("Steel"));
    QCOMPARE(document.material->GetThickness(), 2.5);
    QCOMPARE(document.material->GetDensity(), 7.85);
    QCOMPARE(document.material->GetCategory(), Text("Métal"));
    QCOMPARE(document.material->GetNestingColor(), QColor(Qt::red));
}

void tst_ZAXMatDefinitionExchange::allPropertiesOfAPackagingAreSaved()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Packaging);
    record.SetValue("length", 1219.2);
    record.SetValue("width", 2438);
    record.SetValue("form", 1);
    record.SetValue("cost", 99.5);
    record.SetValue("comment", Text("dry"));
    record.SetValue("isActive", true);
    record.SaveToFeature(document.packaging);
    QCOMPARE(document.packaging->GetLength(), 1219.2);
    QCOMPARE(document.packaging->GetWidth(), 2438.0);
    QCOMPARE(document.packaging->GetForm(), ZAXMatPackaging::Roll);
    QCOMPARE(document.packaging->GetCost(), 99.5);
    QCOMPARE(document.packaging->GetComment(), Text("dry"));
    QVERIFY(document.packaging->IsActive());
}

void tst_ZAXMatDefinitionExchange::savingIgnoresTheType()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Packaging);
    record.SetValue("comment", Text("dry"));
    record.SaveToFeature(document.material);
    QCOMPARE(document.material->GetComment(), Text("dry"));
}

void tst_ZAXMatDefinitionExchange::numbersOfAnyTypeArrive_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<double>("thickness");
    QTest::newRow("double") << QVariant(2.5) << 2.5;
    QTest::newRow("int") << QVariant(2) << 2.0;
    QTest::newRow("whole number of JSON") << QJsonDocument::fromJson("[2]").toVariant().toList().constFirst() << 2.0;
    QTest::newRow("fraction of JSON") << QJsonDocument::fromJson("[0.1]").toVariant().toList().constFirst() << 0.1;
    QTest::newRow("length") << QVariant::fromValue(ZAXSysLengthValue(3)) << 3.0;
}

void tst_ZAXMatDefinitionExchange::numbersOfAnyTypeArrive()
{
    QFETCH(const QVariant, value);
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", value);
    record.SaveToFeature(document.material);
    QTEST(document.material->GetThickness(), "thickness");
}

void tst_ZAXMatDefinitionExchange::aTextIsReadAsALength_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("thickness");
    QTest::newRow("own text form") << ZAXSysLengthValue(0.1).ToString() << 0.1;
    QTest::newRow("inches") << Text("0.5 in") << 12.7;
    QTest::newRow("refused") << Text("thick") << 4.0;
}

void tst_ZAXMatDefinitionExchange::aTextIsReadAsALength()
{
    QFETCH(const QString, text);
    Document document;
    document.material->SetThickness(4);
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", text);
    record.SaveToFeature(document.material);
    QTEST(document.material->GetThickness(), "thickness");
}

void tst_ZAXMatDefinitionExchange::missingValuesAreHandedOverAsTheyAre_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<double>("thickness");
    // Qt resets the property for an invalid QVariant and refuses the null that JSON gives.
    QTest::newRow("no value") << QVariant() << 0.0;
    QTest::newRow("null of JSON") << QVariant::fromValue(nullptr) << 4.0;
}

void tst_ZAXMatDefinitionExchange::missingValuesAreHandedOverAsTheyAre()
{
    QFETCH(const QVariant, value);
    Document document;
    document.material->SetThickness(4);
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", value);
    record.SaveToFeature(document.material);
    QTEST(document.material->GetThickness(), "thickness");
    QCOMPARE(record.GetValue("thickness").metaType(), value.metaType());
}

void tst_ZAXMatDefinitionExchange::valuesThatAPropertyRefusesAreIgnored()
{
    Document document;
    document.material->SetThickness(4);
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", QVariantList{1, 2});
    record.SetValue("comment", Text("dry"));
    record.SaveToFeature(document.material);
    QCOMPARE(document.material->GetThickness(), 4.0);
    QCOMPARE(document.material->GetComment(), Text("dry"));
}

void tst_ZAXMatDefinitionExchange::aNameThatTheFeatureLacksBecomesADynamicProperty()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("hardness", 60);
    record.SaveToFeature(document.material);
    QCOMPARE(document.material->dynamicPropertyNames(), QList<QByteArray>{"hardness"});
    QCOMPARE(document.material->property("hardness"), QVariant(60));
}

void tst_ZAXMatDefinitionExchange::missingExtensionsAreCreatedAndFilled()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("pressure", 8.5, "ZAXTestAssistGas");
    record.SetValue("isExtensionEnabled", true, "ZAXTestAssistGas");
    record.SetValue("isExtensionEnabled", false, "ZAXTestPiercing");
    record.SaveToFeature(document.material);
    QCOMPARE(document.material->GetExtensions().size(), 2);
    const auto* const gas = qobject_cast<ZAXTestAssistGas*>(document.material->GetExtension("ZAXTestAssistGas", false));
    QVERIFY(gas);
    QCOMPARE(gas->GetPressure(), 8.5);
    QVERIFY(gas->IsExtensionEnabled());
    QVERIFY(!document.material->GetExtension("ZAXTestPiercing", false)->IsExtensionEnabled());

    ZAXMatDefinition packaging = Record(Type::Packaging);
    packaging.SetValue("margin", 10, "ZAXTestTrim");
    packaging.SaveToFeature(document.packaging);
    const auto* const trim = qobject_cast<ZAXTestTrim*>(document.packaging->GetExtension("ZAXTestTrim", false));
    QVERIFY(trim);
    QCOMPARE(trim->GetMargin(), 10.0);
}

void tst_ZAXMatDefinitionExchange::anExtensionIsCreatedEvenWithoutProperties()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.AddAllowedProperty("ZAXTestPiercing", "isExtensionEnabled");
    record.RemoveAllowedProperty("ZAXTestPiercing", "isExtensionEnabled");
    record.SaveToFeature(document.material);
    QVERIFY(document.material->GetExtension("ZAXTestPiercing", false));
}

void tst_ZAXMatDefinitionExchange::existingExtensionsAreFilled()
{
    Document document;
    auto* const gas = qobject_cast<ZAXTestAssistGas*>(document.material->GetExtension("ZAXTestAssistGas", true));
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("pressure", 8.5, "ZAXTestAssistGas");
    record.SaveToFeature(document.material);
    QCOMPARE(gas->GetPressure(), 8.5);
    QCOMPARE(document.material->GetExtensions(), QList<ZAXMatMaterialExtension*>{gas});
}

void tst_ZAXMatDefinitionExchange::savingTellsOfEveryChange()
{
    Document document;
    document.material->SetThickness(4);
    const QSignalSpy labels(document.material, &ZAXMatMaterial::LabelChanged);
    const QSignalSpy thicknesses(document.material, &ZAXMatMaterial::ThicknessChanged);
    const QSignalSpy extensions(document.material, &ZAXMatMaterial::MaterialExtensionAdded);
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", 2);
    record.SetValue("pressure", 8.5, "ZAXTestAssistGas");
    record.SaveToFeature(document.material);
    QCOMPARE(labels.count(), 1);
    QCOMPARE(thicknesses.count(), 1);
    QCOMPARE(thicknesses.at(0).at(0), QVariant(2.0));
    QCOMPARE(extensions.count(), 1);
}

void tst_ZAXMatDefinitionExchange::anExtensionOfTheWrongKindIsRefused_data()
{
    QTest::addColumn<bool>("isMaterial");
    QTest::addColumn<QByteArray>("extension");
    QTest::addColumn<QString>("message");
    const QString material = Text("type is not a material extension");
    const QString packaging = Text("type is not a packaging extension");
    QTest::newRow("unknown for a material") << true << QByteArray("Unknown") << material;
    QTest::newRow("packaging extension for a material") << true << QByteArray("ZAXTestTrim") << material;
    QTest::newRow("unknown for a packaging") << false << QByteArray("Unknown") << packaging;
    QTest::newRow("material extension for a packaging") << false << QByteArray("ZAXTestPiercing") << packaging;
}

void tst_ZAXMatDefinitionExchange::anExtensionOfTheWrongKindIsRefused()
{
    QFETCH(const bool, isMaterial);
    QFETCH(const QByteArray, extension);
    Document document;
    ZAXFeatObject* const features[] = {document.packaging, document.material};
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("x", 1, extension);
    QTEST(MessageThrownBy([&] { record.SaveToFeature(features[int(isMaterial)]); }), "message");
}

void tst_ZAXMatDefinitionExchange::aRefusalLeavesWhatIsWritten()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("x", 1, "Unknown");
    QCOMPARE(MessageThrownBy([&] { record.SaveToFeature(document.material); }),
             Text("type is not a material extension"));
    QCOMPARE(document.material->GetLabel(), Text("Steel"));
}

void tst_ZAXMatDefinitionExchange::aFeatureThatCanHaveNoExtensionsTakesTheRest()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("objectName", Text("root"));
    record.SetValue("pressure", 8.5, "ZAXTestAssistGas");
    record.SaveToFeature(document.root);
    QCOMPARE(document.root->GetLabel(), Text("Steel"));
    QCOMPARE(document.root->objectName(), Text("root"));
    QCOMPARE(document.root->GetChildren(), QList<ZAXFeatObject*>{document.material});
}

void tst_ZAXMatDefinitionExchange::listsOfExtensionsAreNotWritten()
{
    Document document;
    auto* const piercing = document.material->GetExtension("ZAXTestPiercing", true);
    ZAXMatDefinition record = Record(Type::Material);
    record.AddAllowedProperty("", "materialExtensions");
    record.SaveToFeature(document.material);
    QCOMPARE(document.material->GetExtensions(), QList<ZAXMatMaterialExtension*>{piercing});
}

void tst_ZAXMatDefinitionExchange::savingLeavesTheRecord()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("thickness", 2);
    record.SetValue("density", QVariant());
    record.SetValue("pressure", 8.5, "ZAXTestAssistGas");
    record.Commit();
    const QJsonValue before = record.ToJson();
    record.SaveToFeature(document.material);
    QCOMPARE(record.ToJson(), before);
    QVERIFY(!record.IsChanged());
}

void tst_ZAXMatDefinitionExchange::aRecordThatChangesMeanwhileIsSavedAsItWas()
{
    Document document;
    ZAXMatDefinition record = Record(Type::Material);
    record.SetValue("comment", Text("dry"));
    connect(document.material, &ZAXMatMaterial::LabelChanged, document.root,
            [&] { record.CopyValues(ZAXMatDefinition()); });
    record.SaveToFeature(document.material);
    QCOMPARE(document.material->GetComment(), Text("dry"));
    QVERIFY(!record.IsDefined("comment"));
}

void tst_ZAXMatDefinitionExchange::aMaterialComesBackExactlyThroughTheCatalogue()
{
    Document document;
    document.material->SetLabel(Text("Tôle"));
    document.material->SetThickness(0.1 + 0.2);
    document.material->SetDensity(2.0);
    document.material->SetMaterialType(Text("S235JR"));
    document.material->SetComment(Text("7,5"));
    document.material->SetMaterialIdCustomized(true);
    qobject_cast<ZAXTestAssistGas*>(document.material->GetExtension("ZAXTestAssistGas", true))->SetPressure(1.0 / 3.0);
    ZAXMatDefinition record = Record(Type::Material);
    for (const char* const property : {"thickness", "density", "materialType", "comment", "isMaterialIdCustomized"})
        record.AddAllowedProperty("", property);
    record.AddAllowedProperty("ZAXTestAssistGas", "pressure");
    record.LoadFromFeature(document.material);

    ZAXMatMaterial* const other = document.CreateMaterial();
    ThroughJson(record).SaveToFeature(other);
    QCOMPARE(other->GetLabel(), Text("Tôle"));
    QVERIFY(other->GetThickness() == 0.1 + 0.2);
    QVERIFY(other->GetDensity() == 2.0);
    QCOMPARE(other->GetMaterialType(), Text("S235JR"));
    QCOMPARE(other->GetComment(), Text("7,5"));
    QVERIFY(other->isMaterialIdCustomized());
    const auto* const gas = qobject_cast<ZAXTestAssistGas*>(other->GetExtension("ZAXTestAssistGas", false));
    QVERIFY(gas && gas->GetPressure() == 1.0 / 3.0);
}

QTEST_GUILESS_MAIN(tst_ZAXMatDefinitionExchange)
#include "tst_ZAXMatDefinitionExchange.moc"
