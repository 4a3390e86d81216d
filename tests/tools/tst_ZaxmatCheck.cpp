#include "Workshop.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

class tst_ZaxmatCheck : public QObject
{
    Q_OBJECT

private slots:
    void findsNothingInAGoodCatalogue();
    void findsNothingInTheExampleCatalogue();
    void findsMistakes_data();
    void findsMistakes();
    void acceptsWhatIsRight_data();
    void acceptsWhatIsRight();
    void showsTheFirstMistakeOfATextThatIsNoJson_data();
    void showsTheFirstMistakeOfATextThatIsNoJson();
    void countsColumnsAsEditorsDo();
    void writesNothingWithoutFix();
    void fixesOnlyWhatIsSafe();
    void keepsACopyOfEveryTextThatItMends();
    void leavesTheFileAloneWhenNothingCanBeMended();
    void mendsSyntax_data();
    void mendsSyntax();
    void refusesToMendWhatMayBeLost_data();
    void refusesToMendWhatMayBeLost();
    void printsJsonAndCsv();
    void saysWhatItCannotJudge();
    void failsWithoutAFile();
    void failsWhereNoCopyCanBeKept();
    void waitsForNobodyButIsLockedWhileFixing();
};

namespace {

QByteArray Record(const QByteArray& key, const QByteArray& rest)
{
    return "\"" + key + "\": {\"key\": \"" + key + "\", \"name\": \"" + key + "\", " + rest + "}";
}

QByteArray MaterialText(const QByteArray& key, const QByteArray& base)
{
    return Record(key, "\"materialKey\": \"\", \"type\": 0, \"properties\": {\"\": {" + base + "}}");
}

QByteArray StockFormText(const QByteArray& key, const QByteArray& base, const QByteArray& materialKey = "m")
{
    return Record(key, "\"materialKey\": \"" + materialKey + "\", \"type\": 1, \"properties\": {\"\": {" + base + "}}");
}

/// A catalogue that has the material "m" in its first line and \a second in the second one.
QByteArray CatalogueText(const QByteArray& second)
{
    return "{" + MaterialText("m", "\"materialType\": \"S\", \"thickness\": 2") + (second.isEmpty() ? "" : ",\n") +
           second + "}";
}

QJsonArray Findings(const Run& run)
{
    return QJsonDocument::fromJson(run.out.toUtf8()).array();
}

QStringList Copies(const Workshop& workshop)
{
    return QDir(workshop.CatalogueFolder()).entryList({"*.bak*"}, QDir::Files, QDir::Name);
}

} // namespace

void tst_ZaxmatCheck::findsNothingInAGoodCatalogue()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"check"});
    QCOMPARE(run.out, "The catalogue \"" + workshop.CatalogueFile() + "\" is in order.\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
    QCOMPARE(workshop.Zaxmat({"check", "--quiet"}).out, "");
}

void tst_ZaxmatCheck::findsNothingInTheExampleCatalogue()
{
    const Run run = Workshop().Zaxmat({"check", "--catalogue", ZAX_EXAMPLES "/catalogue"});
    QVERIFY2(run.out.endsWith("is in order.\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatCheck::findsMistakes_data()
{
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QString>("problem");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("isFixable");
    const auto row = [](const char* name, const QByteArray& second, const char* problem, const char* property,
                        const char* message, bool isFixable) {
        QTest::newRow(name) << second << QString(problem) << QString(property) << QString::fromUtf8(message)
                            << isFixable;
    };
    row("key of another record", MaterialText("m", "\"thickness\": 3"), "duplicate-key", "",
        "the record has the key of another one, in line 1", false);
    row("record twice", MaterialText("m", "\"materialType\": \"S\", \"thickness\": 2"), "duplicate-key", "",
        "the record repeats the one in line 1", true);
    row("member twice", StockFormText("s", "\"cost\": 1, \"cost\": 1"), "duplicate-member", "",
        "\"cost\" repeats the member in line 2", true);
    row("member twice, two values", StockFormText("s", "\"cost\": 1, \"cost\": 2"), "duplicate-member", "",
        "\"cost\" is there twice with different values, first in line 2", false);
    row("name of the member", "\"x\": {\"key\": \"y\", \"name\": \"\", \"type\": 0, \"properties\": {}}", "member-name",
        "", "the member is named \"x\", but the key of its record is \"y\"", true);
    row("stock form of no material", StockFormText("s", "", "nowhere"), "no-material", "",
        "the stock form belongs to the material \"nowhere\", which there is not", false);
    row("stock form of a stock form", StockFormText("s", "", "s"), "no-material", "",
        "the stock form belongs to the material \"s\", which there is not", false);
    row("stock form without material", StockFormText("s", "", ""), "no-material", "",
        "the stock form belongs to no material", false);
    row("unknown type", Record("x", "\"type\": 7, \"properties\": {}"), "unknown-type", "",
        "the type is 7, but must be 0 for a material or 1 for a stock form", false);
    row("type that is no number", Record("x", "\"type\": \"0\", \"properties\": {}"), "unknown-type", "",
        "the type is \"0\", but must be 0 for a material or 1 for a stock form", false);
    row("no type", Record("x", "\"properties\": {}"), "unknown-type", "",
        "the record has no type; it must be 0 for a material or 1 for a stock form", false);
    row("unknown property", MaterialText("x", "\"colour\": \"red\""), "unknown-property", "colour",
        "there is no property \"colour\"", false);
    row("unknown property without value", MaterialText("x", "\"colour\": null"), "unknown-property", "colour",
        "there is no property \"colour\"", true);
    row("property of stock forms", MaterialText("x", "\"cost\": 1"), "unknown-property", "cost",
        "there is no property \"cost\"", false);
    row("text for a length", MaterialText("x", "\"thickness\": \"thick\""), "wrong-kind", "thickness",
        "thickness is \"thick\", but must be a length", false);
    row("unit of another quantity", MaterialText("x", "\"thickness\": \"2 kg/m³\""), "wrong-kind", "thickness",
        "thickness is \"2 kg/m³\", but must be a length", false);
    row("truth for a density", MaterialText("x", "\"density\": true"), "wrong-kind", "density",
        "density is true, but must be a density", false);
    row("number for a text", MaterialText("x", "\"materialType\": 5"), "wrong-kind", "materialType",
        "materialType is 5, but must be a text", true);
    row("list for a text", MaterialText("x", "\"comment\": [1]"), "wrong-kind", "comment",
        "comment is a list, but must be a text", false);
    row("text for a number", StockFormText("s", "\"cost\": \"12.5\""), "wrong-kind", "cost",
        "cost is \"12.5\", but must be a number", true);
    row("words for a number", StockFormText("s", "\"cost\": \"dear\""), "wrong-kind", "cost",
        "cost is \"dear\", but must be a number", false);
    row("text for a truth", StockFormText("s", "\"isActive\": \"true\""), "wrong-kind", "isActive",
        "isActive is \"true\", but must be true or false", true);
    row("number for a truth", StockFormText("s", "\"isActive\": 1"), "wrong-kind", "isActive",
        "isActive is 1, but must be true or false", false);
    row("unknown form", StockFormText("s", "\"form\": \"Ball\""), "wrong-kind", "form",
        "form is \"Ball\", but must be one of its names", false);
    row("number of no form", StockFormText("s", "\"form\": 2"), "wrong-kind", "form",
        "form is 2, but must be one of its names", false);
    row("name that is no text", "\"x\": {\"key\": \"x\", \"name\": 5, \"type\": 0, \"properties\": {}}", "wrong-kind",
        "", "\"name\" is 5, but must be a text", false);
    row("properties that are no object", Record("x", "\"type\": 0, \"properties\": []"), "wrong-kind", "",
        "the properties are a list, but must be an object", false);
    row("extension that is no object", Record("x", "\"type\": 0, \"properties\": {\"\": 1}"), "wrong-kind", "",
        "the properties under \"\" are 1, but must be an object", false);
    row("thickness of zero", MaterialText("x", "\"thickness\": 0"), "not-positive", "thickness",
        "thickness is 0, but it must be at least 0.001 mm", false);
    row("thickness just too small", MaterialText("x", "\"thickness\": 0.000999"), "not-positive", "thickness",
        "thickness is 0.000999, but it must be at least 0.001 mm", false);
    row("negative thickness with a unit", MaterialText("x", "\"thickness\": \"-1 in\""), "not-positive", "thickness",
        "thickness is \"-1 in\", but it must be at least 0.001 mm", false);
    row("density of zero", MaterialText("x", "\"density\": 0"), "not-positive", "density",
        "density is 0, but it must be greater than zero", false);
    row("width of zero", StockFormText("s", "\"width\": 0"), "not-positive", "width",
        "width is 0, but it must be at least 0.001 mm", false);
    row("negative cost", StockFormText("s", "\"cost\": -1"), "not-positive", "cost",
        "cost is -1, but it must be at least 0.001", false);
    row("same type and thickness", MaterialText("x", "\"materialType\": \"S\", \"thickness\": 2.0005"), "same-material",
        "", "S of 2.0005 mm is also the material \"m\", in line 1", false);
    row("same thickness in another unit", MaterialText("x", "\"materialType\": \"S\", \"thickness\": \"0.2 cm\""),
        "same-material", "", "S of 2 mm is also the material \"m\", in line 1", false);
    row("no record", "\"x\": 5", "no-record", "", "5 is no record, and is dropped by readers", false);
    row("no key", "\"x\": {\"name\": \"x\", \"type\": 0, \"properties\": {}}", "no-key", "",
        "the record has no key, and is dropped by readers", false);
    row("key outside ASCII", Record("ø", "\"type\": 0, \"properties\": {}"), "key-letters", "",
        "the key \"ø\" holds letters outside ASCII, and is lost when the application writes the catalogue", false);
    row("unknown member", Record("x", "\"type\": 0, \"properties\": {}, \"note\": 1"), "unknown-member", "",
        "a record has no member \"note\"; the application drops it when it writes the catalogue", false);
}

void tst_ZaxmatCheck::findsMistakes()
{
    QFETCH(const QByteArray, second);
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), CatalogueText(second));
    const Run run = workshop.Zaxmat({"check", "--format", "json"});
    const QJsonArray findings = Findings(run);
    QCOMPARE(findings.size(), 1);
    QTEST(findings[0]["problem"].toString(), "problem");
    QTEST(findings[0]["property"].toString(), "property");
    QTEST(findings[0]["message"].toString(), "message");
    QTEST(findings[0]["isFixable"].toBool(), "isFixable");
    QCOMPARE(findings[0]["line"].toInt(), 2);
    QVERIFY(findings[0]["column"].toInt() > 0);
    QCOMPARE(run.code, 1);
}

void tst_ZaxmatCheck::acceptsWhatIsRight_data()
{
    QTest::addColumn<QByteArray>("second");
    QTest::newRow("lengths with units") << StockFormText("s", "\"length\": \"0.5 in\", \"width\": \"1,5 m\"");
    QTest::newRow("missing values") << StockFormText("s", "\"length\": null, \"form\": null, \"cost\": null");
    QTest::newRow("form by name") << StockFormText("s", "\"form\": \"Roll\"");
    QTest::newRow("form by number") << StockFormText("s", "\"form\": 1");
    QTest::newRow("least values") << StockFormText("s", "\"length\": 0.001, \"width\": 0.001, \"cost\": 0.001");
    QTest::newRow("same type, other thickness") << MaterialText("x", "\"materialType\": \"S\", \"thickness\": 2.0011");
    QTest::newRow("same thickness, other type") << MaterialText("x", "\"materialType\": \"s\", \"thickness\": 2");
    QTest::newRow("materials without type")
        << MaterialText("x", "\"thickness\": 3") + "," + MaterialText("y", "\"thickness\": 3");
    QTest::newRow("two stock forms alike")
        << StockFormText("s", "\"cost\": 1") + "," + StockFormText("t", "\"cost\": 1");
}

void tst_ZaxmatCheck::acceptsWhatIsRight()
{
    QFETCH(const QByteArray, second);
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), CatalogueText(second));
    const Run run = workshop.Zaxmat({"check"});
    QVERIFY2(run.out.endsWith("is in order.\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatCheck::showsTheFirstMistakeOfATextThatIsNoJson_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing value") << QByteArray("{\n  \"a\": ,\n  \"b\": }") << 2 << 8
                                   << QString("a value is missing, or is none");
    QTest::newRow("comma at the end") << QByteArray("{\"a\": 1,}") << 1 << 9
                                      << QString("a comma stands before a closing bracket");
    QTest::newRow("missing colon") << QByteArray("{\"a\" 1}") << 1 << 6
                                   << QString("a colon is missing behind the name of a member");
    QTest::newRow("missing comma") << QByteArray("{\"a\": 1\n\"b\": 2}") << 2 << 1
                                   << QString("a comma or a closing brace is missing");
    QTest::newRow("missing brace") << QByteArray("{\"a\": {}") << 1 << 9
                                   << QString("a comma or a closing brace is missing");
    QTest::newRow("open text") << QByteArray("{\"a\": \"b}") << 1 << 10
                               << QString("a text is not closed by a quotation mark");
    QTest::newRow("text behind the end") << QByteArray("{}\nx") << 2 << 1
                                         << QString("something follows the end of the catalogue");
    QTest::newRow("no UTF-8") << QByteArray("{\"a\": \"\xF4\"}") << 1 << 8 << QString("a text is no UTF-8");
    QTest::newRow("control character") << QByteArray("{\"a\": \"b\tc\"}") << 1 << 9
                                       << QString("a text holds a control character, or a backslash before a letter "
                                                  "that needs none");
    QTest::newRow("too deep") << QByteArray("{\"a\": ") + QByteArray(100000, '[') << 1 << 1030
                              << QString("objects nest too deeply");
    QTest::newRow("empty") << QByteArray() << 1 << 1 << QString("the file is empty");
    QTest::newRow("list") << QByteArray("[]") << 1 << 1 << QString("the file holds no JSON object");
}

void tst_ZaxmatCheck::showsTheFirstMistakeOfATextThatIsNoJson()
{
    QFETCH(const QByteArray, text);
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), text);
    const Run run = workshop.Zaxmat({"check", "--format", "json"});
    const QJsonArray findings = Findings(run);
    QCOMPARE(findings.size(), 1);
    QCOMPARE(findings[0]["problem"].toString(), "syntax");
    QTEST(findings[0]["line"].toInt(), "line");
    QTEST(findings[0]["column"].toInt(), "column");
    QTEST(findings[0]["message"].toString(), "message");
    QCOMPARE(run.code, 1);
}

void tst_ZaxmatCheck::countsColumnsAsEditorsDo()
{
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), "\xEF\xBB\xBF{\"ø\xF0\x9D\x90\x80\": x}");
    const QJsonArray findings = Findings(workshop.Zaxmat({"check", "--format", "json"}));
    QCOMPARE(findings[0]["column"].toInt(), 9);
}

void tst_ZaxmatCheck::writesNothingWithoutFix()
{
    const Workshop workshop;
    const QByteArray text = CatalogueText(MaterialText("x", "\"colour\": null")) + "}";
    Workshop::Write(workshop.CatalogueFile(), text);
    workshop.Zaxmat({"check"});
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), text);
    QCOMPARE(Copies(workshop), QStringList{});
}

void tst_ZaxmatCheck::fixesOnlyWhatIsSafe()
{
    const Workshop workshop;
    const QByteArray before =
        "{ \"first\": {\"key\":\"m\",\"name\":\"\",\"type\":0,\"properties\":{\"\":{\"colour\":null,  \"thickness\": "
        "2.0,\"bent\":1}}},\n"
        "\"s\": "
        "{\"key\":\"s\",\"name\":\"\",\"materialKey\":\"m\",\"type\":1,\"properties\":{\"\":{\"cost\":\"1e1\",\"cost\":"
        "\"1e1\", \"isActive\":\"false\"}}},\n"
        "\"again\": "
        "{\"key\":\"s\",\"name\":\"\",\"materialKey\":\"m\",\"type\":1,\"properties\":{\"\":{\"cost\":\"1e1\",\"cost\":"
        "\"1e1\", \"isActive\":\"false\"}}} }\n";
    const QByteArray after =
        "{ \"m\": {\"key\":\"m\",\"name\":\"\",\"type\":0,\"properties\":{\"\":{\"thickness\": 2.0,\"bent\":1}}},\n"
        "\"s\": {\"key\":\"s\",\"name\":\"\",\"materialKey\":\"m\",\"type\":1,\"properties\":{\"\":{\"cost\":10,"
        "\"isActive\":false}}} }\n";
    Workshop::Write(workshop.CatalogueFile(), before);
    const Run run = workshop.Zaxmat({"check", "--fix", "--format", "json"});
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), after);
    QCOMPARE(Copies(workshop), QStringList{"materials.json.bak"});
    QCOMPARE(Workshop::Read(workshop.CatalogueFile() + ".bak"), before);
    QCOMPARE(run.err, "zaxmat: note: the catalogue as it was is kept in \"" + workshop.CatalogueFile() + ".bak\"\n");
    // The unknown property that holds a value is left.
    QCOMPARE(run.code, 1);
    const QJsonArray findings = Findings(run);
    for (const QJsonValue& finding : findings)
        QCOMPARE(finding["isFixed"], finding["isFixable"]);
    const QJsonArray left = Findings(workshop.Zaxmat({"check", "--format", "json"}));
    QCOMPARE(left.size(), 1);
    QCOMPARE(left[0]["property"].toString(), "bent");
}

void tst_ZaxmatCheck::keepsACopyOfEveryTextThatItMends()
{
    const Workshop workshop;
    const QByteArray first = CatalogueText(MaterialText("x", "\"colour\": null"));
    const QByteArray second = CatalogueText(MaterialText("y", "\"colour\": null"));
    Workshop::Write(workshop.CatalogueFile(), first);
    QCOMPARE(workshop.Zaxmat({"check", "--fix"}).code, 0);
    Workshop::Write(workshop.CatalogueFile(), second);
    QCOMPARE(workshop.Zaxmat({"check", "--fix"}).code, 0);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile() + ".bak"), first);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile() + ".bak2"), second);
    QCOMPARE(Copies(workshop).size(), 2);
}

void tst_ZaxmatCheck::leavesTheFileAloneWhenNothingCanBeMended()
{
    const Workshop workshop;
    const QByteArray text = CatalogueText(MaterialText("x", "\"thickness\": 0"));
    Workshop::Write(workshop.CatalogueFile(), text);
    QCOMPARE(workshop.Zaxmat({"check", "--fix"}).code, 1);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), text);
    QCOMPARE(Copies(workshop), QStringList{});
}

void tst_ZaxmatCheck::mendsSyntax_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("mended");
    const QByteArray m = MaterialText("m", "\"thickness\": 2");
    const QByteArray x = MaterialText("x", "\"thickness\": 3");
    QTest::newRow("comma at the end of the catalogue") << "{" + m + ",\n" + x + ",\n}\n"
                                                       << "{" + m + ",\n" + x + "\n}\n";
    QTest::newRow("comma at the end of a record") << "{" + m + ",\n" + MaterialText("x", "\"thickness\": 3, ") + "}"
                                                  << "{" + m + ",\n" + MaterialText("x", "\"thickness\": 3 ") + "}";
    QTest::newRow("comma missing between records") << "{" + m + "\n" + x + "}"
                                                   << "{" + m + ",\n" + x + "}";
    QTest::newRow("comma missing between properties")
        << "{" + m + ",\n" + MaterialText("x", "\"thickness\": 3 \"density\": 1") + "}"
        << "{" + m + ",\n" + MaterialText("x", "\"thickness\": 3, \"density\": 1") + "}";
    QTest::newRow("closing brace missing at the end") << "{" + m + ",\n" + x + "\n"
                                                      << "{" + m + ",\n" + x + "\n}\n";
    QTest::newRow("two closing braces missing at the end")
        << "{" + m + ",\n" + x.chopped(1) << "{" + m + ",\n" + x.chopped(1) + "\n}\n}";
    QTest::newRow("brace too many at the end") << "{" + m + ",\n" + x + "}\n}\n"
                                               << "{" + m + ",\n" + x + "}\n\n";
    QTest::newRow("several") << "{" + m + "\n" + x + ",}\n}"
                             << "{" + m + ",\n" + x + "}\n";
}

void tst_ZaxmatCheck::mendsSyntax()
{
    QFETCH(const QByteArray, text);
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), text);
    const Run run = workshop.Zaxmat({"check", "--fix"});
    QTEST(Workshop::Read(workshop.CatalogueFile()), "mended");
    QCOMPARE(Workshop::Read(workshop.CatalogueFile() + ".bak"), text);
    QVERIFY2(run.out.endsWith("It can be read now. Check it once more for other problems.\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
    QCOMPARE(workshop.Zaxmat({"check"}).code, 0);
}

void tst_ZaxmatCheck::refusesToMendWhatMayBeLost_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray m = MaterialText("m", "\"thickness\": 2");
    const QByteArray x = MaterialText("x", "\"thickness\": 3");
    QTest::newRow("end behind a comma") << "{" + m + ",\n";
    QTest::newRow("end in a text") << "{" + m + ",\n\"x\": {\"key\": \"x";
    QTest::newRow("end in a number") << "{" + m + ",\n\"x\": {\"properties\": {\"\": {\"thickness\": 1";
    QTest::newRow("end behind a text") << "{" + m + ",\n\"x\": {\"key\": \"x\", \"name\": \"x\"";
    QTest::newRow("end before the type")
        << "{" + m + ",\n\"x\": {\"key\": \"x\", \"name\": \"\", \"properties\": {\"\": {\"thickness\": 3}}";
    QTest::newRow("brace missing in the middle") << "{" + m.chopped(1) + ",\n" + x + "}";
    QTest::newRow("two braces missing in the middle") << "{" + m.chopped(2) + ",\n" + x + "}";
    QTest::newRow("brace too many in the middle") << "{" + m + "},\n" + x + "}";
    QTest::newRow("quotation mark in a text") << "{" + MaterialText("m", "\"comment\": \"12\" wide\"") + "}";
    QTest::newRow("value missing") << "{" + MaterialText("m", "\"thickness\": ") + "}";
    QTest::newRow("comment") << "{ // mine\n" + m + "}";
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("conflict of versions") << "{\n<<<<<<< ours\n" + m + "\n=======\n" + x + "\n>>>>>>> theirs\n}";
}

void tst_ZaxmatCheck::refusesToMendWhatMayBeLost()
{
    QFETCH(const QByteArray, text);
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), text);
    const Run run = workshop.Zaxmat({"check", "--fix", "--format", "json"});
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), text);
    QCOMPARE(Copies(workshop), QStringList{});
    QCOMPARE(Findings(run).at(0)["isFixable"], QJsonValue(false));
    QVERIFY(Findings(run).at(0)["line"].toInt() > 0);
    QCOMPARE(run.code, 1);
}

void tst_ZaxmatCheck::printsJsonAndCsv()
{
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), CatalogueText(StockFormText("s", "\"cost\": \"5\"")));
    const Run json = workshop.Zaxmat({"check", "--format", "json"});
    QCOMPARE(Findings(json)[0].toObject(), (QJsonObject{{"line", 2},
                                                        {"column", 91},
                                                        {"problem", "wrong-kind"},
                                                        {"name", "s"},
                                                        {"key", "s"},
                                                        {"property", "cost"},
                                                        {"message", "cost is \"5\", but must be a number"},
                                                        {"isFixable", true},
                                                        {"isFixed", false}}));
    QCOMPARE(workshop.Zaxmat({"check", "--format", "csv"}).out,
             "line,column,problem,name,key,property,message,isFixable,isFixed\r\n"
             "2,91,wrong-kind,s,s,cost,\"cost is \"\"5\"\", but must be a number\",true,false\r\n");
    QCOMPARE(workshop.Zaxmat({"check"}).out, "Line  Column  Record  Problem                            Can be mended\n"
                                             "----  ------  ------  ---------------------------------  -------------\n"
                                             "   2      91  s       cost is \"5\", but must be a number  yes\n"
                                             "\n"
                                             "Catalogue \"" +
                                                 workshop.CatalogueFile() +
                                                 "\": found: 1, can be mended with --fix: 1\n");
}

void tst_ZaxmatCheck::saysWhatItCannotJudge()
{
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(),
                    CatalogueText(Record("x", "\"type\": 0, \"properties\": {\"Gas\": {\"p\": []}}")));
    const Run run = workshop.Zaxmat({"check"});
    QCOMPARE(run.err, "zaxmat: note: the values under \"Gas\" were not judged: no loaded module provides that "
                      "extension\n");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatCheck::failsWithoutAFile()
{
    const Workshop workshop;
    const Run run = workshop.Zaxmat({"check"});
    QVERIFY2(run.err.contains("cannot be read"), qUtf8Printable(run.err));
    QCOMPARE(run.code, 3);
    QCOMPARE(workshop.Zaxmat({"check", "--fix"}).code, 3);
    QVERIFY(QDir(workshop.CatalogueFolder()).isEmpty());
}

void tst_ZaxmatCheck::failsWhereNoCopyCanBeKept()
{
    const Workshop workshop;
    const QByteArray text = CatalogueText(MaterialText("x", "\"colour\": null"));
    Workshop::Write(workshop.CatalogueFile(), text);
    QCOMPARE(workshop.ZaxmatThrough(Workshop::onFullDisk, {"check", "--fix"}).code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), text);
    QFile::setPermissions(workshop.CatalogueFolder(), QFile::ReadOwner | QFile::ExeOwner);
    const Run run = workshop.ZaxmatThrough(Workshop::AsOrdinaryUser(), {"check", "--fix"});
    QFile::setPermissions(workshop.CatalogueFolder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), text);
}

void tst_ZaxmatCheck::waitsForNobodyButIsLockedWhileFixing()
{
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), CatalogueText(MaterialText("x", "\"colour\": null")));
    QCOMPARE(workshop.Zaxmat({"check", "--fix"}).code, 0);
    // The lock is given back.
    QVERIFY(!QFile::exists(workshop.CatalogueFile() + ".lock"));
}

QTEST_GUILESS_MAIN(tst_ZaxmatCheck)
#include "tst_ZaxmatCheck.moc"
