#include "JobDocument.h"

#include "ZAXHostDocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QTest>

/// What "zaxmat document tree", "show" and "validate" tell of a document, which stays as it is.
class tst_ZaxmatDocument : public QObject
{
    Q_OBJECT

private slots:
    void treeShowsAllObjects();
    void treeHasInches();
    void treeAsJson();
    void treeAsCsv();
    void missingModulesAreNoted();
    void quietTreeIsTheTreeAlone();
    void objectsAreNamedInManyWays_data();
    void objectsAreNamedInManyWays();
    void aNameMayHoldASlash();
    void unclearObjectsAreRefused_data();
    void unclearObjectsAreRefused();
    void showTellsTheValues();
    void showAsJson();
    void showAsCsv();
    void showTellsWhatIsMissing();
    void showTellsWhatIsMissingAsJson();
    void validDocumentIsValid();
    void invalidObjectsAreListed();
    void invalidObjectsAreListedAsJson();
    void damagedDocumentIsReadAsFarAsItCanBe_data();
    void damagedDocumentIsReadAsFarAsItCanBe();
    void damageIsInTheJson();
    void damageCountsMoreThanInvalidValues();
    void damageIsReportedQuietlyToo();
    void lockedDocumentCanBeRead_data();
    void lockedDocumentCanBeRead();
    void whatIsNoDocumentIsRefused_data();
    void whatIsNoDocumentIsRefused();
    void readingLeavesNothingBehind();
};

namespace {

const QString notAvailable = "no loaded module provides the class.";

Run Document(const Workshop& workshop, const QString& command, const QStringList& arguments = {})
{
    return workshop.Zaxmat(QStringList{"document", command, "job ø 1.zaxdoc"} + arguments);
}

QJsonObject Json(const Run& run)
{
    return QJsonDocument::fromJson(run.out.toUtf8()).object();
}

/// Makes the material \a name of a document invalid, for whoever reads it.
void SpoilMaterial(const Workshop& workshop)
{
    ZAXHostDocument document;
    if (!document.Open(workshop.Path("job ø 1.zaxdoc")))
        qFatal("The document cannot be opened.");
    const auto features = document.GetInstances(QMetaType::fromName("ZAXMatMaterial*").metaObject());
    features.constLast()->setProperty("thickness", 0.0);
    features.constLast()->setProperty("materialType", QString());
    if (!document.SaveAs(workshop.Path("job ø 1.zaxdoc")))
        qFatal("The document cannot be saved.");
}

} // namespace

void tst_ZaxmatDocument::treeShowsAllObjects()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    const Run run = Document(workshop, "tree");
    QCOMPARE(run.out, "Document \"job ø 1.zaxdoc\", objects: 6\n"
                      "\n"
                      "Number  Object\n"
                      "------  -------------------------------------------------------------------------------\n"
                      "    @1  Materials Root\n"
                      "    @2    Material: Steel - 2 mm (S235JR, 2 mm, 7.85 g/cm³)\n"
                      "    @3      Stock form: Sheet large (Rectangular, 3000 mm x 1000 mm, cost 31.4, active)\n"
                      "    @4      Stock form: Sheet small (Rectangular, 2000 mm x 1000 mm, cost 31.4)\n"
                      "    @5      Not available: ForeignExtension (no loaded module provides the class.)\n"
                      "    @6    Material: Steel - 3 mm (S235JR, 3 mm, 7.85 g/cm³)\n");
    QCOMPARE(run.code, 0);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocument::treeHasInches()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "tree", {"--unit", "in"});
    QVERIFY2(run.out.contains("Material: Steel - 2 mm (S235JR, 0.0787401575 in, 7.85 g/cm³)"), qUtf8Printable(run.out));
}

void tst_ZaxmatDocument::treeAsJson()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "tree", {"--format", "json", "--unit", "in"});
    QCOMPARE(run.code, 0);
    const QJsonObject json = Json(run);
    QCOMPARE(json.keys(), (QStringList{"document", "documentId", "objects", "problems", "readOnly"}));
    QCOMPARE(json.value("document"), "job ø 1.zaxdoc");
    QVERIFY(json.value("readOnly").isNull());
    const QJsonObject root = json.value("objects").toArray().at(0).toObject();
    QCOMPARE(root.value("class"), "ZAXMatRoot");
    QCOMPARE(root.value("id"), 1);
    const QJsonObject material = root.value("objects").toArray().at(0).toObject();
    QCOMPARE(material.value("path"), "Materials Root/Steel - 2 mm");
    const QJsonObject properties = material.value("properties").toObject();
    QCOMPARE(properties.value("thickness"), 2.0);
    QCOMPARE(properties.value("density"), 7.85);
    QCOMPARE(properties.value("isMaterialIdCustomized"), false);
    QCOMPARE(properties.value("nestingColor"), "#123456");
    QCOMPARE(properties.value("remoteKey"), "steel-2");
    const QJsonArray below = material.value("objects").toArray();
    QCOMPARE(below.size(), 3);
    QCOMPARE(below.at(0).toObject().value("properties").toObject().value("form"), "Rectangular");
    const QJsonObject foreign = below.at(2).toObject();
    QCOMPARE(foreign.value("class"), "ForeignExtension");
    QVERIFY(!foreign.contains("properties"));
    QCOMPARE(foreign.value("unavailable").toObject().value("reason"), notAvailable);
    const QJsonObject problem = json.value("problems").toArray().at(0).toObject();
    QCOMPARE(problem.value("kind"), "unavailable");
    QCOMPARE(problem.value("id"), 5);
    QCOMPARE(problem.value("class"), "ForeignExtension");
}

void tst_ZaxmatDocument::treeAsCsv()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "tree", {"--format", "csv"});
    QCOMPARE(QString(run.out).remove('\r'), "id,parent,class,path\n"
                                            "1,,ZAXMatRoot,Materials Root\n"
                                            "2,1,ZAXMatMaterial,Materials Root/Steel - 2 mm\n"
                                            "3,2,ZAXMatPackaging,Materials Root/Steel - 2 mm/Sheet large\n"
                                            "4,2,ZAXMatPackaging,Materials Root/Steel - 2 mm/Sheet small\n"
                                            "5,2,ForeignExtension,Materials Root/Steel - 2 mm/ForeignExtension\n"
                                            "6,1,ZAXMatMaterial,Materials Root/Steel - 3 mm\n");
}

void tst_ZaxmatDocument::missingModulesAreNoted()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "tree");
    QVERIFY2(
        run.err.startsWith("zaxmat: note: The object 5 of class ForeignExtension is not available: " + notAvailable),
        qUtf8Printable(run.err));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatDocument::quietTreeIsTheTreeAlone()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "tree", {"--quiet"});
    QCOMPARE(run.err, "");
    QVERIFY2(run.out.startsWith("Number  Object\n"), qUtf8Printable(run.out));
}

void tst_ZaxmatDocument::objectsAreNamedInManyWays_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("id");
    QTest::newRow("number") << "@4" << 4;
    QTest::newRow("material ID") << "Steel - 2 mm" << 2;
    QTest::newRow("catalogue key of a material") << "steel-2" << 2;
    QTest::newRow("catalogue key of a stock form") << "steel-2-large" << 3;
    QTest::newRow("label") << "Sheet small" << 4;
    QTest::newRow("path") << "Steel - 2 mm/Sheet small" << 4;
    QTest::newRow("path of a key and a label") << "steel-2/Sheet small" << 4;
    QTest::newRow("whole path") << "Materials Root/Steel - 2 mm/Sheet large" << 3;
    QTest::newRow("path from the top") << "/Materials Root/Steel - 3 mm" << 6;
    QTest::newRow("class of what is missing") << "ForeignExtension" << 5;
    QTest::newRow("root") << "Materials Root" << 1;
}

void tst_ZaxmatDocument::objectsAreNamedInManyWays()
{
    QFETCH(QString, name);
    QFETCH(int, id);
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "show", {name, "--format", "json"});
    QVERIFY2(run.code == 0, qUtf8Printable(run.err));
    QCOMPARE(Json(run).value("id"), id);
}

void tst_ZaxmatDocument::aNameMayHoldASlash()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    QCOMPARE(Document(workshop, "set", {"@4", "label=1/2 sheet"}).code, 0);
    const QStringList names{"1/2 sheet", "Steel - 2 mm/1/2 sheet"};
    for (const QString& name : names)
        QCOMPARE(Json(Document(workshop, "show", {name, "--format", "json"})).value("id"), 4);
    QCOMPARE(Document(workshop, "show", {"2 sheet"}).code, 2);
}

void tst_ZaxmatDocument::unclearObjectsAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("message");
    const QString several = "Several objects are called \"%1\". Choose one by its number or its path:\n"
                            "  @2  Materials Root/Steel - 2 mm\n"
                            "  @6  Materials Root/Steel - 3 mm\n";
    QTest::newRow("ambiguous label") << "Steel" << several.arg("Steel");
    QTest::newRow("ambiguous type") << "S235JR" << several.arg("S235JR");
    QTest::newRow("unknown") << "Gold"
                             << "The document \"job ø 1.zaxdoc\" has no object \"Gold\".\n"
                                "\"zaxmat document tree\" shows all objects.\n";
    QTest::newRow("similar") << "small"
                             << "The document \"job ø 1.zaxdoc\" has no object \"small\".\nSimilar:\n"
                                "  @4  Materials Root/Steel - 2 mm/Sheet small\n";
    QTest::newRow("other letter case") << "sheet small"
                                       << "The document \"job ø 1.zaxdoc\" has no object \"sheet small\".\nSimilar:\n"
                                          "  @4  Materials Root/Steel - 2 mm/Sheet small\n";
    QTest::newRow("unknown number") << "@7"
                                    << "The document \"job ø 1.zaxdoc\" has no object \"@7\".\n"
                                       "\"zaxmat document tree\" shows all objects.\n";
    QTest::newRow("path through another material")
        << "Steel - 3 mm/Sheet small"
        << "The document \"job ø 1.zaxdoc\" has no object \"Steel - 3 mm/Sheet small\".\n"
           "\"zaxmat document tree\" shows all objects.\n";
    QTest::newRow("path that does not begin at the top")
        << "/Steel - 3 mm"
        << "The document \"job ø 1.zaxdoc\" has no object \"/Steel - 3 mm\".\n"
           "\"zaxmat document tree\" shows all objects.\n";
}

void tst_ZaxmatDocument::unclearObjectsAreRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, message);
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "show", {name, "--quiet"});
    QCOMPARE(run.err, "zaxmat: " + message);
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 2);
}

void tst_ZaxmatDocument::showTellsTheValues()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "show", {"@4"});
    QCOMPARE(run.out, "Property    Value\n"
                      "----------  ---------------------------------------\n"
                      "Number      @4\n"
                      "Class       ZAXMatPackaging\n"
                      "Path        Materials Root/Steel - 2 mm/Sheet small\n"
                      "Label       Sheet small\n"
                      "Length      2000 mm\n"
                      "Width       1000 mm\n"
                      "Form        Rectangular\n"
                      "Cost        31.4\n"
                      "Comment\n"
                      "Remote Key\n"
                      "Is Active   no\n");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatDocument::showAsJson()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QJsonObject json = Json(Document(workshop, "show", {"@4", "--format", "json"}));
    QCOMPARE(json.keys(), (QStringList{"class", "id", "objects", "path", "properties"}));
    QCOMPARE(json.value("properties").toObject(), (QJsonObject{{"comment", ""},
                                                               {"cost", 31.4},
                                                               {"form", "Rectangular"},
                                                               {"isActive", false},
                                                               {"label", "Sheet small"},
                                                               {"length", 2000},
                                                               {"remoteKey", ""},
                                                               {"width", 1000}}));
}

void tst_ZaxmatDocument::showAsCsv()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "show", {"@4", "--format", "csv"});
    QVERIFY2(QString(run.out).remove('\r').startsWith("property,value\nid,4\nclass,ZAXMatPackaging\n"),
             qUtf8Printable(run.out));
    QVERIFY2(QString(run.out).remove('\r').contains("\nlength,2000\n"), qUtf8Printable(run.out));
}

void tst_ZaxmatDocument::showTellsWhatIsMissing()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "show", {"ForeignExtension"});
    QVERIFY2(run.out.contains("Not available  " + notAvailable + '\n'), qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatDocument::showTellsWhatIsMissingAsJson()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QJsonObject json = Json(Document(workshop, "show", {"@5", "--format", "json"}));
    const QJsonArray classes = json.value("unavailable").toObject().value("classes").toArray();
    QCOMPARE(classes.at(0).toObject(), (QJsonObject{{"name", "ForeignExtension"}, {"version", 3}}));
    QCOMPARE(classes.at(1).toObject(), (QJsonObject{{"name", "ZAXMatMaterialExtension"}, {"version", 1}}));
}

void tst_ZaxmatDocument::validDocumentIsValid()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "validate");
    QCOMPARE(run.out, "Document \"job ø 1.zaxdoc\", objects: 6, invalid: 0\n");
    QCOMPARE(run.code, 0);
    QCOMPARE(Document(workshop, "validate", {"--format", "json"}).out, "[\n]\n");
}

void tst_ZaxmatDocument::invalidObjectsAreListed()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    SpoilMaterial(workshop);
    const Run run = Document(workshop, "validate");
    QVERIFY2(run.out.contains("    @6  Materials Root/Steel - 0 mm  Material Type  error   The material type cannot be "
                              "empty.\n"),
             qUtf8Printable(run.out));
    QVERIFY2(run.out.contains("    @6  Materials Root/Steel - 0 mm  Thickness      error   The thickness is not a "
                              "positive non-zero length.\n"),
             qUtf8Printable(run.out));
    QVERIFY2(run.out.endsWith("objects: 6, invalid: 1\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 1);
}

void tst_ZaxmatDocument::invalidObjectsAreListedAsJson()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    SpoilMaterial(workshop);
    const Run run = Document(workshop, "validate", {"--format", "json"});
    const QJsonArray messages = QJsonDocument::fromJson(run.out.toUtf8()).array();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(messages.at(1).toObject(), (QJsonObject{{"id", 6},
                                                     {"path", "Materials Root/Steel - 0 mm"},
                                                     {"property", "thickness"},
                                                     {"status", "error"},
                                                     {"message", "The thickness is not a positive non-zero length."}}));
    QCOMPARE(run.code, 1);
}

void tst_ZaxmatDocument::damagedDocumentIsReadAsFarAsItCanBe_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("tree") << QStringList{"tree", "job ø 1.zaxdoc"} << "Stock form: Sheet large";
    QTest::newRow("show") << QStringList{"show", "job ø 1.zaxdoc", "Sheet large"} << "3000 mm";
    QTest::newRow("validate") << QStringList{"validate", "job ø 1.zaxdoc"} << "objects: 5, invalid: 0";
}

void tst_ZaxmatDocument::damagedDocumentIsReadAsFarAsItCanBe()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    const Workshop workshop;
    const JobDocument document(workshop);
    document.Damage("Sheet small");
    const QByteArray before = document.GetBytes();
    const Run run = workshop.Zaxmat(QStringList{"document"} + arguments);
    QVERIFY2(run.out.contains(expected), qUtf8Printable(run.out));
    QVERIFY2(!run.out.contains("Sheet small"), qUtf8Printable(run.out));
    QVERIFY2(run.err.contains("zaxmat: The document \"job ø 1.zaxdoc\" is damaged. This is what is left of it.\n"
                              "  The document is damaged at byte "),
             qUtf8Printable(run.err));
    QVERIFY2(run.err.contains(": the object is not what was written.\n"), qUtf8Printable(run.err));
    QCOMPARE(run.code, 3);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocument::damageIsInTheJson()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    document.Damage("Sheet small");
    const Run run = Document(workshop, "tree", {"--format", "json"});
    const QJsonArray problems = Json(run).value("problems").toArray();
    QVERIFY(std::ranges::any_of(problems, [](const auto& each) { return each.toObject().value("kind") == "damaged"; }));
    QCOMPARE(run.code, 3);
}

void tst_ZaxmatDocument::damageCountsMoreThanInvalidValues()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    SpoilMaterial(workshop);
    document.Damage("Sheet small");
    const Run run = Document(workshop, "validate");
    QVERIFY2(run.out.endsWith("objects: 5, invalid: 1\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 3);
}

void tst_ZaxmatDocument::damageIsReportedQuietlyToo()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    document.Damage("Sheet small");
    const Run run = Document(workshop, "tree", {"--quiet"});
    QVERIFY2(run.err.startsWith("zaxmat: The document \"job ø 1.zaxdoc\" is damaged."), qUtf8Printable(run.err));
    QCOMPARE(run.code, 3);
}

void tst_ZaxmatDocument::lockedDocumentCanBeRead_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("tree") << QStringList{"tree", "job ø 1.zaxdoc"};
    QTest::newRow("show") << QStringList{"show", "job ø 1.zaxdoc", "@4"};
    QTest::newRow("validate") << QStringList{"validate", "job ø 1.zaxdoc"};
}

void tst_ZaxmatDocument::lockedDocumentCanBeRead()
{
    QFETCH(QStringList, arguments);
    const Workshop workshop;
    const JobDocument document(workshop);
    ZAXHostDocument open;
    QVERIFY(open.Open(document.GetPath()));
    const Run run = workshop.Zaxmat(QStringList{"document"} + arguments);
    QVERIFY2(run.err.contains("zaxmat: note: The document job ø 1.zaxdoc is opened by "), qUtf8Printable(run.err));
    QVERIFY2(
        run.err.contains("(process " + QString::number(QCoreApplication::applicationPid()) + ", tst_ZaxmatDocument)."),
        qUtf8Printable(run.err));
    QVERIFY(!run.out.isEmpty());
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatDocument::whatIsNoDocumentIsRefused_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("message");
    QTest::newRow("not there") << ""
                               << "zaxmat: The document \"none\" does not exist.\n";
    QTest::newRow("text") << "echo Dear colleague >none;"
                          << "zaxmat: The document none cannot be read: ";
    QTest::newRow("nothing") << ": >none;"
                             << "zaxmat: The document none cannot be read: ";
    QTest::newRow("folder") << "mkdir none;"
                            << "zaxmat: The document \"none\" cannot be opened: it is no file.\n";
    QTest::newRow("pipe") << "mkfifo none;"
                          << "zaxmat: The document \"none\" cannot be opened: it is no file.\n";
}

void tst_ZaxmatDocument::whatIsNoDocumentIsRefused()
{
    QFETCH(QString, script);
    QFETCH(QString, message);
    const QList<QStringList> commands{{"tree", "none"}, {"show", "none", "@1"}, {"validate", "none"}};
    for (const QStringList& command : commands) {
        const Run run = Workshop().ZaxmatThrough(script + "exec \"$@\"", QStringList{"document"} + command);
        QVERIFY2(run.err.startsWith(message), qUtf8Printable(run.err));
        QCOMPARE(run.out, "");
        QCOMPARE(run.code, 3);
    }
}

void tst_ZaxmatDocument::readingLeavesNothingBehind()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    Document(workshop, "tree");
    Document(workshop, "show", {"@2"});
    Document(workshop, "validate");
    QCOMPARE(QDir(workshop.Path("")).entryList(QDir::Files | QDir::Hidden | QDir::System),
             QStringList{"job ø 1.zaxdoc"});
}

QTEST_GUILESS_MAIN(tst_ZaxmatDocument)
#include "tst_ZaxmatDocument.moc"
