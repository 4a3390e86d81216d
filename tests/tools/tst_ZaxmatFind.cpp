#include "Workshop.h"

#include <QJsonDocument>
#include <QTest>

class tst_ZaxmatFind : public QObject
{
    Q_OBJECT

private slots:
    void findsByValues_data();
    void findsByValues();
    void printsATable();
    void printsJson();
    void looksIntoExtensions();
    void wrongUsageIsRefused_data();
    void wrongUsageIsRefused();
    void leavesTheCatalogueAlone();
};

namespace {

QString Keys(const Run& run)
{
    QStringList keys;
    const QJsonArray records = QJsonDocument::fromJson(run.out.toUtf8()).array();
    for (const QJsonValue& record : records)
        keys.append(record["key"].toString());
    return keys.join(' ');
}

} // namespace

void tst_ZaxmatFind::findsByValues_data()
{
    QTest::addColumn<QStringList>("criteria");
    QTest::addColumn<QString>("keys");
    const auto row = [](const char* name, const QStringList& criteria, const QString& keys) {
        QTest::newRow(name) << criteria << keys;
    };
    row("a length", {"thickness=2mm"}, "steel-2");
    row("a length in inches", {"thickness=0.5 in"}, "acrylic-12.7");
    row("a length that a text holds", {"thickness=12.7"}, "acrylic-12.7");
    row("within a thousandth", {"thickness=2.0009"}, "steel-2");
    row("not within a thousandth", {"thickness=2.0011"}, "");
    row("both", {"thickness=2mm", "materialType=S235JR"}, "steel-2");
    row("one fits, one does not", {"thickness=2mm", "materialType=PMMA"}, "");
    row("a range", {"thickness=1..3"}, "steel-2 steel-3");
    row("a range with units", {"thickness=0.2 cm..0.5in"}, "acrylic-12.7 steel-2 steel-3");
    row("a range with one unit for both", {"thickness=0.4..0.6 in"}, "acrylic-12.7");
    row("from with a unit", {"thickness=0.4 in.."}, "acrylic-12.7");
    row("from", {"thickness=3.."}, "acrylic-12.7 steel-3");
    row("up to", {"thickness=..2"}, "steel-2");
    row("a range of numbers", {"cost=31..48"}, "steel-2-small steel-3-small");
    row("decimal comma", {"cost=47,1"}, "steel-3-small");
    row("density with a unit", {"density=1190 kg/m³"}, "acrylic-12.7");
    row("a boolean", {"isActive=yes"}, "steel-2-large steel-3-small");
    row("an enumerator", {"form=Roll"}, "steel-2-coil");
    row("a text, letter case aside", {"materialType=s235jr"}, "steel-2 steel-3");
    row("wildcards", {"name=*steel*"}, "steel-2 steel-3");
    row("one letter", {"name=Coi?"}, "steel-2-coil");
    row("no wildcard, no part", {"name=steel"}, "");
    row("letters that patterns mean something by", {"name=Acrylic, .*"}, "");
    row("without a comment", {"comment="}, "acrylic-12.7 steel-2-coil steel-2-large steel-2-small steel-3-small");
    row("by key", {"key=steel-3-small"}, "steel-3-small");
    row("by material", {"materialKey=steel-2", "isActive=no"}, "steel-2-coil steel-2-small");
}

void tst_ZaxmatFind::findsByValues()
{
    QFETCH(QStringList, criteria);
    QFETCH(QString, keys);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat(QStringList{"find", "--format", "json"} + criteria);
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
    QCOMPARE(Keys(run), keys);
}

void tst_ZaxmatFind::printsATable()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"find", "thickness=2..13", "name=*", "--unit", "in"});
    QCOMPARE(run.out, "Record    Name              thickness        Key\n"
                      "--------  ----------------  ---------------  ------------\n"
                      "material  Acrylic, cast     0.5 in           acrylic-12.7\n"
                      "material  Structural steel  0.0787401575 in  steel-2\n"
                      "material  Structural steel  0.118110236 in   steel-3\n"
                      "\n"
                      "Found: materials: 3, stock forms: 0\n");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatFind::printsJson()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"find", "form=Roll", "cost=1000..", "--format", "json", "--unit", "in"});
    QCOMPARE(
        QJsonDocument::fromJson(run.out.toUtf8()).array(),
        (QJsonArray{QJsonObject{
            {"type", "stock form"}, {"key", "steel-2-coil"}, {"name", "Coil"}, {"form", "Roll"}, {"cost", 1083.3}}}));
}

void tst_ZaxmatFind::looksIntoExtensions()
{
    const Workshop workshop;
    QJsonObject record = Material("1", "One", {{"thickness", 2}});
    record["properties"] =
        QJsonObject{{"", QJsonObject{{"thickness", 2}}}, {"Gas", QJsonObject{{"pressure", 12}, {"gas", "Argon"}}}};
    workshop.WriteCatalogue({record, Material("2", "Two", {{"thickness", 2}, {"pressure", 12}})});
    const auto keys = [&](const QStringList& arguments) {
        return Keys(workshop.Zaxmat(QStringList{"find", "--format", "json"} + arguments));
    };
    QCOMPARE(keys({"Gas.pressure=10..12"}), "1");
    QCOMPARE(keys({"Gas.gas=arg*"}), "1");
    QCOMPARE(keys({"pressure=12"}), "2");
    QCOMPARE(keys({"--extension", "Gas"}), "1");
    QCOMPARE(keys({"--extension", "Gas", "pressure=12"}), "1");
    QCOMPARE(keys({"--extension", "Gas", "thickness=2"}), "1");
    QCOMPARE(keys({"--extension", "Oil"}), "");
    QCOMPARE(keys({"thickness=2"}), "1 2");
}

void tst_ZaxmatFind::wrongUsageIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("nothing") << QStringList{}
                             << "Say what to look for: thickness=2, \"name=*steel*\", or --extension CLASS.";
    QTest::newRow("no value") << QStringList{"thickness"} << "\"thickness\" is no property=value.";
    QTest::newRow("no number") << QStringList{"thickness=thick"}
                               << "thickness: \"thick\" is no number and no range of numbers. Write 2, \"0.5 in\", "
                                  "1..3, 1.. or ..3.";
    QTest::newRow("no range") << QStringList{"cost=1..x"}
                              << "cost: \"1..x\" is no number and no range of numbers. Write 2, \"0.5 in\", 1..3, 1.. "
                                 "or ..3.";
    QTest::newRow("nothing between") << QStringList{"thickness=3..1"}
                                     << "thickness: there is nothing in \"3..1\": its first bound is the larger one.";
    QTest::newRow("nothing between with a unit")
        << QStringList{"thickness=3..0.1 in"}
        << "thickness: there is nothing in \"3..0.1 in\": its first bound is the larger one.";
    QTest::newRow("perhaps thousands") << QStringList{"length=2..1,250"}
                                       << "length: \"1,250\" is ambiguous; write 1250 or 1.25.";
    QTest::newRow("no boolean") << QStringList{"isActive=2"} << "isActive: \"2\" is neither true nor false.";
}

void tst_ZaxmatFind::wrongUsageIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat(QStringList{"find"} + arguments);
    QCOMPARE(run.err, "zaxmat: " + message + '\n');
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 2);
    const Run unknown = workshop.Zaxmat({"find", "thicknes=2"});
    QCOMPARE(unknown.err, "zaxmat: No record of the catalogue \"" + workshop.CatalogueFile() +
                              "\" has a property \"thicknes\", and no class declares one.\n");
    QCOMPARE(unknown.code, 2);
}

void tst_ZaxmatFind::leavesTheCatalogueAlone()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    QCOMPARE(workshop.Zaxmat({"find", "name=*"}).code, 0);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

QTEST_GUILESS_MAIN(tst_ZaxmatFind)
#include "tst_ZaxmatFind.moc"
