#include "Workshop.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

/// add, set, rename, copy and remove, and what they leave of the catalogue's file.
class tst_ZaxmatEdit : public QObject
{
    Q_OBJECT

private slots:
    void setChangesNothingElse();
    void setReadsValues_data();
    void setReadsValues();
    void setRefusesValues_data();
    void setRefusesValues();
    void aPointIsAlwaysOfDecimals();
    void materialsThatDocumentsCannotTellApartAreNoted();
    void aPropertyIsGivenOnce();
    void theFileMayBeNamedInsteadOfItsFolder();
    void setTakesAllOrNone();
    void setListsAllInvalidValues();
    void anEmptyValueTakesThePropertyAway();
    void settingWhatIsThereWritesNothing();
    void setFindsStockFormsOfAMaterial();
    void ambiguousNamesAreRefused_data();
    void ambiguousNamesAreRefused();
    void unknownNamesAreRefused_data();
    void unknownNamesAreRefused();
    void changesAreData();
    void addMakesAMaterialWithTheSchemaOfTheLibrary();
    void addMakesAStockForm();
    void addMakesTheFileInAFolderThatIsThere();
    void addMakesNoFolder();
    void addRefusesInvalidValues();
    void renameKeepsTheKey();
    void copyTakesTheStockFormsAlong();
    void copyOfAStockFormStaysWithItsMaterial();
    void removeTakesTheStockFormsOnlyWhenTold();
    void removeTakesAStockForm();
    void removeNeedsNoWordForAMaterialWithoutStockForms();
    void whatNobodyTouchedStaysToTheLetter();
    void keysBeyondAsciiStay();
    void recordsThatStandTwiceAreNotWritten();
    void damagedFileIsNeverWritten_data();
    void damagedFileIsNeverWritten();
    void whatIsThereTwiceIsNotLost_data();
    void whatIsThereTwiceIsNotLost();
    void otherRecordsKeepEveryByte();
    void lockLeftBySomebodyElseIsTaken();
    void missingFileIsRefused_data();
    void missingFileIsRefused();
    void permissionsAndLinksStay();
    void fullDiskLeavesTheOldFile();
    void nothingIsLeftBesideTheFile();
};

namespace {

QJsonObject Root(const Workshop& workshop)
{
    return QJsonDocument::fromJson(Workshop::Read(workshop.CatalogueFile())).object();
}

QJsonObject Values(const QJsonObject& record)
{
    return record["properties"].toObject()[QString()].toObject();
}

QJsonValue Value(const Workshop& workshop, const QString& key, const QString& property)
{
    return Values(Root(workshop)[key].toObject())[property];
}

/// The records of \a root that are not in \a before.
QList<QJsonObject> NewRecords(const QJsonObject& root, const QJsonObject& before)
{
    QList<QJsonObject> records;
    for (auto member = root.begin(); member != root.end(); ++member)
        records.append(before.contains(member.key()) ? QList<QJsonObject>()
                                                     : QList<QJsonObject>{member.value().toObject()});
    return records;
}

Workshop& Filled(Workshop& workshop)
{
    workshop.WriteCatalogue(SmallCatalogue());
    return workshop;
}

QStringList Files(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

void tst_ZaxmatEdit::setChangesNothingElse()
{
    Workshop workshop;
    QJsonObject expected = Root(Filled(workshop));
    const Run run = workshop.Zaxmat({"set", "steel-2", "thickness=2.5", "comment=ordered ø"});
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
    QVERIFY2(run.out.endsWith("\nCatalogue \"" + workshop.CatalogueFile() +
                              "\" saved: records added: 0, changed: 1, removed: 0\n"),
             qUtf8Printable(run.out));
    QJsonObject record = expected["steel-2"].toObject();
    QJsonObject values = Values(record);
    values["thickness"] = 2.5;
    values["comment"] = "ordered ø";
    record["properties"] = QJsonObject{{QString(), values}};
    expected["steel-2"] = record;
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), QJsonDocument(expected).toJson());
}

void tst_ZaxmatEdit::setReadsValues_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("millimetres") << "steel-2"
                                 << "thickness=2.5 mm" << QJsonValue(2.5);
    QTest::newRow("inches") << "steel-2"
                            << "thickness=0.5 in" << QJsonValue(12.7);
    QTest::newRow("centimetres") << "steel-2"
                                 << "thickness=1cm" << QJsonValue(10);
    QTest::newRow("decimal comma") << "steel-2"
                                   << "thickness=1,5" << QJsonValue(1.5);
    QTest::newRow("every digit") << "steel-2"
                                 << "thickness=0.1000000000000000055511151231257827" << QJsonValue(0.1);
    QTest::newRow("density") << "steel-2"
                             << "density=2700 kg/m³" << QJsonValue(2.7);
    QTest::newRow("text") << "steel-2"
                          << "category= a = b " << QJsonValue(" a = b ");
    QTest::newRow("text like a number") << "steel-2"
                                        << "comment=5" << QJsonValue("5");
    QTest::newRow("yes") << "steel-2-small"
                         << "isActive=yes" << QJsonValue(true);
    QTest::newRow("FALSE") << "steel-2-large"
                           << "isActive=FALSE" << QJsonValue(false);
    QTest::newRow("enumerator") << "steel-2-small"
                                << "form=Roll" << QJsonValue("Roll");
    QTest::newRow("number") << "steel-2-small"
                            << "cost=1e2" << QJsonValue(100);
    QTest::newRow("number with a comma") << "steel-2-small"
                                         << "cost=31,5" << QJsonValue(31.5);
    QTest::newRow("a length of a stock form") << "steel-2-small"
                                              << "length=2 m" << QJsonValue(2000);
}

void tst_ZaxmatEdit::setReadsValues()
{
    QFETCH(QString, key);
    QFETCH(QString, setting);
    QFETCH(QJsonValue, value);
    Workshop workshop;
    const Run run = Filled(workshop).Zaxmat({"set", key, setting});
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
    QCOMPARE(Value(workshop, key, setting.section('=', 0, 0)), value);
}

void tst_ZaxmatEdit::setRefusesValues_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");
    const QString invalid = "Nothing was written. These values are invalid:\n  ";
    QTest::newRow("not positive") << "steel-2"
                                  << "thickness=0" << 1
                                  << invalid + "thickness: The thickness is not a positive non-zero length.";
    QTest::newRow("no length") << "steel-2"
                               << "thickness=thick" << 1
                               << invalid + "thickness: \"thick\" is no length. Give a number of millimetres, or a "
                                            "number with its unit: 2, \"2 mm\", \"0.5 in\".";
    QTest::newRow("a unit of something else")
        << "steel-2"
        << "thickness=2 g/cm³" << 1
        << invalid + "thickness: \"2 g/cm³\" is no length. Give a number of millimetres, or a number with its unit: "
                     "2, \"2 mm\", \"0.5 in\".";
    QTest::newRow("no density") << "steel-2"
                                << "density=2 mm" << 1
                                << invalid + "density: \"2 mm\" is no density. Give a number of grams per cubic "
                                             "centimetre, or a number with its unit: 7.85, \"7850 kg/m³\".";
    QTest::newRow("not finite") << "steel-2-small"
                                << "cost=inf" << 1 << invalid + "cost: \"inf\" is no number.";
    QTest::newRow("not free") << "steel-2-small"
                              << "cost=-1" << 1 << invalid + "cost: Cost must be a positive, non-zero value.";
    QTest::newRow("no weight") << "steel-2"
                               << "density=0" << 1 << invalid + "density: it must be greater than zero";
    QTest::newRow("perhaps thousands") << "steel-2-small"
                                       << "length=1,250" << 1
                                       << invalid + "length: \"1,250\" is ambiguous; write 1250 or 1.25.";
    QTest::newRow("perhaps thousands with a unit")
        << "steel-2-small"
        << "length=1,000 mm" << 1 << invalid + "length: \"1,000 mm\" is ambiguous; write 1000 mm or 1.0 mm.";
    QTest::newRow("no enumerator") << "steel-2-small"
                                   << "form=Round" << 1 << invalid + "form: \"Round\" is none of Rectangular, Roll.";
    QTest::newRow("no boolean") << "steel-2-small"
                                << "isActive=maybe" << 1 << invalid + "isActive: \"maybe\" is neither true nor false.";
    QTest::newRow("no value") << "steel-2"
                              << "thickness" << 2 << "\"thickness\" is no property=value.";
    QTest::newRow("no name") << "steel-2"
                             << "=2" << 2 << "\"\" names no property. Write it as thickness or as Extension.property.";
    QTest::newRow("a slip") << "steel-2"
                            << "thicknes=2" << 2
                            << "A material has no property \"thicknes\" to set.\nSimilar: thickness";
    QTest::newRow("of a stock form") << "steel-2"
                                     << "cost=2" << 2
                                     << "A material has no property \"cost\" to set.\nIt has: materialId, "
                                        "isMaterialIdCustomized, materialType, thickness, category, density, comment";
    QTest::newRow("of a material") << "steel-2-small"
                                   << "thickness=2" << 2
                                   << "A stock form has no property \"thickness\" to set.\nIt has: length, width, "
                                      "form, cost, comment, isActive";
    QTest::newRow("of documents only") << "steel-2"
                                       << "remoteKey=x" << 2
                                       << "A material has no property \"remoteKey\" to set.\nIt has: materialId, "
                                          "isMaterialIdCustomized, materialType, thickness, category, density, comment";
    QTest::newRow("of an unknown extension")
        << "steel-2"
        << "Gas.pressure=2" << 2 << "No module provides the extension \"Gas\", which \"Gas.pressure\" belongs to.";
}

void tst_ZaxmatEdit::setRefusesValues()
{
    QFETCH(QString, key);
    QFETCH(QString, setting);
    QFETCH(int, code);
    QFETCH(QString, message);
    Workshop workshop;
    const QByteArray before = Workshop::Read(Filled(workshop).CatalogueFile());
    const Run run = workshop.Zaxmat({"set", key, setting});
    QCOMPARE(run.err, "zaxmat: " + message + '\n');
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, code);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatEdit::aPointIsAlwaysOfDecimals()
{
    Workshop workshop;
    QCOMPARE(Filled(workshop).Zaxmat({"set", "steel-2-small", "length=1.250", "width=0,125"}).code, 0);
    QCOMPARE(Value(workshop, "steel-2-small", "length"), QJsonValue(1.25));
    QCOMPARE(Value(workshop, "steel-2-small", "width"), QJsonValue(0.125));
}

void tst_ZaxmatEdit::materialsThatDocumentsCannotTellApartAreNoted()
{
    Workshop workshop;
    Filled(workshop);
    const QString note =
        "zaxmat: note: \"%1\" and \"Structural steel\" (%2) are both \"S235JR\" of %3; documents cannot "
        "tell them apart.\n";
    QCOMPARE(workshop.Zaxmat({"copy", "steel-2", "Copy", "thickness=4"}).err, "");
    QCOMPARE(workshop.Zaxmat({"copy", "steel-2", "Copy", "--unit", "in"}).err,
             note.arg("Copy", "steel-2", "0.0787401575 in"));
    QCOMPARE(workshop.Zaxmat({"set", "steel-2", "comment=x"}).err, "");
    QCOMPARE(workshop.Zaxmat({"add", "New", "materialType=S235JR", "thickness=3"}).err,
             note.arg("New", "steel-3", "3 mm"));
    QCOMPARE(workshop.Zaxmat({"add", "New", "thickness=3"}).err, "");
}

void tst_ZaxmatEdit::aPropertyIsGivenOnce()
{
    Workshop workshop;
    const Run run = Filled(workshop).Zaxmat({"set", "steel-2", "thickness=2", "comment=x", "thickness=3"});
    QCOMPARE(run.err, "zaxmat: \"thickness\" is given twice.\n");
    QCOMPARE(run.code, 2);
}

void tst_ZaxmatEdit::theFileMayBeNamedInsteadOfItsFolder()
{
    Workshop workshop;
    Filled(workshop);
    QCOMPARE(workshop.Zaxmat({"set", "steel-2", "comment=x", "--catalogue", workshop.CatalogueFile()}).code, 0);
    QCOMPARE(Value(workshop, "steel-2", "comment"), QJsonValue("x"));
}

void tst_ZaxmatEdit::setTakesAllOrNone()
{
    Workshop workshop;
    const QByteArray before = Workshop::Read(Filled(workshop).CatalogueFile());
    QCOMPARE(workshop.Zaxmat({"set", "steel-2", "comment=new", "thickness=-2"}).code, 1);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatEdit::setListsAllInvalidValues()
{
    Workshop workshop;
    const Run run = Filled(workshop).Zaxmat({"set", "steel-2-small", "cost=free", "length=-1"});
    QCOMPARE(run.err, "zaxmat: Nothing was written. These values are invalid:\n"
                      "  cost: \"free\" is no number.\n"
                      "  length: Length must be a positive, non-zero value.\n");
}

void tst_ZaxmatEdit::anEmptyValueTakesThePropertyAway()
{
    Workshop workshop;
    QCOMPARE(Filled(workshop).Zaxmat({"set", "steel-2", "comment="}).code, 0);
    QVERIFY(!Values(Root(workshop)["steel-2"].toObject()).contains("comment"));
}

void tst_ZaxmatEdit::settingWhatIsThereWritesNothing()
{
    Workshop workshop;
    // Not as this program would write it.
    const QByteArray bytes = QJsonDocument(Root(Filled(workshop))).toJson(QJsonDocument::Compact);
    Workshop::Write(workshop.CatalogueFile(), bytes);
    const Run run = workshop.Zaxmat({"set", "steel-2", "thickness=2", "comment=EN 10025-2"});
    QCOMPARE(run.out, "Catalogue \"" + workshop.CatalogueFile() + "\" holds this already; nothing was written.\n");
    QCOMPARE(run.code, 0);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), bytes);
}

void tst_ZaxmatEdit::setFindsStockFormsOfAMaterial()
{
    Workshop workshop;
    QCOMPARE(Filled(workshop).Zaxmat({"set", "Sheet small", "--material", "steel-3", "cost=50"}).code, 0);
    QCOMPARE(Value(workshop, "steel-3-small", "cost"), QJsonValue(50));
    QCOMPARE(Value(workshop, "steel-2-small", "cost"), QJsonValue(31.4));
}

void tst_ZaxmatEdit::ambiguousNamesAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const QString steels = "Several records are called \"%1\". Choose one by its key:\n"
                           "  Structural steel, 2 mm  steel-2\n  Structural steel, 3 mm  steel-3\n";
    QTest::newRow("materials by name") << QStringList{"set", "Structural steel", "comment=x"}
                                       << steels.arg("Structural steel");
    QTest::newRow("materials by type") << QStringList{"rename", "S235JR", "x"} << steels.arg("S235JR");
    QTest::newRow("stock forms") << QStringList{"remove", "Sheet small", "--yes"}
                                 << "Several records are called \"Sheet small\". Choose one by its key:\n"
                                    "  Sheet small of Structural steel, 2 mm  steel-2-small\n"
                                    "  Sheet small of Structural steel, 3 mm  steel-3-small\n";
    QTest::newRow("the material of a new stock form")
        << QStringList{"add", "x", "--material", "S235JR"} << steels.arg("S235JR");
}

void tst_ZaxmatEdit::ambiguousNamesAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    Workshop workshop;
    const QByteArray before = Workshop::Read(Filled(workshop).CatalogueFile());
    const Run run = workshop.Zaxmat(arguments);
    QCOMPARE(run.err, "zaxmat: " + message);
    QCOMPARE(run.code, 2);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatEdit::unknownNamesAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("set") << QStringList{"set", "Gold", "comment=x"};
    QTest::newRow("rename") << QStringList{"rename", "Gold", "x"};
    QTest::newRow("copy") << QStringList{"copy", "Gold", "x"};
    QTest::newRow("remove") << QStringList{"remove", "Gold"};
    QTest::newRow("add") << QStringList{"add", "x", "--material", "Gold"};
}

void tst_ZaxmatEdit::unknownNamesAreRefused()
{
    QFETCH(QStringList, arguments);
    Workshop workshop;
    const QByteArray before = Workshop::Read(Filled(workshop).CatalogueFile());
    const Run run = workshop.Zaxmat(arguments);
    QCOMPARE(run.err, "zaxmat: The catalogue \"" + workshop.CatalogueFile() +
                          "\" has no \"Gold\".\n\"zaxmat list\" shows all materials.\n");
    QCOMPARE(run.code, 2);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatEdit::changesAreData()
{
    Workshop workshop;
    const Run run = Filled(workshop).Zaxmat({"set", "steel-2", "thickness=3", "--format", "json", "--unit", "in"});
    const QJsonArray changes = QJsonDocument::fromJson(run.out.toUtf8()).array();
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes[0]["change"].toString(), "changed");
    QCOMPARE(changes[0]["key"].toString(), "steel-2");
    QCOMPARE(changes[0]["property"].toString(), "thickness");
    QCOMPARE(changes[0]["old"], QJsonValue(2));
    QCOMPARE(changes[0]["new"], QJsonValue(3));
    QCOMPARE(workshop.Zaxmat({"set", "steel-2", "thickness=3", "--format", "json"}).out, "[\n]\n");
}

void tst_ZaxmatEdit::addMakesAMaterialWithTheSchemaOfTheLibrary()
{
    Workshop workshop;
    const QJsonObject before = Root(Filled(workshop));
    QCOMPARE(workshop.Zaxmat({"add", "Bronze ø", "materialType=CuSn8", "thickness=2 mm"}).code, 0);
    const auto added = NewRecords(Root(workshop), before);
    QCOMPARE(added.size(), 1);
    const QJsonObject& record = added[0];
    QCOMPARE(record["name"].toString(), "Bronze ø");
    QCOMPARE(record["type"], QJsonValue(0));
    QCOMPARE(record["key"].toString().size(), 38);
    QCOMPARE(Root(workshop)[record["key"].toString()].toObject(), record);
    QCOMPARE(Values(record), (QJsonObject{{"materialType", "CuSn8"},
                                          {"thickness", 2},
                                          {"category", QJsonValue()},
                                          {"comment", QJsonValue()},
                                          {"density", QJsonValue()},
                                          {"materialId", QJsonValue()},
                                          {"isMaterialIdCustomized", QJsonValue()},
                                          {"materialExtensions", QJsonValue()}}));
    for (auto member = before.begin(); member != before.end(); ++member)
        QCOMPARE(Root(workshop)[member.key()], member.value());
}

void tst_ZaxmatEdit::addMakesAStockForm()
{
    Workshop workshop;
    const QJsonObject before = Root(Filled(workshop));
    QCOMPARE(workshop.Zaxmat({"add", "Offcut", "--material", "PMMA", "length=40 in", "width=500", "cost=1"}).code, 0);
    const auto added = NewRecords(Root(workshop), before);
    QCOMPARE(added.size(), 1);
    QCOMPARE(added[0]["materialKey"].toString(), "acrylic-12.7");
    QCOMPARE(added[0]["type"], QJsonValue(1));
    QCOMPARE(Values(added[0])["length"], QJsonValue(1016));
}

void tst_ZaxmatEdit::addMakesTheFileInAFolderThatIsThere()
{
    const Workshop workshop;
    const Run run = workshop.Zaxmat({"add", "First", "thickness=1"});
    QCOMPARE(run.err, "zaxmat: note: the catalogue \"" + workshop.CatalogueFile() + "\" is new.\n");
    QCOMPARE(run.code, 0);
    QCOMPARE(Root(workshop).size(), 1);
}

void tst_ZaxmatEdit::addMakesNoFolder()
{
    const Workshop workshop;
    const Run run = workshop.Zaxmat({"add", "First", "--catalogue", workshop.Path("nowhere")});
    QCOMPARE(run.err, "zaxmat: The catalogue \"" + workshop.Path("nowhere/materials.json") +
                          "\" cannot be made, since there is no such folder. Make the folder first.\n");
    QCOMPARE(run.code, 3);
    QVERIFY(!QFile::exists(workshop.Path("nowhere")));
}

void tst_ZaxmatEdit::addRefusesInvalidValues()
{
    const Workshop workshop;
    QCOMPARE(workshop.Zaxmat({"add", "First", "thickness=0"}).code, 1);
    QCOMPARE(Files(workshop.CatalogueFolder()), QStringList());
}

void tst_ZaxmatEdit::renameKeepsTheKey()
{
    Workshop workshop;
    QJsonObject expected = Root(Filled(workshop));
    QCOMPARE(workshop.Zaxmat({"rename", "steel-2", "Mild steel"}).code, 0);
    QJsonObject record = expected["steel-2"].toObject();
    record["name"] = "Mild steel";
    expected["steel-2"] = record;
    QCOMPARE(Root(workshop), expected);
}

void tst_ZaxmatEdit::copyTakesTheStockFormsAlong()
{
    Workshop workshop;
    const QJsonObject before = Root(Filled(workshop));
    QCOMPARE(workshop.Zaxmat({"copy", "steel-3", "Copied steel", "thickness=4"}).code, 0);
    const QJsonObject root = Root(workshop);
    const auto added = NewRecords(root, before);
    QCOMPARE(added.size(), 2);
    const QJsonObject& material = added[added[0]["type"] == 0 ? 0 : 1];
    const QJsonObject& stockForm = added[added[0]["type"] == 0 ? 1 : 0];
    QCOMPARE(material["name"].toString(), "Copied steel");
    QCOMPARE(Values(material)["thickness"], QJsonValue(4));
    QCOMPARE(Values(material)["density"], QJsonValue(7.85));
    QCOMPARE(stockForm["materialKey"], material["key"]);
    QCOMPARE(stockForm["properties"], before["steel-3-small"].toObject()["properties"]);
    QCOMPARE(root["steel-3"], before["steel-3"]);
    QCOMPARE(root["steel-3-small"], before["steel-3-small"]);
}

void tst_ZaxmatEdit::copyOfAStockFormStaysWithItsMaterial()
{
    Workshop workshop;
    const QJsonObject before = Root(Filled(workshop));
    QCOMPARE(workshop.Zaxmat({"copy", "steel-3-small", "Sheet tiny"}).code, 0);
    const auto added = NewRecords(Root(workshop), before);
    QCOMPARE(added.size(), 1);
    QCOMPARE(added[0]["materialKey"].toString(), "steel-3");
    QCOMPARE(added[0]["name"].toString(), "Sheet tiny");
}

void tst_ZaxmatEdit::removeTakesTheStockFormsOnlyWhenTold()
{
    Workshop workshop;
    QJsonObject expected = Root(Filled(workshop));
    const Run refused = workshop.Zaxmat({"remove", "steel-3"});
    QCOMPARE(refused.err, "zaxmat: With \"Structural steel, 3 mm\" these stock forms would go. Say --yes to remove "
                          "them too:\n  Sheet small  steel-3-small\n");
    QCOMPARE(refused.code, 2);
    QCOMPARE(Root(workshop), expected);
    QCOMPARE(workshop.Zaxmat({"remove", "steel-3", "--yes"}).code, 0);
    expected.remove("steel-3");
    expected.remove("steel-3-small");
    QCOMPARE(Root(workshop), expected);
}

void tst_ZaxmatEdit::removeTakesAStockForm()
{
    Workshop workshop;
    QJsonObject expected = Root(Filled(workshop));
    QCOMPARE(workshop.Zaxmat({"remove", "Coil"}).code, 0);
    expected.remove("steel-2-coil");
    QCOMPARE(Root(workshop), expected);
}

void tst_ZaxmatEdit::removeNeedsNoWordForAMaterialWithoutStockForms()
{
    Workshop workshop;
    QCOMPARE(Filled(workshop).Zaxmat({"remove", "PMMA"}).code, 0);
    QVERIFY(!Root(workshop).contains("acrylic-12.7"));
}

void tst_ZaxmatEdit::whatNobodyTouchedStaysToTheLetter()
{
    const Workshop workshop;
    QJsonObject other = Material("other", "Of another type", {});
    other["type"] = 3;
    QJsonObject strange = Material("strange", "Strange", {{"zebra", 1}, {"thickness", "0.5 in"}});
    strange["note"] = "kept";
    QJsonObject properties = strange["properties"].toObject();
    properties["Gas"] = QJsonObject{{"pressure", QJsonArray{1, "x"}}};
    strange["properties"] = properties;
    QJsonObject root{
        {"other", other}, {"strange", strange}, {"no record", 5}, {"a name of its own", Material("k", "K", {})}};
    Workshop::Write(workshop.CatalogueFile(), QJsonDocument(root).toJson());
    QCOMPARE(workshop.Zaxmat({"set", "strange", "comment=x", "zebra=2"}).code, 0);
    QCOMPARE(workshop.Zaxmat({"set", "k", "comment=y"}).code, 0);
    QJsonObject values = Values(strange);
    values["zebra"] = 2;
    values["comment"] = "x";
    properties[QString()] = values;
    strange["properties"] = properties;
    root["strange"] = strange;
    root["a name of its own"] = Material("k", "K", {{"comment", "y"}});
    QCOMPARE(Root(workshop), root);
}

void tst_ZaxmatEdit::keysBeyondAsciiStay()
{
    const Workshop workshop;
    workshop.WriteCatalogue(
        {Material("tôle-ø", "Tôle", {{"thickness", 1}}), StockForm("feuille-ø", "tôle-ø", "F", {})});
    QCOMPARE(workshop.Zaxmat({"set", "tôle-ø", "thickness=2"}).code, 0);
    QCOMPARE(workshop.Zaxmat({"set", "feuille-ø", "cost=2"}).code, 0);
    QCOMPARE(Root(workshop).keys(), (QStringList{"feuille-ø", "tôle-ø"}));
    QCOMPARE(Root(workshop)["feuille-ø"].toObject()["materialKey"].toString(), "tôle-ø");
    QVERIFY(workshop.Zaxmat({"show", "tôle-ø"}).out.contains("\nKey        tôle-ø\n"));
}

void tst_ZaxmatEdit::recordsThatStandTwiceAreNotWritten()
{
    const Workshop workshop;
    const QByteArray bytes =
        QJsonDocument(QJsonObject{{"a", Material("k", "One", {})}, {"b", Material("k", "Two", {})}}).toJson();
    Workshop::Write(workshop.CatalogueFile(), bytes);
    const Run run = workshop.Zaxmat({"set", "k", "comment=x"});
    QCOMPARE(run.err, "zaxmat: The catalogue holds the record \"k\" (\"Two\") 2 times, and only one of them counts. "
                      "Nothing was written. \"zaxmat check\" shows such records.\n");
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), bytes);
}

void tst_ZaxmatEdit::whatIsThereTwiceIsNotLost_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("again");
    QTest::addColumn<QString>("where");
    QTest::newRow("a record") << QByteArray("{") << QByteArray(R"({"steel-2": {"key": "steel-2"},)")
                              << "\"steel-2\" twice";
    QTest::newRow("a value of it") << QByteArray("\"comment\":") << QByteArray("\"comment\": 7, \"comment\":")
                                   << "\"comment\" twice (line 23, column 31), and";
}

void tst_ZaxmatEdit::whatIsThereTwiceIsNotLost()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, again);
    QFETCH(QString, where);
    Workshop workshop;
    QByteArray bytes = Workshop::Read(Filled(workshop).CatalogueFile());
    bytes.replace(bytes.indexOf(before), before.size(), again);
    Workshop::Write(workshop.CatalogueFile(), bytes);
    const Run run = workshop.Zaxmat({"set", "steel-2", "comment=x"});
    QVERIFY2(run.err.contains(where), qUtf8Printable(run.err));
    QVERIFY(run.err.contains("\"zaxmat check\" tells more."));
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), bytes);
}

void tst_ZaxmatEdit::otherRecordsKeepEveryByte()
{
    Workshop workshop;
    QByteArray bytes =
        "{ \"a\" : {\"key\":\"a\",\"type\":0,\"name\":\"A\", \"properties\":{\"\":{\"thickness\":2.50,\"thickness\":"
        "3.00}}},\n\n  \"b\":{\"key\":\"b\",\"type\":0,\"name\":\"B\",\"properties\":{}} }\t";
    Workshop::Write(workshop.CatalogueFile(), bytes);
    QCOMPARE(workshop.Zaxmat({"rename", "b", "C"}).code, 0);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()),
             bytes.replace("{\"key\":\"b\",\"type\":0,\"name\":\"B\",\"properties\":{}}",
                           "{\"key\":\"b\",\"materialKey\":\"\",\"name\":\"C\",\"properties\":{},\"type\":0}"));
    QCOMPARE(workshop.Zaxmat({"rename", "a", "D"}).code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), bytes);
}

void tst_ZaxmatEdit::lockLeftBySomebodyElseIsTaken()
{
    Workshop workshop;
    const QString lock = Filled(workshop).CatalogueFile() + ".lock";
    Workshop::Write(lock, "1\nzaxmat\nelsewhere\n");
    QFile::setPermissions(lock, QFile::ReadOwner);
    const Run run = workshop.ZaxmatThrough(Workshop::AsOrdinaryUser(), {"set", "steel-3", "comment=x"});
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
    QVERIFY(!QFile::exists(lock));
}

void tst_ZaxmatEdit::damagedFileIsNeverWritten_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("add") << QStringList{"add", "x"};
    QTest::newRow("set") << QStringList{"set", "steel-2", "comment=x"};
    QTest::newRow("rename") << QStringList{"rename", "steel-2", "x"};
    QTest::newRow("copy") << QStringList{"copy", "steel-2", "x"};
    QTest::newRow("remove") << QStringList{"remove", "steel-2", "--yes"};
}

void tst_ZaxmatEdit::damagedFileIsNeverWritten()
{
    QFETCH(QStringList, arguments);
    Workshop workshop;
    QByteArray bytes = Workshop::Read(Filled(workshop).CatalogueFile());
    for (const QByteArray& damaged : {bytes.first(bytes.size() - 3), QByteArray(), QByteArray("[]"), bytes + '}'}) {
        Workshop::Write(workshop.CatalogueFile(), damaged);
        const Run run = workshop.Zaxmat(arguments);
        QVERIFY2(run.err.startsWith("zaxmat: The catalogue \"" + workshop.CatalogueFile() + "\" is damaged: "),
                 qUtf8Printable(run.err));
        QCOMPARE(run.out, "");
        QCOMPARE(run.code, 3);
        QCOMPARE(Workshop::Read(workshop.CatalogueFile()), damaged);
        QCOMPARE(Files(workshop.CatalogueFolder()), QStringList{"materials.json"});
    }
}

void tst_ZaxmatEdit::missingFileIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("set") << QStringList{"set", "steel-2", "comment=x"};
    QTest::newRow("rename") << QStringList{"rename", "steel-2", "x"};
    QTest::newRow("copy") << QStringList{"copy", "steel-2", "x"};
    QTest::newRow("remove") << QStringList{"remove", "steel-2", "--yes"};
}

void tst_ZaxmatEdit::missingFileIsRefused()
{
    QFETCH(QStringList, arguments);
    const Workshop workshop;
    const Run run = workshop.Zaxmat(arguments);
    QVERIFY2(run.err.contains("cannot be read: No such file or directory."), qUtf8Printable(run.err));
    QCOMPARE(run.code, 3);
    QCOMPARE(Files(workshop.CatalogueFolder()), QStringList());
}

void tst_ZaxmatEdit::permissionsAndLinksStay()
{
    Workshop workshop;
    const Run run = Filled(workshop).ZaxmatThrough(
        "chmod 640 \"$ZAXMAT_CATALOGUE/materials.json\"; mv \"$ZAXMAT_CATALOGUE/materials.json\" real.json; ln -s "
        "../real.json \"$ZAXMAT_CATALOGUE/materials.json\"; \"$@\" >/dev/null; stat -c '%a %F' real.json "
        "\"$ZAXMAT_CATALOGUE/materials.json\"",
        {"set", "steel-2", "comment=x"});
    QCOMPARE(run.err, "");
    QCOMPARE(run.out, "640 regular file\n777 symbolic link\n");
    QCOMPARE(Value(workshop, "steel-2", "comment"), QJsonValue("x"));
}

void tst_ZaxmatEdit::fullDiskLeavesTheOldFile()
{
    Workshop workshop;
    const QByteArray before = Workshop::Read(Filled(workshop).CatalogueFile());
    const Run run = workshop.ZaxmatThrough(Workshop::onFullDisk, {"set", "steel-2", "comment=x"});
    QVERIFY2(run.err.startsWith("zaxmat: The catalogue \"" + workshop.CatalogueFile() + "\" cannot be written: "),
             qUtf8Printable(run.err));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
    QCOMPARE(Files(workshop.CatalogueFolder()), QStringList{"materials.json"});
}

void tst_ZaxmatEdit::nothingIsLeftBesideTheFile()
{
    Workshop workshop;
    QCOMPARE(Filled(workshop).Zaxmat({"set", "steel-2", "comment=x"}).code, 0);
    QCOMPARE(Files(workshop.CatalogueFolder()), QStringList{"materials.json"});
}

QTEST_GUILESS_MAIN(tst_ZaxmatEdit)
#include "tst_ZaxmatEdit.moc"
