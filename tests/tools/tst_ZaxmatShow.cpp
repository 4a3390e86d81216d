#include "Workshop.h"

#include <QTest>

class tst_ZaxmatShow : public QObject
{
    Q_OBJECT

private slots:
    void showsAMaterialWithItsStockForms();
    void showsAMaterialWithoutStockForms();
    void showsAllMaterialsOfAName_data();
    void showsAllMaterialsOfAName();
    void showsAStockForm();
    void showsStockFormsOfAName();
    void showsAllDefinedProperties();
    void showsUnknownExtensionsAndPropertiesAsTheyAre();
    void aKeyGoesBeforeANameAndANameBeforeAType();
    void unknownNamesAreRefused_data();
    void unknownNamesAreRefused();
    void showsAtMostTenSimilarMaterials();
};

namespace {

/// The lines of \a text that start with one of \a words.
QStringList Lines(const QString& text, const QString& word)
{
    QStringList lines;
    for (const QString& line : text.split('\n'))
        lines.append(line.startsWith(word) ? QStringList{line.simplified()} : QStringList());
    return lines;
}

} // namespace

void tst_ZaxmatShow::showsAMaterialWithItsStockForms()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"show", "steel-2"});
    QCOMPARE(run.out, "Structural steel, 2 mm\n"
                      "Key            steel-2\n"
                      "Material Type  S235JR\n"
                      "Thickness      2 mm\n"
                      "Category       Metal\n"
                      "Density        7.85 g/cm³\n"
                      "Comment        EN 10025-2\n"
                      "\n"
                      "Stock form   Form           Length    Width    Cost  Active  Comment  Key\n"
                      "-----------  -----------  --------  -------  ------  ------  -------  -------------\n"
                      "Coil         Roll         50000 mm  1500 mm  1083.3  no               steel-2-coil\n"
                      "Sheet large  Rectangular   3000 mm  1500 mm   70.65  yes              steel-2-large\n"
                      "Sheet small  Rectangular   2000 mm  1000 mm    31.4  no               steel-2-small\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatShow::showsAMaterialWithoutStockForms()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"show", "Acrylic, cast"});
    QCOMPARE(run.out, "Acrylic, cast, 12.7 mm\n"
                      "Key            acrylic-12.7\n"
                      "Material Type  PMMA\n"
                      "Thickness      12.7 mm\n"
                      "Category       Plastic\n"
                      "Density        1.19 g/cm³\n"
                      "\n"
                      "No stock forms.\n");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatShow::showsAllMaterialsOfAName_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("name") << "Structural steel";
    QTest::newRow("type") << "S235JR";
}

void tst_ZaxmatShow::showsAllMaterialsOfAName()
{
    QFETCH(QString, text);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"show", text});
    QCOMPARE(Lines(run.out, "Structural"), (QStringList{"Structural steel, 2 mm", "Structural steel, 3 mm"}));
    QCOMPARE(Lines(run.out, "Key"), (QStringList{"Key steel-2", "Key steel-3"}));
    QCOMPARE(Lines(run.out, "Sheet").size(), 3);
    QVERIFY2(run.out.contains("steel-2-small\n\nStructural steel, 3 mm\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatShow::showsAStockForm()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"show", "steel-2-coil"});
    QCOMPARE(run.out, "Coil of Structural steel, 2 mm\n"
                      "Key        steel-2-coil\n"
                      "Length     50000 mm\n"
                      "Width      1500 mm\n"
                      "Form       Roll\n"
                      "Cost       1083.3\n"
                      "Comment\n"
                      "Is Active  no\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatShow::showsStockFormsOfAName()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"show", "Sheet small"});
    QCOMPARE(Lines(run.out, "Sheet"),
             (QStringList{"Sheet small of Structural steel, 2 mm", "Sheet small of Structural steel, 3 mm"}));
    QCOMPARE(Lines(run.out, "Key"), (QStringList{"Key steel-2-small", "Key steel-3-small"}));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatShow::showsAllDefinedProperties()
{
    const Workshop workshop;
    workshop.WriteCatalogue({Material("1", "All",
                                      {{"comment", "c"},
                                       {"isMaterialIdCustomized", true},
                                       {"materialExtensions", QJsonValue()},
                                       {"density", QJsonValue()},
                                       {"category", ""},
                                       {"thickness", 1000000},
                                       {"materialType", "T"},
                                       {"materialId", "ID"}})});
    QCOMPARE(workshop.Zaxmat({"show", "All"}).out, "All, 1000000 mm\n"
                                                   "Key                        1\n"
                                                   "Material ID                ID\n"
                                                   "Is Material ID Customized  yes\n"
                                                   "Material Type              T\n"
                                                   "Thickness                  1000000 mm\n"
                                                   "Category\n"
                                                   "Density                    -\n"
                                                   "Comment                    c\n"
                                                   "Material Extensions        -\n"
                                                   "\n"
                                                   "No stock forms.\n");
}

void tst_ZaxmatShow::showsUnknownExtensionsAndPropertiesAsTheyAre()
{
    const Workshop workshop;
    QJsonObject record = Material("1", "Strange", {{"zebra", 1}, {"ant", 0.1}, {"materialType", "T"}});
    QJsonObject properties = record["properties"].toObject();
    properties["UnknownExtension"] = QJsonObject{{"b", true}, {"a", QJsonArray{1, "x"}}};
    record["properties"] = properties;
    workshop.WriteCatalogue({record});
    const Run run = workshop.Zaxmat({"show", "Strange"});
    QCOMPARE(run.out, "Strange\n"
                      "Key                 1\n"
                      "Material Type       T\n"
                      "ant                 0.1\n"
                      "zebra               1\n"
                      "UnknownExtension.a  [1,\"x\"]\n"
                      "UnknownExtension.b  true\n"
                      "\n"
                      "No stock forms.\n");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatShow::aKeyGoesBeforeANameAndANameBeforeAType()
{
    const Workshop workshop;
    workshop.WriteCatalogue({Material("A", "B", {{"materialType", "C"}}), Material("B", "C", {{"materialType", "A"}}),
                             Material("D", "A", {{"materialType", "E"}}), StockForm("E", "A", "D", {})});
    const auto keys = [&](const QString& text) { return Lines(workshop.Zaxmat({"show", text}).out, "Key "); };
    QCOMPARE(keys("A"), QStringList{"Key A"});
    QCOMPARE(keys("B"), QStringList{"Key B"});
    QCOMPARE(keys("C"), QStringList{"Key B"});
    QCOMPARE(keys("D"), QStringList{"Key D"});
    QCOMPARE(keys("E"), QStringList{"Key D"});
}

void tst_ZaxmatShow::unknownNamesAreRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("help");
    const QString steels = "Similar:\n  Structural steel, 2 mm  steel-2\n  Structural steel, 3 mm  steel-3\n";
    QTest::newRow("unknown") << "Unobtainium"
                             << "\"zaxmat list\" shows all materials.\n";
    QTest::newRow("a part of a name") << "steel" << steels;
    QTest::newRow("a type in small letters") << "s235jr" << steels;
    QTest::newRow("with a space behind") << "S235JR "
                                         << "\"zaxmat list\" shows all materials.\n";
}

void tst_ZaxmatShow::unknownNamesAreRefused()
{
    QFETCH(QString, text);
    QFETCH(QString, help);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"show", text});
    QCOMPARE(run.err, "zaxmat: The catalogue \"" + workshop.CatalogueFile() + "\" has no \"" + text + "\".\n" + help);
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 2);
}

void tst_ZaxmatShow::showsAtMostTenSimilarMaterials()
{
    const Workshop workshop;
    QList<QJsonObject> records;
    for (int i = 10; i <= 20; ++i)
        records.append(Material(QString::number(i), "Steel " + QString::number(i), {}));
    workshop.WriteCatalogue(records);
    const Run run = workshop.Zaxmat({"show", "Steel"});
    QVERIFY2(run.err.endsWith("\n  Steel 19  19\n\"zaxmat list\" shows all materials.\n"), qUtf8Printable(run.err));
}

QTEST_GUILESS_MAIN(tst_ZaxmatShow)
#include "tst_ZaxmatShow.moc"
