#include "Workshop.h"

#include <QJsonDocument>
#include <QLockFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSysInfo>
#include <QTest>

/// What --format, --quiet and --unit make of results, and what a terminal gets.
class tst_ZaxmatOutput : public QObject
{
    Q_OBJECT

private slots:
    void listIsData_data();
    void listIsData();
    void showIsJson();
    void showOfAStockFormIsJson();
    void showIsCsv();
    void quietLeavesTheData();
    void quietLeavesErrors();
    void lengthsAreDisplayedInInches();
    void messagesAndChangesAreInInchesToo();
    void longWorkIsToldOnATerminal_data();
    void longWorkIsToldOnATerminal();
    void optionsMayStandBeforeTheCommand();
    void unknownChoicesAreRefused_data();
    void unknownChoicesAreRefused();
    void coloursAreForTerminals_data();
    void coloursAreForTerminals();
};

namespace {

/// Runs the command with a terminal for its standard streams.
const QString onTerminal = "script -q -e -c \"$(printf \"'%s' \" \"$@\")\" /dev/null";

} // namespace

void tst_ZaxmatOutput::listIsData_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("out");
    QTest::newRow("csv") << "csv"
                         << "name,materialType,category,thickness,density,stockForms,key\r\n"
                            "\"Acrylic, cast\",PMMA,Plastic,12.7,1.19,0,acrylic-12.7\r\n"
                            "Structural steel,S235JR,Metal,2,7.85,3,steel-2\r\n"
                            "Structural steel,S235JR,Metal,3,7.85,1,steel-3\r\n";
    const auto record = [](const QString& key, const QString& name, const QString& type, const QString& category,
                           double thickness, double density, int stockForms) {
        return QJsonObject{{"key", key},
                           {"name", name},
                           {"materialType", type},
                           {"category", category},
                           {"thickness", thickness},
                           {"density", density},
                           {"stockForms", stockForms}};
    };
    QTest::newRow("json")
        << "json"
        << QString::fromUtf8(
               QJsonDocument(QJsonArray{record("acrylic-12.7", "Acrylic, cast", "PMMA", "Plastic", 12.7, 1.19, 0),
                                        record("steel-2", "Structural steel", "S235JR", "Metal", 2, 7.85, 3),
                                        record("steel-3", "Structural steel", "S235JR", "Metal", 3, 7.85, 1)})
                   .toJson());
}

void tst_ZaxmatOutput::listIsData()
{
    QFETCH(QString, format);
    QFETCH(QString, out);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    // Data have one unit.
    const Run run = workshop.Zaxmat({"list", "--format", format, "--unit", "in"});
    QCOMPARE(run.out, out);
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatOutput::showIsJson()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"show", "steel-3", "--format", "json"});
    const QJsonObject stockForm{{"type", "stock form"},
                                {"key", "steel-3-small"},
                                {"name", "Sheet small"},
                                {"properties", QJsonObject{{"", QJsonObject{{"form", "Rectangular"},
                                                                            {"length", 2000},
                                                                            {"width", 1000},
                                                                            {"cost", 47.1},
                                                                            {"isActive", true},
                                                                            {"comment", ""}}}}}};
    const QJsonObject material{{"type", "material"},
                               {"key", "steel-3"},
                               {"name", "Structural steel"},
                               {"properties", QJsonObject{{"", QJsonObject{{"materialType", "S235JR"},
                                                                           {"thickness", 3},
                                                                           {"category", "Metal"},
                                                                           {"density", 7.85},
                                                                           {"comment", "EN 10025-2"}}}}},
                               {"stockForms", QJsonArray{stockForm}}};
    QCOMPARE(run.out, QString::fromUtf8(QJsonDocument(QJsonArray{material}).toJson()));
}

void tst_ZaxmatOutput::showOfAStockFormIsJson()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QJsonArray found =
        QJsonDocument::fromJson(workshop.Zaxmat({"show", "Sheet small", "--format", "json"}).out.toUtf8()).array();
    QCOMPARE(found.size(), 2);
    QCOMPARE(found[1]["key"].toString(), "steel-3-small");
    QCOMPARE(found[1]["materialKey"].toString(), "steel-3");
    QCOMPARE(found[1]["properties"][""]["cost"], QJsonValue(47.1));
}

void tst_ZaxmatOutput::showIsCsv()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    QCOMPARE(workshop.Zaxmat({"show", "acrylic-12.7", "--format", "csv"}).out,
             "type,key,name,property,value\r\n"
             "material,acrylic-12.7,\"Acrylic, cast\",materialType,PMMA\r\n"
             "material,acrylic-12.7,\"Acrylic, cast\",thickness,12.7\r\n"
             "material,acrylic-12.7,\"Acrylic, cast\",category,Plastic\r\n"
             "material,acrylic-12.7,\"Acrylic, cast\",density,1.19\r\n");
}

void tst_ZaxmatOutput::quietLeavesTheData()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QString out = workshop.Zaxmat({"list", "--quiet"}).out;
    QCOMPARE(out.count('\n'), 5);
    QVERIFY2(out.endsWith(" 1\n"), qUtf8Printable(out));
    QCOMPARE(workshop.Zaxmat({"show", "steel-2", "-q"}).out, workshop.Zaxmat({"show", "steel-2"}).out);
}

void tst_ZaxmatOutput::quietLeavesErrors()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"show", "Gold", "--quiet"});
    QVERIFY2(run.err.contains("has no \"Gold\""), qUtf8Printable(run.err));
    QCOMPARE(run.code, 2);
    // A remark is no error.
    QCOMPARE(workshop.Zaxmat({"use", "PMMA", "--document", "a.zaxdoc", "--quiet"}).err, "");
}

void tst_ZaxmatOutput::lengthsAreDisplayedInInches()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QString list = workshop.Zaxmat({"list", "--unit", "in"}).out;
    QVERIFY2(list.contains("  0.5 in  1.19 g/cm³  "), qUtf8Printable(list));
    const QString show = workshop.Zaxmat({"show", "steel-3", "--unit", "in"}).out;
    QVERIFY2(show.startsWith("Structural steel, 0.118110236 in\n"), qUtf8Printable(show));
    QVERIFY2(show.contains("\nThickness      0.118110236 in\n"), qUtf8Printable(show));
    QVERIFY2(show.contains("  78.7401575 in  39.3700787 in  47.1  yes  "), qUtf8Printable(show));
}

void tst_ZaxmatOutput::messagesAndChangesAreInInchesToo()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QString inch = "--unit=in";
    const QString lines =
        "  Structural steel, 0.0787401575 in  steel-2\n  Structural steel, 0.118110236 in   steel-3\n";
    for (const QStringList& command : {QStringList{"set", "S235JR", "comment=x", inch},
                                       {"remove", "S235JR", inch},
                                       {"add", "x", "--material", "S235JR", inch},
                                       {"use", "S235JR", "--document", workshop.Path("job.zaxdoc"), inch}}) {
        const Run run = workshop.Zaxmat(command);
        QVERIFY2(run.err.contains(lines), qUtf8Printable(run.err));
    }
    const QString similar = workshop.Zaxmat({"show", "structural", inch}).err;
    QVERIFY2(similar.contains(lines), qUtf8Printable(similar));
    const QString noStockForm = workshop.Zaxmat({"set", "x", "--material", "steel-3", "cost=1", inch}).err;
    QVERIFY2(noStockForm.contains("\"Structural steel, 0.118110236 in\" has no stock form"),
             qUtf8Printable(noStockForm));
    const QString changed = workshop.Zaxmat({"set", "steel-2", "thickness=1 in", inch}).out;
    QVERIFY2(changed.contains("Structural steel, 1 in  thickness  0.0787401575 in  1 in"), qUtf8Printable(changed));
    const QString removed = workshop.Zaxmat({"remove", "steel-3", inch}).err;
    QVERIFY2(removed.contains("With \"Structural steel, 0.118110236 in\""), qUtf8Printable(removed));
    const QString used = workshop.Zaxmat({"use", "acrylic-12.7", "--document", workshop.Path("job.zaxdoc"), inch}).out;
    QVERIFY2(used.contains(QRegularExpression("\nThickness +0.5 in\n")), qUtf8Printable(used));
}

void tst_ZaxmatOutput::longWorkIsToldOnATerminal_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("isTold");
    QTest::newRow("terminal") << onTerminal << QStringList{} << true;
    QTest::newRow("quiet") << onTerminal << QStringList{"--quiet"} << false;
    QTest::newRow("no terminal") << "exec \"$@\"" << QStringList{} << false;
}

void tst_ZaxmatOutput::longWorkIsToldOnATerminal()
{
    QFETCH(QString, script);
    QFETCH(QStringList, options);
    QFETCH(bool, isTold);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    QLockFile lock(workshop.CatalogueFile() + ".lock");
    QVERIFY(lock.lock());
    QProcess process;
    process.setProcessEnvironment(workshop.environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start("sh", QStringList{"-c", script, "sh", QStringLiteral(ZAXMAT_PROGRAM), "set", "steel-2", "comment=x"} +
                            options);
    // It waits for the lock.
    QVERIFY(!process.waitForFinished(3000));
    lock.unlock();
    QVERIFY(process.waitForFinished());
    const QString text = QString::fromUtf8(process.readAll());
    const QString line = QString("\rwaiting for process %1 (tst_ZaxmatOutput) on %2")
                             .arg(QString::number(QCoreApplication::applicationPid()), QSysInfo::machineHostName());
    QCOMPARE(text.contains(line), isTold);
    // Wiped out before the results, with any longer one that came after it.
    const QRegularExpression wiped(QString("\r {%1,}\r").arg(line.size() - 1));
    QCOMPARE(text.contains(wiped), isTold);
    QVERIFY(!isTold || text.indexOf("\nCatalogue ") > text.indexOf(wiped));
    QCOMPARE(text.count('\r') > text.count('\n'), isTold);
    QCOMPARE(process.exitCode(), 0);
}

void tst_ZaxmatOutput::optionsMayStandBeforeTheCommand()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    QCOMPARE(workshop.Zaxmat({"--format", "csv", "list"}).out, workshop.Zaxmat({"list", "--format", "csv"}).out);
    QCOMPARE(workshop.Zaxmat({"--format", "json", "list", "--format", "csv"}).out,
             workshop.Zaxmat({"list", "--format", "csv"}).out);
}

void tst_ZaxmatOutput::unknownChoicesAreRefused_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("words");
    QTest::newRow("format") << "--format"
                            << "table|json|csv";
    QTest::newRow("unit") << "--unit"
                          << "mm|in";
}

void tst_ZaxmatOutput::unknownChoicesAreRefused()
{
    QFETCH(QString, option);
    QFETCH(QString, words);
    const Run run = Workshop().Zaxmat({"list", option, "xml"});
    QCOMPARE(run.err,
             "zaxmat: " + option + ": \"xml\" is none of " + words + "\n\"zaxmat list --help\" explains the usage.\n");
    QCOMPARE(run.code, 2);
}

void tst_ZaxmatOutput::coloursAreForTerminals_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("isColoured");
    QTest::newRow("a terminal") << "TERM=xterm " + onTerminal << true;
    QTest::newRow("NO_COLOR") << "TERM=xterm NO_COLOR=1 " + onTerminal << false;
    QTest::newRow("an empty NO_COLOR") << "TERM=xterm NO_COLOR= " + onTerminal << true;
    QTest::newRow("a dumb terminal") << "TERM=dumb " + onTerminal << false;
    QTest::newRow("no terminal") << "TERM=xterm \"$@\"" << false;
}

void tst_ZaxmatOutput::coloursAreForTerminals()
{
    QFETCH(QString, script);
    QFETCH(bool, isColoured);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run list = workshop.ZaxmatThrough(script, {"list"});
    QCOMPARE(list.out.contains("\x1b[1mName\x1b[0m"), isColoured);
    QCOMPARE(list.out.contains('\x1b'), isColoured);
    const Run error = workshop.ZaxmatThrough(script, {"show", "Gold"});
    QCOMPARE((error.out + error.err).contains("\x1b[31m"), isColoured);
    QCOMPARE(error.code, 2);
}

QTEST_GUILESS_MAIN(tst_ZaxmatOutput)
#include "tst_ZaxmatOutput.moc"
