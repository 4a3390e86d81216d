#include "Workshop.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

/// The help of every command, and what is made of it: the manual page and the completion.
class tst_ZaxmatHelp : public QObject
{
    Q_OBJECT

private slots:
    void everyCommandExplainsItself_data();
    void everyCommandExplainsItself();
    void examplesWorkOneAfterTheOther();
    void manualHasWhatTheHelpSays_data();
    void manualHasWhatTheHelpSays();
    void manualDoesNotNameTheHome();
    void manualIsCleanRoff();
    void completionKnowsTheCommandLine_data();
    void completionKnowsTheCommandLine();
    void completionIsForBashOnly();
};

namespace {

Run Help(const QStringList& command)
{
    return Workshop().Zaxmat(command + QStringList{"--help"});
}

/// The words that lead to each command, those below a command behind it.
QList<QStringList> CommandsBelow(const QStringList& command)
{
    static const QRegularExpression line("^  ([a-z]+) ");
    const QString help = Help(command).out;
    QList<QStringList> commands;
    for (const QString& text :
         help.section("Subcommands:\n", 1).section("\n\n", 0, 0).split('\n', Qt::SkipEmptyParts)) {
        const QStringList below = command + QStringList{line.match(text).captured(1)};
        commands << below << CommandsBelow(below);
    }
    return commands;
}

void AddCommandRows()
{
    QTest::addColumn<QStringList>("command");
    for (const QStringList& command : CommandsBelow({}))
        QTest::newRow(qUtf8Printable(command.join(' '))) << command;
}

/// The examples at the end of a help.
QStringList ExamplesOf(const QStringList& command)
{
    QStringList examples;
    for (const QString& line : Help(command).out.section("\nExamples:\n", 1).split('\n', Qt::SkipEmptyParts))
        examples.append(line.trimmed());
    return examples;
}

/// A folder as the examples expect it.
class ExampleFolder : public Workshop
{
public:
    ExampleFolder()
    {
        environment.insert("ZAXMAT_CATALOGUE", "examples/catalogue");
        environment.insert("PATH", QFileInfo(ZAXMAT_PROGRAM).path() + ':' + environment.value("PATH"));
        QDir().mkpath(Path("examples/catalogue"));
        Write(Path("examples/catalogue/materials.json"), Read(ZAX_EXAMPLES "/catalogue/materials.json"));
        Shell("zaxmat use --document job.zaxdoc S235JR --thickness 2 --packaging 'Sheet 1250 x 2500' "
              "--catalogue examples/catalogue");
        Shell("zaxmat export prices.csv --catalogue examples/catalogue");
    }

    Run Shell(const QString& line) const { return ZaxmatThrough(line, {}); }
};

} // namespace

void tst_ZaxmatHelp::everyCommandExplainsItself_data()
{
    AddCommandRows();
}

void tst_ZaxmatHelp::everyCommandExplainsItself()
{
    QFETCH(QStringList, command);
    const Run run = Help(command);
    QCOMPARE(run.code, 0);
    QVERIFY2(run.out.contains("\nUsage: zaxmat " + command.join(' ')), qUtf8Printable(run.out));
    for (const auto* const option : {"--help", "--format", "--quiet", "--unit"})
        QVERIFY2(run.out.contains(option), option);
    const QStringList examples = ExamplesOf(command);
    QVERIFY(!examples.isEmpty());
    for (const QString& example : examples)
        QVERIFY2(example.startsWith("zaxmat " + command.join(' ')), qUtf8Printable(example));
}

void tst_ZaxmatHelp::examplesWorkOneAfterTheOther()
{
    const ExampleFolder folder;
    for (const QStringList& command : CommandsBelow({})) {
        for (const QString& example : ExamplesOf(command)) {
            const Run run = folder.Shell(example);
            QVERIFY2(run.code == 0, qUtf8Printable(example + '\n' + run.out + run.err));
        }
    }
}

void tst_ZaxmatHelp::manualHasWhatTheHelpSays_data()
{
    AddCommandRows();
}

void tst_ZaxmatHelp::manualHasWhatTheHelpSays()
{
    QFETCH(QStringList, command);
    QString manual = Workshop().Zaxmat({"manual"}).out;
    manual.replace("\\-", "-").replace("\\(dq", "\"").replace("\\(ti", "~");
    QVERIFY(manual.contains(".SS \"zaxmat " + command.join(' ') + ' '));
    for (const QString& example : ExamplesOf(command))
        QVERIFY2(manual.contains('\n' + example + '\n'), qUtf8Printable(example));
    static const QRegularExpression option("--[a-z-]+");
    for (auto match = option.globalMatch(Help(command).out.section("Examples:", 0, 0)); match.hasNext();) {
        const QString name = match.next().captured();
        QVERIFY2(manual.contains(name), qUtf8Printable(name));
    }
}

void tst_ZaxmatHelp::manualDoesNotNameTheHome()
{
    Workshop workshop;
    workshop.environment.remove("XDG_DATA_HOME");
    const Run run = workshop.Zaxmat({"manual"});
    QVERIFY(run.out.contains("\\(dq\\(ti/.local/share/zaxmat\\(dq"));
    QVERIFY(!run.out.contains(workshop.Path("")));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatHelp::manualIsCleanRoff()
{
    const QString manual = Workshop().Zaxmat({"manual"}).out;
    QVERIFY(manual.startsWith(".TH ZAXMAT 1 "));
    QVERIFY(manual.contains("\n.SH \"Exit codes\"\n"));
    QVERIFY(manual.contains("ZAXMAT_CATALOGUE"));
    QCOMPARE(manual.count("\n.nf\n"), manual.count("\n.fi\n"));
    static const QRegularExpression unknownRequest("^(?!\\.(TH|SH|SS|TP|PP|B|RS|RE|nf|fi)\\b)[.'].*",
                                                   QRegularExpression::MultilineOption);
    const auto match = unknownRequest.match(manual);
    QVERIFY2(!match.hasMatch(), qUtf8Printable(match.captured()));
}

void tst_ZaxmatHelp::completionKnowsTheCommandLine_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("replies");
    QTest::newRow("command") << QStringList{"do"} << "document";
    QTest::newRow("command below a command") << QStringList{"document", "t"} << "tree";
    QTest::newRow("commands below a command")
        << QStringList{"document", ""} << "tree show set duplicate remove validate store";
    QTest::newRow("option") << QStringList{"use", "--thi"} << "--thickness";
    QTest::newRow("word of an option") << QStringList{"list", "--format", "j"} << "json";
    QTest::newRow("words of an option") << QStringList{"list", "--format", ""} << "table json csv";
    QTest::newRow("word behind an equals sign") << QStringList{"list", "--format", "=", "c"} << "csv";
    QTest::newRow("word of an option before the command") << QStringList{"--unit", "m"} << "mm";
    QTest::newRow("command behind an option") << QStringList{"--unit", "mm", "manu"} << "manual";
    QTest::newRow("command behind a switch") << QStringList{"--quiet", "manu"} << "manual";
    QTest::newRow("file") << QStringList{"document", "tree", "j"} << "job.zaxdoc";
    QTest::newRow("file of an option") << QStringList{"use", "S235JR", "--document", "j"} << "job.zaxdoc";
    QTest::newRow("folder") << QStringList{"list", "--catalogue", "ex"} << "examples";
    QTest::newRow("no file where an object is named") << QStringList{"document", "show", "job.zaxdoc", "j"} << "";
    QTest::newRow("property") << QStringList{"document", "set", "job.zaxdoc", "@2", "thi"} << "thickness=";
    QTest::newRow("second property") << QStringList{"document", "set", "job.zaxdoc", "@2", "thickness", "=", "2", "wi"}
                                     << "width=";
    QTest::newRow("shell") << QStringList{"completion", ""} << "bash";
    QTest::newRow("nothing of the kind") << QStringList{"frob"} << "";
}

void tst_ZaxmatHelp::completionKnowsTheCommandLine()
{
    QFETCH(QStringList, words);
    QFETCH(QString, replies);
    const ExampleFolder folder;
    Workshop::Write(folder.Path("complete"),
                    folder.Zaxmat({"completion", "bash"}).out.toUtf8() +
                        "COMP_WORDS=(zaxmat \"$@\"); COMP_CWORD=$#; _zaxmat; echo \"${COMPREPLY[*]}\"\n");
    const Run run = folder.ZaxmatThrough("shift; exec bash complete \"$@\"", words);
    QCOMPARE(run.err, "");
    QCOMPARE(run.out, replies + '\n');
}

void tst_ZaxmatHelp::completionIsForBashOnly()
{
    const Run run = Workshop().Zaxmat({"completion", "fish"});
    QCOMPARE(run.err, "zaxmat: bash: There is a script for bash only.\n\"zaxmat completion --help\" explains the "
                      "usage.\n");
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 2);
}

QTEST_GUILESS_MAIN(tst_ZaxmatHelp)
#include "tst_ZaxmatHelp.moc"
