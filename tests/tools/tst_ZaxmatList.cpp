#include "Workshop.h"

#include <QJsonDocument>
#include <QTest>

class tst_ZaxmatList : public QObject
{
    Q_OBJECT

private slots:
    void printsATableOfTheMaterials();
    void sortsByNameThenThickness();
    void showsMissingAndOddValuesAsTheyAre();
    void keepsColumnsInLineWhateverTheLetters();
    void makesControlCharactersVisible();
    void leavesTheCatalogueAlone();
    void listsTheExampleCatalogue();
};

namespace {

/// The first column of the rows of the table that \a run printed.
QStringList Names(const Run& run)
{
    QStringList names;
    const QStringList lines = run.out.split('\n');
    for (const QString& line : lines.mid(2, lines.indexOf("") - 2))
        names.append(line.section("  ", 0, 0));
    return names;
}

} // namespace

void tst_ZaxmatList::printsATableOfTheMaterials()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"list"});
    QCOMPARE(run.out, "Name              Type    Category  Thickness     Density  Stock forms\n"
                      "----------------  ------  --------  ---------  ----------  -----------\n"
                      "Acrylic, cast     PMMA    Plastic     12.7 mm  1.19 g/cm³            0\n"
                      "Structural steel  S235JR  Metal          2 mm  7.85 g/cm³            3\n"
                      "Structural steel  S235JR  Metal          3 mm  7.85 g/cm³            1\n"
                      "\n"
                      "Catalogue \"" +
                          workshop.CatalogueFile() + "\": materials: 3, stock forms: 4\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatList::sortsByNameThenThickness()
{
    const Workshop workshop;
    workshop.WriteCatalogue({Material("1", "steel 10", {{"thickness", 10}}), Material("2", "Zinc", {{"thickness", 1}}),
                             Material("3", "steel", {{"thickness", 10}}), Material("4", "Steel", {{"thickness", 9}}),
                             Material("5", "steel", {{"thickness", "0.3 in"}}), Material("6", "steel", {}),
                             Material("7", "Brass", {{"thickness", 3}})});
    const QString list = workshop.Zaxmat({"list"}).out;
    QStringList order;
    for (const QString& line : list.split('\n').mid(2, 7))
        order.append(line.simplified().section(" - - ", 0, 0) + "|" + line.simplified().section(" - - ", 1, 1));
    QCOMPARE(order, (QStringList{"Brass|3 mm - 0", "Steel|9 mm - 0", "steel|- - 0", "steel|7.62 mm - 0",
                                 "steel|10 mm - 0", "steel 10|10 mm - 0", "Zinc|1 mm - 0"}));
}

void tst_ZaxmatList::showsMissingAndOddValuesAsTheyAre()
{
    const Workshop workshop;
    workshop.WriteCatalogue(
        {Material("1", "Odd", {{"materialType", 5}, {"thickness", "thick"}, {"density", QJsonArray{1}}}),
         Material("2", "Undefined", {}),
         Material("3", "Valueless", {{"thickness", QJsonValue()}, {"category", QJsonValue()}})});
    const Run run = workshop.Zaxmat({"list"});
    const QStringList lines = run.out.split('\n');
    QCOMPARE(lines[2], "Odd        5     -             thick      [1]            0");
    QCOMPARE(lines[3], "Undefined  -     -                 -        -            0");
    QCOMPARE(lines[4], "Valueless  -     -                 -        -            0");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatList::keepsColumnsInLineWhateverTheLetters()
{
    const Workshop workshop;
    workshop.WriteCatalogue(
        {Material("1", "Tôle", {{"materialType", "a"}}),
         Material("2", QString::fromUcs4(U"Tole with \U0001D400 e\u0301"), {{"materialType", "b"}})});
    const QStringList lines = workshop.Zaxmat({"list"}).out.split('\n');
    QCOMPARE(lines[1].section("  ", 0, 0), QString(13, '-'));
    QCOMPARE(Names({0, lines.join('\n'), ""}),
             (QStringList{QString::fromUcs4(U"Tole with \U0001D400 e\u0301"), "Tôle"}));
}

void tst_ZaxmatList::makesControlCharactersVisible()
{
    const Workshop workshop;
    workshop.WriteCatalogue({Material("1", "Red\u001b[31m\nsecond line", {})});
    const QStringList lines = workshop.Zaxmat({"list"}).out.split('\n');
    QVERIFY2(lines[2].startsWith("Red\uFFFD[31m\uFFFDsecond line  "), qUtf8Printable(lines[2]));
}

void tst_ZaxmatList::leavesTheCatalogueAlone()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    QCOMPARE(workshop.Zaxmat({"list"}).code, 0);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatList::listsTheExampleCatalogue()
{
    const QString folder = ZAX_EXAMPLES "/catalogue";
    const QJsonObject root = QJsonDocument::fromJson(Workshop::Read(folder + "/materials.json")).object();
    const auto materials = std::ranges::count_if(root, [](const QJsonValue& record) { return record["type"] == 0; });
    QVERIFY(materials > 0);
    const Run run = Workshop().Zaxmat({"list", "--catalogue", folder});
    QCOMPARE(Names(run).size(), materials);
    QVERIFY2(run.out.endsWith(QString("/materials.json\": materials: %1, stock forms: %2\n")
                                  .arg(QString::number(materials), QString::number(root.size() - materials))),
             qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
}

QTEST_GUILESS_MAIN(tst_ZaxmatList)
#include "tst_ZaxmatList.moc"
