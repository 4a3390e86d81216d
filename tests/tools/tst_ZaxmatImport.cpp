#include "Workshop.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

class tst_ZaxmatImport : public QObject
{
    Q_OBJECT

private slots:
    void exportsMaterialsWithTheirStockForms();
    void exportReplacesAFileButNotTheCatalogue();
    void exportSparesCataloguesAndDocuments_data();
    void exportSparesCataloguesAndDocuments();
    void exportFailsWhereItCannotWrite();
    void exportThenImportIsTheIdentity_data();
    void exportThenImportIsTheIdentity();
    void exportThenImportMakesTheSameCatalogueElsewhere();
    void addsChangesAndLeavesAlone();
    void showsEachRowOfATrialAndWritesNothing();
    void triesWithoutACatalogue();
    void takesARowWithoutATypeForAMaterial();
    void readsCells_data();
    void readsCells();
    void anEmptyCellLeavesAValueAlone();
    void recognisesSeparatorsAndMarks_data();
    void recognisesSeparatorsAndMarks();
    void readsADecimalCommaOnlyWhereCommasDoNotSeparate();
    void refusesNumbersThatMayBeThousands_data();
    void refusesNumbersThatMayBeThousands();
    void convertsUnits_data();
    void convertsUnits();
    void matchesByColumns();
    void leavesAloneWhatItMatchesBy();
    void addsNothingTwice();
    void notesMaterialsThatDocumentsCannotTellApart_data();
    void notesMaterialsThatDocumentsCannotTellApart();
    void matchesStockFormsWithinTheirMaterial();
    void findsMaterialsOfStockForms_data();
    void findsMaterialsOfStockForms();
    void putsAStockFormIntoANewMaterialWhateverTheOrder();
    void rejectsRows_data();
    void rejectsRows();
    void aRejectedRowKeepsAllOut();
    void partialImportsTheOthers();
    void refusesTitles_data();
    void refusesTitles();
    void refusesFiles_data();
    void refusesFiles();
    void keepsTheBytesOfOtherRecords();
    void neverWritesToACatalogueThatDoesNotParse();
    void makesACatalogueInAFolderThatIsThere();
    void printsJson();
    void keepsWhatAnUnknownModuleStored();
};

namespace {

Run Import(const Workshop& workshop, const QByteArray& csv, const QStringList& options = {})
{
    Workshop::Write(workshop.Path("prices ø.csv"), csv);
    return workshop.Zaxmat(QStringList{"import", workshop.Path("prices ø.csv")} + options);
}

QJsonArray Rows(const Run& run)
{
    return QJsonDocument::fromJson(run.out.toUtf8()).array();
}

QJsonObject RecordIn(const Workshop& workshop, const QString& key)
{
    return QJsonDocument::fromJson(Workshop::Read(workshop.CatalogueFile())).object().value(key).toObject();
}

QJsonValue ValueIn(const Workshop& workshop, const QString& key, const QString& property)
{
    return RecordIn(workshop, key).value("properties")[""][property];
}

/// The lines of a table, with two spaces between cells and without the line below the titles.
QStringList Squeezed(const QString& text)
{
    QStringList lines = text.split('\n');
    lines.removeAt(1);
    for (QString& line : lines)
        line = line.trimmed().replace(QRegularExpression(" {3,}"), "  ");
    return lines;
}

/// Values that are easily damaged on the way.
QList<QJsonObject> DelicateCatalogue()
{
    return {Material("a", "Steel, \"best\"; ø\n second line ",
                     {{"materialType", "S235JR"},
                      {"thickness", 0.1},
                      {"density", 7.850000000000001},
                      {"category", ""},
                      {"comment", " a\tb "}}),
            Material("b", "=1+1", {{"thickness", 5e-324}, {"density", 1.7976931348623157e308}, {"comment", "007"}}),
            Material("c", "", {{"thickness", "0.5 in"}, {"materialType", 5}, {"unheard of", QJsonArray{1, "x"}}}),
            Material("d", "d",
                     {{"thickness", 1.0 / 3},
                      {"isMaterialIdCustomized", "yes"},
                      {"comment", QJsonValue()},
                      {"key", "own"},
                      {"large", qint64(9007199254740993)}}),
            StockForm("e", "a", "Sheet", {{"length", 2000}, {"form", 1}, {"cost", "dear"}, {"isActive", true}}),
            StockForm("f", "nowhere", "Lost", {{"length", -0.0}, {"form", "Roll"}, {"cost", 0.30000000000000004}})};
}

} // namespace

void tst_ZaxmatImport::exportsMaterialsWithTheirStockForms()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"export", workshop.Path("out ø.csv")});
    QCOMPARE(run.out, "Written to \"" + workshop.Path("out ø.csv") + "\": materials: 3, stock forms: 4\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
    QCOMPARE(QString::fromUtf8(Workshop::Read(workshop.Path("out ø.csv"))),
             "type,key,material,name,materialId,isMaterialIdCustomized,materialType,thickness [mm],category,"
             "density [g/cm³],comment,length [mm],width [mm],form,cost,isActive\r\n"
             "material,acrylic-12.7,,\"Acrylic, cast\",,,PMMA,0.5 in,Plastic,1190 kg/m³,,,,,,\r\n"
             "material,steel-2,,Structural steel,,,S235JR,2,Metal,7.85,EN 10025-2,,,,,\r\n"
             "stock form,steel-2-coil,steel-2,Coil,,,,,,,\"\",50000,1500,Roll,1083.3,false\r\n"
             "stock form,steel-2-large,steel-2,Sheet large,,,,,,,\"\",3000,1500,Rectangular,70.65,true\r\n"
             "stock form,steel-2-small,steel-2,Sheet small,,,,,,,\"\",2000,1000,Rectangular,31.4,false\r\n"
             "material,steel-3,,Structural steel,,,S235JR,3,Metal,7.85,EN 10025-2,,,,,\r\n"
             "stock form,steel-3-small,steel-3,Sheet small,,,,,,,\"\",2000,1000,Rectangular,47.1,true\r\n");
}

void tst_ZaxmatImport::exportReplacesAFileButNotTheCatalogue()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    Workshop::Write(workshop.Path("out.csv"), QByteArray(100000, 'x'));
    QCOMPARE(workshop.Zaxmat({"export", workshop.Path("out.csv")}).code, 0);
    QVERIFY(Workshop::Read(workshop.Path("out.csv")).endsWith("47.1,true\r\n"));
    QFile::link(workshop.CatalogueFile(), workshop.Path("link"));
    QCOMPARE(workshop.Zaxmat({"export", workshop.CatalogueFile()}).code, 2);
    QCOMPARE(workshop.Zaxmat({"export", workshop.Path("link")}).code, 2);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatImport::exportSparesCataloguesAndDocuments_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("a catalogue") << QByteArray("{\n}\n");
    QTest::newRow("a catalogue with a byte order mark") << QByteArray("\xEF\xBB\xBF{}");
    QTest::newRow("a document") << QByteArray("\x89ZAX\r\n\x1a\n and more");
}

void tst_ZaxmatImport::exportSparesCataloguesAndDocuments()
{
    QFETCH(QByteArray, bytes);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QString path = workshop.Path("precious");
    Workshop::Write(path, bytes);
    const Run run = workshop.Zaxmat({"export", path});
    QCOMPARE(run.err, "zaxmat: \"" + path + "\" is a catalogue or a document. Name another file.\n");
    QCOMPARE(run.code, 2);
    QCOMPARE(Workshop::Read(path), bytes);
}

void tst_ZaxmatImport::exportFailsWhereItCannotWrite()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"export", workshop.Path("nowhere/out.csv")});
    QCOMPARE(run.out, "");
    QVERIFY2(run.err.contains("cannot be written"), qUtf8Printable(run.err));
    QCOMPARE(run.code, 3);
    const Run device = workshop.ZaxmatThrough("\"$@\" | cat; exit 0", {"export", "/dev/stdout"});
    QCOMPARE(device.err, "zaxmat: \"/dev/stdout\" is no file. Name a file.\n");
    Workshop::Write(workshop.Path("out.csv"), "old");
    QCOMPARE(workshop.ZaxmatThrough(Workshop::onFullDisk, {"export", workshop.Path("out.csv")}).code, 3);
    QCOMPARE(Workshop::Read(workshop.Path("out.csv")), "old");
}

void tst_ZaxmatImport::exportThenImportIsTheIdentity_data()
{
    QTest::addColumn<QByteArray>("catalogue");
    Workshop workshop;
    const auto bytes = [&](const QList<QJsonObject>& records) {
        workshop.WriteCatalogue(records);
        return Workshop::Read(workshop.CatalogueFile());
    };
    QTest::newRow("small") << bytes(SmallCatalogue());
    QTest::newRow("delicate") << bytes(DelicateCatalogue());
    QTest::newRow("example") << Workshop::Read(ZAX_EXAMPLES "/catalogue/materials.json");
    QTest::newRow("empty") << QByteArray("{}");
    QTest::newRow("spelt by hand") << QByteArray("{\"a\":{\"key\":\"a\",\"type\":0,\"name\":\"n\",\"note\":1,"
                                                 "\"properties\":{\"\":{\"thickness\":2.50,\"density\":1e0}}}}");
}

void tst_ZaxmatImport::exportThenImportIsTheIdentity()
{
    QFETCH(const QByteArray, catalogue);
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), catalogue);
    QCOMPARE(workshop.Zaxmat({"export", workshop.Path("a.csv")}).code, 0);
    const Run run = workshop.Zaxmat({"import", workshop.Path("a.csv"), "--format", "json"});
    const QJsonArray rows = Rows(run);
    for (const QJsonValue& row : rows)
        QCOMPARE(row["change"].toString() + row["reason"].toString(), "unchanged");
    QCOMPARE(run.code, 0);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), catalogue);
}

void tst_ZaxmatImport::exportThenImportMakesTheSameCatalogueElsewhere()
{
    const Workshop workshop;
    const QString example = ZAX_EXAMPLES "/catalogue";
    QCOMPARE(workshop.Zaxmat({"export", workshop.Path("a.csv"), "--catalogue", example}).code, 0);
    QCOMPARE(workshop.Zaxmat({"import", workshop.Path("a.csv")}).code, 0);
    const Run diff = workshop.Zaxmat({"diff", example, workshop.CatalogueFolder()});
    QCOMPARE(diff.out, "The catalogues hold the same.\n");
}

void tst_ZaxmatImport::addsChangesAndLeavesAlone()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = Import(workshop, "type,key,name,material,thickness [mm],cost,materialType\n"
                                     "material,steel-2,,,2.5,,\n"
                                     "material,steel-3,,,3,,S235JR\n"
                                     "stock form,steel-2-coil,Coil,steel-2,,99.5,\n"
                                     "material,copper,Copper,,1,,Cu-DHP\n"
                                     "stock form,,Plate,copper,,12,\n");
    QCOMPARE(run.out, "Rows added: 2, changed: 2, unchanged: 1, rejected: 0\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
    QCOMPARE(ValueIn(workshop, "steel-2", "thickness"), QJsonValue(2.5));
    QCOMPARE(ValueIn(workshop, "steel-2", "materialType"), QJsonValue("S235JR"));
    QCOMPARE(ValueIn(workshop, "steel-2-coil", "cost"), QJsonValue(99.5));
    QCOMPARE(RecordIn(workshop, "copper")["name"], QJsonValue("Copper"));
    QCOMPARE(ValueIn(workshop, "copper", "materialType"), QJsonValue("Cu-DHP"));
    const Run copper = workshop.Zaxmat({"show", "copper"});
    QVERIFY2(copper.out.contains("Plate"), qUtf8Printable(copper.out));
    QCOMPARE(workshop.Zaxmat({"check"}).code, 0);
    QCOMPARE(QDir(workshop.CatalogueFolder()).entryList(QDir::Files | QDir::Hidden), QStringList{"materials.json"});
}

void tst_ZaxmatImport::showsEachRowOfATrialAndWritesNothing()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    const Run run = Import(workshop,
                           "key,name,thickness [mm],density\n"
                           "steel-2,Steel,2.5,7.85\n"
                           "\n"
                           "steel-3,,3,7.85\n"
                           "copper,Copper,1,8.9\n"
                           "tin,,1,\n",
                           {"--dry-run"});
    QCOMPARE(
        Squeezed(run.out),
        (QStringList{"Line  Row  Record  Property  Old  New  Reason  Key",
                     "2  changed  Steel  name  Structural steel  Steel  steel-2",
                     "2  changed  Steel  thickness  2 mm  2.5 mm  steel-2", "4  unchanged  Structural steel  steel-3",
                     "5  added  Copper  copper",
                     "6  rejected  the catalogue has no material of the key \"tin\", and a new one needs a name  tin",
                     "", "Rows added: 1, changed: 1, unchanged: 1, rejected: 1",
                     "Nothing was written, since this is a trial.", ""}));
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
    QCOMPARE(Import(workshop, "key,name\nsteel-2,Steel\n", {"--dry-run"}).code, 0);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatImport::triesWithoutACatalogue()
{
    const Workshop workshop;
    const Run run = Import(workshop, "name,thickness\nSteel,2\n", {"--dry-run"});
    QVERIFY2(run.out.contains("Rows added: 1, changed: 0, unchanged: 0, rejected: 0\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
    QVERIFY(QDir(workshop.CatalogueFolder()).isEmpty());
}

void tst_ZaxmatImport::takesARowWithoutATypeForAMaterial()
{
    const Workshop workshop;
    workshop.WriteCatalogue({});
    QCOMPARE(Import(workshop, "key,name\na,A\n").code, 0);
    QCOMPARE(Import(workshop, "type,key,name,material\n,b,B,\nMaterial,c,C,\nStock Form,d,D,a\n").code, 0);
    QCOMPARE(RecordIn(workshop, "a")["type"], QJsonValue(0));
    QCOMPARE(RecordIn(workshop, "b")["type"], QJsonValue(0));
    QCOMPARE(RecordIn(workshop, "c")["type"], QJsonValue(0));
    QCOMPARE(RecordIn(workshop, "d")["type"], QJsonValue(1));
    QCOMPARE(RecordIn(workshop, "d")["materialKey"], QJsonValue("a"));
}

void tst_ZaxmatImport::readsCells_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<QByteArray>("cell");
    QTest::addColumn<QJsonValue>("value");
    const QString m = "steel-2";
    const QString s = "steel-2-coil";
    QTest::newRow("number") << s << QByteArray("cost") << QByteArray("1e3") << QJsonValue(1000);
    QTest::newRow("length") << m << QByteArray("thickness") << QByteArray(" 2.5 ") << QJsonValue(2.5);
    QTest::newRow("length with its unit") << m << QByteArray("thickness") << QByteArray("1 in") << QJsonValue(25.4);
    QTest::newRow("its unit goes before the column's")
        << m << QByteArray("thickness [cm]") << QByteArray("1 in") << QJsonValue(25.4);
    QTest::newRow("density") << m << QByteArray("density") << QByteArray("2700 kg/m³") << QJsonValue(2.7);
    QTest::newRow("text") << m << QByteArray("comment") << QByteArray("\" a, \"\"b\"\"\n\"")
                          << QJsonValue(" a, \"b\"\n");
    QTest::newRow("digits are a text too") << m << QByteArray("comment") << QByteArray("007") << QJsonValue("007");
    QTest::newRow("yes") << s << QByteArray("isActive") << QByteArray("Yes") << QJsonValue(true);
    QTest::newRow("form") << s << QByteArray("form") << QByteArray("Rectangular") << QJsonValue("Rectangular");
}

void tst_ZaxmatImport::readsCells()
{
    QFETCH(const QString, key);
    QFETCH(const QByteArray, title);
    QFETCH(const QByteArray, cell);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray type = RecordIn(workshop, key)["type"].toInt() == 0 ? "material" : "stock form";
    const Run run = Import(workshop, "type,key," + title + "\n" + type + "," + key.toUtf8() + "," + cell + "\n");
    QVERIFY2(run.out.contains("changed: 1"), qUtf8Printable(run.out));
    const QByteArray property = title.split(' ').first();
    QTEST(ValueIn(workshop, key, property), "value");
}

void tst_ZaxmatImport::anEmptyCellLeavesAValueAlone()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    const Run run = Import(workshop, "key,name,thickness,comment,density\nsteel-2,,,\"\", \n");
    QVERIFY2(run.out.contains("unchanged: 1"), qUtf8Printable(run.out));
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatImport::recognisesSeparatorsAndMarks_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::newRow("comma") << QByteArray("key,thickness\nsteel-2,2.5\n");
    QTest::newRow("semicolon") << QByteArray("key;thickness\nsteel-2;2,5\n");
    QTest::newRow("semicolon and point") << QByteArray("key;thickness\nsteel-2;2.5\n");
    QTest::newRow("tab") << QByteArray("key\tthickness\nsteel-2\t2,5\n");
    QTest::newRow("mark") << QByteArray("\xEF\xBB\xBFkey,thickness\r\nsteel-2,2.5\r\n");
    QTest::newRow("told") << QByteArray("sep=;\r\nkey;thickness\r\nsteel-2;2,5\r\n");
    QTest::newRow("behind the last cell") << QByteArray("key;thickness;;\nsteel-2;2,5;;\n");
    QTest::newRow("behind the last title") << QByteArray("key,thickness,\nsteel-2,2.5\n");
    QTest::newRow("letter case of titles") << QByteArray("Key,thickness,TYPE\nsteel-2,2.5,Material\n");
}

void tst_ZaxmatImport::recognisesSeparatorsAndMarks()
{
    QFETCH(const QByteArray, csv);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    QCOMPARE(Import(workshop, csv).code, 0);
    QCOMPARE(ValueIn(workshop, "steel-2", "thickness"), QJsonValue(2.5));
}

void tst_ZaxmatImport::readsADecimalCommaOnlyWhereCommasDoNotSeparate()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run length = Import(workshop, "key,thickness\nsteel-2,\"2,5\"\n");
    QVERIFY2(length.out.contains("\"2,5\" is no length."), qUtf8Printable(length.out));
    QCOMPARE(length.code, 1);
    const Run cost = Import(workshop, "type,key,cost\nstock form,steel-2-coil,\"2,5\"\n");
    QVERIFY2(cost.out.contains("\"2,5\" is no number."), qUtf8Printable(cost.out));
    QCOMPARE(Import(workshop, "type;key;cost\nstock form;steel-2-coil;2,5\n").code, 0);
    QCOMPARE(ValueIn(workshop, "steel-2-coil", "cost"), QJsonValue(2.5));
    QCOMPARE(Import(workshop, "type;key;cost\nstock form;steel-2-coil;1.234,5\n").code, 1);
}

void tst_ZaxmatImport::refusesNumbersThatMayBeThousands_data()
{
    QTest::addColumn<QByteArray>("cell");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<double>("value");
    const auto row = [](const char* cell, const char* reason, double value = 0) {
        QTest::newRow(cell) << QByteArray(cell) << QString::fromUtf8(reason) << value;
    };
    row("1.080", "cost: \"1.080\" is ambiguous; write 1080 or 1,08.");
    row("12.500", "cost: \"12.500\" is ambiguous; write 12500 or 12,5.");
    row("-1.125", "cost: \"-1.125\" is ambiguous; write -1125 or -1,1250.");
    row("1.000", "cost: \"1.000\" is ambiguous; write 1000 or 1,0.");
    row("1.080,50", "cost: \"1.080,50\" is no number.");
    row("1.080.000", "cost: \"1.080.000\" is no number.");
    row("1,080", "", 1.08);
    row("0.125", "", 0.125);
    row("1.08", "", 1.08);
    row("1.0800", "", 1.08);
    row("1080.500", "", 1080.5);
    row("012.500", "", 12.5);
}

void tst_ZaxmatImport::refusesNumbersThatMayBeThousands()
{
    QFETCH(const QByteArray, cell);
    QFETCH(const QString, reason);
    QFETCH(const double, value);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = Import(workshop, "type;key;cost\nstock form;steel-2-coil;" + cell + "\n", {"--format", "json"});
    QCOMPARE(Rows(run).at(0)["reason"].toString(), reason);
    QCOMPARE(run.code, reason.isEmpty() ? 0 : 1);
    QCOMPARE(ValueIn(workshop, "steel-2-coil", "cost").toDouble(), reason.isEmpty() ? value : 1083.3);
}

void tst_ZaxmatImport::convertsUnits_data()
{
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<QByteArray>("cell");
    QTest::addColumn<double>("value");
    QTest::newRow("millimetres") << QByteArray("thickness [mm]") << QByteArray("0.7") << 0.7;
    QTest::newRow("inches") << QByteArray("thickness [in]") << QByteArray("0.5") << 12.7;
    QTest::newRow("metres") << QByteArray("thickness [m]") << QByteArray("0.0015") << 1.5;
    QTest::newRow("thousandths") << QByteArray("thickness[ µm ]") << QByteArray("700") << 0.7;
    QTest::newRow("kilograms per cubic metre") << QByteArray("density [kg/m³]") << QByteArray("2700") << 2.7;
    QTest::newRow("without a superscript") << QByteArray("density [g/cm3]") << QByteArray("2.7") << 2.7;
}

void tst_ZaxmatImport::convertsUnits()
{
    QFETCH(const QByteArray, title);
    QFETCH(const QByteArray, cell);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    QCOMPARE(Import(workshop, "key," + title + "\nsteel-2," + cell + "\n").code, 0);
    QTEST(ValueIn(workshop, "steel-2", title.split('[').first().trimmed()).toDouble(), "value");
}

void tst_ZaxmatImport::matchesByColumns()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = Import(workshop,
                           "name,thickness [in],density,key\n"
                           "Structural steel,0.11811023622047244,8,other\n"
                           "\"Acrylic, cast\",0.5,1.2,\n"
                           "Structural steel,1,8,steel-2\n",
                           {"--match", "name,thickness"});
    QCOMPARE(run.out, "Rows added: 1, changed: 2, unchanged: 0, rejected: 0\n");
    QCOMPARE(ValueIn(workshop, "steel-3", "density"), QJsonValue(8));
    QCOMPARE(ValueIn(workshop, "acrylic-12.7", "density"), QJsonValue(1.2));
    // What a column says that is the same in another unit is no change.
    QCOMPARE(ValueIn(workshop, "acrylic-12.7", "thickness"), QJsonValue("0.5 in"));
    QCOMPARE(ValueIn(workshop, "steel-2", "density"), QJsonValue(7.85));
    const Run again = workshop.Zaxmat({"import", "--match", "name,thickness", workshop.Path("prices ø.csv")});
    QCOMPARE(again.out, "Rows added: 0, changed: 0, unchanged: 3, rejected: 0\nNothing was to be written.\n");
}

void tst_ZaxmatImport::leavesAloneWhatItMatchesBy()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run =
        Import(workshop, "name,thickness,density\nStructural steel,2.0000000005,8\n", {"--match", "name, thickness"});
    QCOMPARE(run.out, "Rows added: 0, changed: 1, unchanged: 0, rejected: 0\n");
    QCOMPARE(ValueIn(workshop, "steel-2", "thickness"), QJsonValue(2));
    QCOMPARE(ValueIn(workshop, "steel-2", "density"), QJsonValue(8));
    QCOMPARE(Import(workshop, "name,thickness\nCopper,2.0000000005\n", {"--match", "name,thickness"}).code, 0);
    QVERIFY(Workshop::Read(workshop.CatalogueFile()).contains("2.0000000005"));
}

void tst_ZaxmatImport::addsNothingTwice()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    const Run run = Import(workshop,
                           "type,key,name,material,thickness [in],length,width\n"
                           "material,,\"Acrylic, cast\",,0.5,,\n"
                           "material,,\"Acrylic, cast\",,1,,\n"
                           "material,,\"Acrylic, cast\",,1,,\n"
                           "stock form,,Coil,steel-2,,50000,1500\n"
                           "stock form,,Coil,steel-2,,60000,1500\n"
                           "stock form,,Coil,steel-3,,50000,1500\n",
                           {"--format", "json"});
    const QJsonArray rows = Rows(run);
    const auto reason = [&](int row) { return rows.at(row)["reason"].toString(); };
    QCOMPARE(reason(0), "the catalogue has a material of this name and thickness already, under the key "
                        "\"acrylic-12.7\"; give the key, or match rows by --match name,thickness");
    QCOMPARE(rows.at(1)["change"].toString(), "added");
    QCOMPARE(reason(2), "line 3 is about the same record");
    QCOMPARE(reason(3), "the catalogue has a stock form of this name and size already, under the key "
                        "\"steel-2-coil\"; give the key, or match rows by --match name");
    QCOMPARE(rows.at(4)["change"].toString(), "added");
    QCOMPARE(rows.at(5)["change"].toString(), "added");
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
    // A key says which record is meant.
    QCOMPARE(Import(workshop, "key,name,thickness\nsteel-4,Structural steel,2\n").code, 0);
}

void tst_ZaxmatImport::notesMaterialsThatDocumentsCannotTellApart_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("notes");
    const QString note = "zaxmat: note: %1 (%2) are both \"S235JR\" of %3; documents cannot tell them apart.\n";
    QTest::newRow("none") << QByteArray("key,density\nsteel-2,8\n") << QString();
    QTest::newRow("apart") << QByteArray("key,thickness\nsteel-2,2.9985\n") << QString();
    QTest::newRow("changed") << QByteArray("key,thickness\nsteel-2,2.9995\n")
                             << note.arg("\"Structural steel\" and \"Structural steel\"", "steel-3", "2.9995 mm");
    QTest::newRow("new") << QByteArray("name,thickness,materialType\nOther,2,S235JR\n")
                         << note.arg("\"Other\" and \"Structural steel\"", "steel-2", "2 mm");
    QTest::newRow("changed away at the same time") << QByteArray("key,thickness\nsteel-2,3\nsteel-3,2\n") << QString();
    QByteArray many = "key,name,thickness,materialType\n";
    for (const char digit : QByteArray("1234567"))
        many += QByteArray("new-") + digit + ",New " + digit + ",2,S235JR\n";
    QString notes;
    for (const QChar digit : QString("12345"))
        notes += note.arg(QString("\"New %1\" and \"%2\"").arg(digit).arg(digit == '1' ? "New 2" : "New 1"),
                          digit == '1' ? "new-2" : "new-1", "2 mm");
    QTest::newRow("many") << many << notes + "zaxmat: note: so it is with 2 more; \"zaxmat check\" lists them.\n";
}

void tst_ZaxmatImport::notesMaterialsThatDocumentsCannotTellApart()
{
    QFETCH(const QByteArray, csv);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    QTEST(Import(workshop, csv, {"--dry-run"}).err, "notes");
    const Run run = Import(workshop, csv);
    QTEST(run.err, "notes");
    QCOMPARE(run.code, 0);
    workshop.WriteCatalogue(SmallCatalogue());
    QCOMPARE(Import(workshop, csv, {"--quiet"}).err, "");
}

void tst_ZaxmatImport::matchesStockFormsWithinTheirMaterial()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = Import(workshop,
                           "type,material,name,thickness,cost\n"
                           "stock form,steel-3,Sheet small,,50\n"
                           "stock form,steel-3,Coil,,60\n"
                           "stock form,,Coil,,70\n",
                           {"--match", "name,thickness", "--partial"});
    QVERIFY2(run.out.contains("Rows added: 1, changed: 1, unchanged: 0, rejected: 1"), qUtf8Printable(run.out));
    QVERIFY2(run.out.contains("the material of the stock form is missing"), qUtf8Printable(run.out));
    QCOMPARE(ValueIn(workshop, "steel-3-small", "cost"), QJsonValue(50));
    QCOMPARE(ValueIn(workshop, "steel-2-small", "cost"), QJsonValue(31.4));
    QCOMPARE(ValueIn(workshop, "steel-2-coil", "cost"), QJsonValue(1083.3));
}

void tst_ZaxmatImport::findsMaterialsOfStockForms_data()
{
    QTest::addColumn<QByteArray>("material");
    QTest::addColumn<QString>("reason");
    QTest::newRow("key") << QByteArray("steel-3") << QString();
    QTest::newRow("name") << QByteArray("\"Acrylic, cast\"") << QString();
    QTest::newRow("name of several") << QByteArray("Structural steel")
                                     << QString(
                                            "there are 2 materials called \"Structural steel\"; give the key of one");
    QTest::newRow("none") << QByteArray("gold") << QString("there is no material \"gold\"");
    QTest::newRow("key of a stock form") << QByteArray("steel-2-coil")
                                         << QString("there is no material \"steel-2-coil\"");
    QTest::newRow("missing") << QByteArray() << QString("the material of the stock form is missing");
}

void tst_ZaxmatImport::findsMaterialsOfStockForms()
{
    QFETCH(const QByteArray, material);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = Import(workshop, "type,name,material\nstock form,Plate," + material + "\n", {"--format", "json"});
    QTEST(Rows(run).at(0)["reason"].toString(), "reason");
}

void tst_ZaxmatImport::putsAStockFormIntoANewMaterialWhateverTheOrder()
{
    const Workshop workshop;
    workshop.WriteCatalogue({});
    QCOMPARE(Import(workshop, "type,key,name,material\n"
                              "stock form,s,By name,Copper\n"
                              "stock form,t,By key,cu\n"
                              "material,cu,Copper,\n")
                 .code,
             0);
    QCOMPARE(RecordIn(workshop, "s")["materialKey"], QJsonValue("cu"));
    QCOMPARE(RecordIn(workshop, "t")["materialKey"], QJsonValue("cu"));
    const Run run = Import(workshop,
                           "type,key,name,material\n"
                           "material,tin,,\n"
                           "stock form,u,Plate,tin\n",
                           {"--partial", "--format", "json"});
    QCOMPARE(Rows(run).at(1)["reason"].toString(), "there is no material \"tin\"");
}

void tst_ZaxmatImport::rejectsRows_data()
{
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const char* cells, const char* reason) {
        QTest::newRow(name) << QByteArray(cells) << QString::fromUtf8(reason);
    };
    row("unknown type", "coil,,,,,,", "\"coil\" is no type; it must be \"material\" or \"stock form\"");
    row("key of the other type", "material,steel-2-coil,,,,,",
        "the key belongs to a stock form, but the type of the row is \"material\"");
    row("unknown key without name", "stock form,x,,steel-2,,,",
        "the catalogue has no stock form of the key \"x\", and a new one needs a name");
    row("no name", "material,,,,2,,", "a new record needs a name");
    row("key outside ASCII", "material,ø,Name,,2,,", "the key of a new record must not hold letters outside ASCII");
    row("material of a material", "material,steel-2,,steel-3,,,", "a material belongs to no other material");
    row("property of the other type", "material,steel-2,,,,5,", "a material has no property \"cost\"");
    row("property of the other type, a stock form", "stock form,steel-2-coil,,,5,,",
        "a stock form has no property \"thickness\"");
    row("not positive", "material,steel-2,,,0,,", "thickness: The thickness is not a positive non-zero length.");
    row("not positive, a cost", "stock form,steel-2-coil,,,,-1,", "cost: Cost must be a positive, non-zero value.");
    row("not positive, a density", "material,steel-2,,,,,,0", "density: it must be greater than zero");
    row("no number", "stock form,steel-2-coil,,,,dear,", "cost: \"dear\" is no number.");
    row("no truth", "stock form,steel-2-coil,,,,,maybe", "isActive: \"maybe\" is neither true nor false.");
    row("several mistakes", "stock form,steel-2-coil,,,5,dear,",
        "a stock form has no property \"thickness\"; cost: \"dear\" is no number.");
    row("more cells than titles", "material,steel-2,,,,,,,8", "there are more cells than titles");
    row("record twice", "material,steel-3,,,3,,", "line 2 is about the same record");
}

void tst_ZaxmatImport::rejectsRows()
{
    QFETCH(const QByteArray, row);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    const Run run = Import(workshop,
                           "type,key,name,material,thickness,cost,isActive,density\n"
                           "material,steel-3,,,4,,\n" +
                               row + "\n",
                           {"--format", "json"});
    const QJsonArray rows = Rows(run);
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.at(0)["change"].toString(), "changed");
    QCOMPARE(rows.at(1)["change"].toString(), "rejected");
    QCOMPARE(rows.at(1)["line"].toInt(), 3);
    QCOMPARE(rows.at(1)["type"].isNull(), row.startsWith("coil"));
    QTEST(rows.at(1)["reason"].toString(), "reason");
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatImport::aRejectedRowKeepsAllOut()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    const Run run = Import(workshop, "key,thickness\nsteel-2,2.5\nsteel-3,thick\n");
    QVERIFY2(run.out.startsWith("Line  Row       Record"), qUtf8Printable(run.out));
    QVERIFY2(run.out.endsWith("Rows added: 0, changed: 1, unchanged: 0, rejected: 1\n"
                              "Nothing was written. Correct the rejected rows, or leave them out with --partial.\n"),
             qUtf8Printable(run.out));
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatImport::partialImportsTheOthers()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = Import(workshop, "key,thickness\nsteel-2,2.5\nsteel-3,thick\n", {"--partial"});
    QVERIFY2(run.out.endsWith("Rows added: 0, changed: 1, unchanged: 0, rejected: 1\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 1);
    QCOMPARE(ValueIn(workshop, "steel-2", "thickness"), QJsonValue(2.5));
    QCOMPARE(ValueIn(workshop, "steel-3", "thickness"), QJsonValue(3));
}

void tst_ZaxmatImport::refusesTitles_data()
{
    QTest::addColumn<QByteArray>("titles");
    QTest::addColumn<QString>("match");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* titles, const char* match, const char* message) {
        QTest::newRow(name) << QByteArray(titles) << QString(match) << QString(message);
    };
    row("unknown property", "key,thicknes", "key", "Similar: thickness");
    row("unknown extension", "key,Gas.pressure", "key", "No module provides the extension \"Gas\"");
    row("unknown property with a unit", "key,Thickness [mm]", "key", "Similar: thickness");
    row("unit of a text", "key,comment [mm]", "key", "\"comment\" has no unit");
    row("unknown unit", "key,thickness [parsec]", "key", "\"parsec\" is no unit of \"thickness\"");
    row("unit of another quantity", "key,thickness [kg/m³]", "key", "is no unit of \"thickness\"");
    row("title twice", "key,thickness [mm],thickness [in]", "key", "\"thickness\" is there twice");
    row("no title", "key,,thickness", "key", "names no property");
    row("column to match by", "key,thickness", "name", "The file has no column \"name\" to match rows by.");
    row("key and more", "key,name", "key,name", "Rows cannot be matched by \"key\" and something else.");
}

void tst_ZaxmatImport::refusesTitles()
{
    QFETCH(const QByteArray, titles);
    QFETCH(const QString, match);
    QFETCH(const QString, message);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    const Run run = Import(workshop, titles + "\nsteel-2,1,1\n", {"--match", match});
    QCOMPARE(run.out, "");
    QVERIFY2(run.err.contains(message), qUtf8Printable(run.err));
    QCOMPARE(run.code, 2);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatImport::refusesFiles_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("code");
    QTest::newRow("empty") << QByteArray() << QString("The file is empty.") << 2;
    QTest::newRow("no UTF-8") << QByteArray("key,name\nsteel-2,T\xF4le\n")
                              << QString("line 2: this is no UTF-8; save the file as CSV in UTF-8.") << 3;
    QTest::newRow("open quotation mark") << QByteArray("key,name\nsteel-2,\"a\n")
                                         << QString("line 2: a quotation mark of the row that starts here is never "
                                                    "closed.")
                                         << 3;
}

void tst_ZaxmatImport::refusesFiles()
{
    QFETCH(const QByteArray, csv);
    QFETCH(const QString, message);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = Import(workshop, csv);
    QVERIFY2(run.err.contains(message), qUtf8Printable(run.err));
    QTEST(run.code, "code");
    QCOMPARE(workshop.Zaxmat({"import", workshop.Path("nowhere.csv")}).code, 3);
    QCOMPARE(workshop.Zaxmat({"import", workshop.CatalogueFolder()}).code, 3);
    QCOMPARE(workshop.Zaxmat({"import"}).code, 2);
}

void tst_ZaxmatImport::keepsTheBytesOfOtherRecords()
{
    const Workshop workshop;
    workshop.WriteCatalogue(DelicateCatalogue() + SmallCatalogue());
    QByteArray expected = Workshop::Read(workshop.CatalogueFile());
    QCOMPARE(expected.count("7.85,\n                \"materialType\": \"S235JR\",\n                \"thickness\": 3"),
             1);
    expected.replace("7.85,\n                \"materialType\": \"S235JR\",\n                \"thickness\": 3",
                     "7.85,\n                \"materialType\": \"S235JR\",\n                \"thickness\": 3.25");
    QCOMPARE(Import(workshop, "key,thickness\nsteel-3,3.25\n").code, 0);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), expected);
}

void tst_ZaxmatImport::neverWritesToACatalogueThatDoesNotParse()
{
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), "{\"a\": }");
    const Run run = Import(workshop, "key,name\na,A\n");
    QVERIFY2(run.err.contains("is damaged"), qUtf8Printable(run.err));
    QCOMPARE(run.code, 3);
    QCOMPARE(Import(workshop, "key,name\na,A\n", {"--dry-run"}).code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), "{\"a\": }");
}

void tst_ZaxmatImport::makesACatalogueInAFolderThatIsThere()
{
    const Workshop workshop;
    QCOMPARE(Import(workshop, "key,name\na,A\n").code, 0);
    QCOMPARE(RecordIn(workshop, "a")["name"], QJsonValue("A"));
    const Run run = Import(workshop, "key,name\na,A\n", {"--catalogue", workshop.Path("nowhere")});
    QCOMPARE(run.code, 3);
    QVERIFY(!QFile::exists(workshop.Path("nowhere")));
}

void tst_ZaxmatImport::printsJson()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = Import(workshop, "key,thickness\nsteel-2,1 in\nsteel-3,3\n", {"--format", "json"});
    QCOMPARE(Rows(run)[0].toObject(), (QJsonObject{{"line", 2},
                                                   {"change", "changed"},
                                                   {"type", "material"},
                                                   {"name", "Structural steel"},
                                                   {"property", "thickness"},
                                                   {"old", 2},
                                                   {"new", 25.4},
                                                   {"reason", ""},
                                                   {"key", "steel-2"}}));
    QCOMPARE(Rows(run)[1].toObject()["change"], QJsonValue("unchanged"));
}

void tst_ZaxmatImport::keepsWhatAnUnknownModuleStored()
{
    const Workshop workshop;
    QList<QJsonObject> records = SmallCatalogue();
    QJsonObject properties = records[0]["properties"].toObject();
    properties["Gas"] = QJsonObject{{"pressure", 12.5}, {"name", "N2"}};
    records[0]["properties"] = properties;
    workshop.WriteCatalogue(records);
    QCOMPARE(Import(workshop, "key,Gas.pressure,Gas.name\nsteel-2,13,O2\nsteel-3,7,5\n").code, 0);
    QCOMPARE(RecordIn(workshop, "steel-2").value("properties")["Gas"].toObject(),
             (QJsonObject{{"pressure", 13}, {"name", "O2"}}));
    QCOMPARE(RecordIn(workshop, "steel-3").value("properties")["Gas"]["pressure"], QJsonValue(7));
    const Run run = Import(workshop, "key,Gas.pressure\nsteel-2,high\n");
    QVERIFY2(run.out.contains("Gas.pressure: \"high\" is no number."), qUtf8Printable(run.out));
}

QTEST_GUILESS_MAIN(tst_ZaxmatImport)
#include "tst_ZaxmatImport.moc"
