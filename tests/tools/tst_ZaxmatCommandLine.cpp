#include "Workshop.h"

#include <QFile>
#include <QTest>

/// What zaxmat does with a command line before any command works.
class tst_ZaxmatCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void versionIsPrinted();
    void helpExplains_data();
    void helpExplains();
    void helpListsTheExitCodes();
    void helpNamesTheDefaultCatalogue();
    void argumentsAreUtf8();
    void wrongUsageIsRefused_data();
    void wrongUsageIsRefused();
    void nothingIsMadeForAWrongCommandLine();
    void fullStandardOutputIsReported();
    void closedStandardOutputIsReported();
    void closedStandardErrorChangesNothing();
};

void tst_ZaxmatCommandLine::versionIsPrinted()
{
    const Run run = Workshop().Zaxmat({"--version"});
    QCOMPARE(run.out, "zaxmat 1.0.0\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatCommandLine::helpExplains_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("usage");
    QTest::addColumn<QString>("example");
    QTest::newRow("program") << QStringList{"--help"} << "Usage: zaxmat [OPTIONS] [SUBCOMMAND]"
                             << "\"zaxmat COMMAND --help\"";
    QTest::newRow("short") << QStringList{"-h"} << "Usage: zaxmat [OPTIONS] [SUBCOMMAND]"
                           << "\"zaxmat COMMAND --help\"";
    QTest::newRow("list") << QStringList{"list", "--help"} << "Usage: zaxmat list [OPTIONS]"
                          << "\n  zaxmat list --catalogue ";
    QTest::newRow("show") << QStringList{"show", "--help"} << "Usage: zaxmat show [OPTIONS] NAME|KEY"
                          << "\n  zaxmat show ";
    QTest::newRow("use") << QStringList{"use", "--help"} << "Usage: zaxmat use [OPTIONS] MATERIAL"
                         << "\n  zaxmat use --document ";
    QTest::newRow("help without the required options")
        << QStringList{"use", "S235JR", "--help"} << "Usage: zaxmat use [OPTIONS] MATERIAL"
        << "\n  zaxmat use ";
}

void tst_ZaxmatCommandLine::helpExplains()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, usage);
    QFETCH(QString, example);
    const Run run = Workshop().Zaxmat(arguments);
    QVERIFY2(run.out.contains(usage), qUtf8Printable(run.out));
    QVERIFY2(run.out.contains(example), qUtf8Printable(run.out));
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatCommandLine::helpListsTheExitCodes()
{
    const Run run = Workshop().Zaxmat({"--help"});
    QVERIFY2(run.out.endsWith("Exit codes:\n"
                              "  0   done\n"
                              "  1   invalid values, or mistakes or differences found\n"
                              "  2   wrong usage: unknown, ambiguous, no number\n"
                              "  3   a file that cannot be read, understood or written\n"
                              "  4   somebody else changed the same record meanwhile; nothing was written\n"
                              "  70  a mistake of zaxmat itself, which its makers would like to hear of\n"),
             qUtf8Printable(run.out));
}

void tst_ZaxmatCommandLine::helpNamesTheDefaultCatalogue()
{
    const Workshop workshop;
    const Run run = workshop.Zaxmat({"list", "--help"});
    QVERIFY2(run.out.contains('"' + workshop.DataFolder() + "/zaxmat\""), qUtf8Printable(run.out));
    QVERIFY2(run.out.contains("ZAXMAT_CATALOGUE"), qUtf8Printable(run.out));
}

void tst_ZaxmatCommandLine::argumentsAreUtf8()
{
    const Workshop workshop;
    const Run run = workshop.ZaxmatThrough("\"$@\" \"$(printf 'T\\364le')\"", {"add"});
    QCOMPARE(run.err, QString("zaxmat: \"T%1le\" is no UTF-8.\n").arg(QChar(QChar::ReplacementCharacter)));
    QCOMPARE(run.code, 2);
    QVERIFY(!QFile::exists(workshop.CatalogueFile()));
}

void tst_ZaxmatCommandLine::wrongUsageIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("where");
    QTest::newRow("no command") << QStringList{} << "A command is missing."
                                << "zaxmat";
    QTest::newRow("unknown command") << QStringList{"frobnicate"}
                                     << "The following argument was not expected: frobnicate"
                                     << "zaxmat";
    QTest::newRow("unknown option") << QStringList{"list", "--colour"}
                                    << "The following argument was not expected: --colour"
                                    << "zaxmat list";
    QTest::newRow("too many arguments") << QStringList{"show", "A", "B"} << "The following argument was not expected: B"
                                        << "zaxmat show";
    QTest::newRow("show nothing") << QStringList{"show"} << "NAME|KEY is required"
                                  << "zaxmat show";
    QTest::newRow("show an empty name") << QStringList{"show", ""} << "NAME|KEY: must not be empty"
                                        << "zaxmat show";
    QTest::newRow("no material") << QStringList{"use", "--document", "a.zaxdoc"} << "MATERIAL is required"
                                 << "zaxmat use";
    QTest::newRow("no document") << QStringList{"use", "S235JR"} << "--document is required"
                                 << "zaxmat use";
    QTest::newRow("two documents") << QStringList{"use", "S235JR", "--document", "a", "--document", "b"}
                                   << "--document: At Most 1 required but received 2"
                                   << "zaxmat use";
    QTest::newRow("empty document") << QStringList{"use", "S235JR", "--document", ""} << "--document: must not be empty"
                                    << "zaxmat use";
    QTest::newRow("empty catalogue") << QStringList{"list", "--catalogue", ""} << "--catalogue: must not be empty"
                                     << "zaxmat list";
    QTest::newRow("empty thickness") << QStringList{"use", "S235JR", "--document", "a", "--thickness", ""}
                                     << "--thickness: must not be empty"
                                     << "zaxmat use";
    QTest::newRow("empty stock form") << QStringList{"use", "S235JR", "--document", "a", "--packaging", ""}
                                      << "--packaging: must not be empty"
                                      << "zaxmat use";
    QTest::newRow("option without its text")
        << QStringList{"list", "--catalogue"} << "--catalogue: 1 required DIR missing"
        << "zaxmat list";
}

void tst_ZaxmatCommandLine::wrongUsageIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QFETCH(QString, where);
    const Run run = Workshop().Zaxmat(arguments);
    QCOMPARE(run.err, "zaxmat: " + message + "\n\"" + where + " --help\" explains the usage.\n");
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 2);
}

void tst_ZaxmatCommandLine::nothingIsMadeForAWrongCommandLine()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"use", "acrylic-12.7", "--document", "a.zaxdoc", "--color"});
    QCOMPARE(run.code, 2);
    QVERIFY(!QFile::exists(workshop.Path("a.zaxdoc")));
}

void tst_ZaxmatCommandLine::fullStandardOutputIsReported()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.ZaxmatThrough("exec \"$@\" >/dev/full", {"list"});
    QCOMPARE(run.err, "zaxmat: The command is done, but its results cannot be written: No space left on device.\n");
    QCOMPARE(run.code, 3);
}

void tst_ZaxmatCommandLine::closedStandardOutputIsReported()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QByteArray catalogue = Workshop::Read(workshop.CatalogueFile());
    const Run run = workshop.ZaxmatThrough("exec \"$@\" >&-", {"list"});
    QCOMPARE(run.err, "zaxmat: The command is done, but its results cannot be written: Bad file descriptor.\n");
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), catalogue);
}

void tst_ZaxmatCommandLine::closedStandardErrorChangesNothing()
{
    const Workshop workshop;
    workshop.WriteCatalogue({Material("m", "M", {{"materialType", "T"}, {"thickness", 1}})});
    // A note on the missing values goes to the standard error here, which must not end up in the document.
    const QStringList arguments{"use", "m", "--document", "a.zaxdoc"};
    QCOMPARE(workshop.ZaxmatThrough("exec \"$@\" <&- 2>&-", arguments).code, 0);
    const QByteArray document = Workshop::Read(workshop.Path("a.zaxdoc"));
    QVERIFY(!document.isEmpty());
    QVERIFY(!document.contains("note"));
    const Run again = workshop.Zaxmat(arguments);
    QVERIFY2(again.out.endsWith("holds all this already; nothing was written.\n"), qUtf8Printable(again.out));
}

QTEST_GUILESS_MAIN(tst_ZaxmatCommandLine)
#include "tst_ZaxmatCommandLine.moc"
