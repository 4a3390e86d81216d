#include "Workshop.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

/// The walk through the tool in README.md, line by line.
class tst_ZaxmatReadme : public QObject
{
    Q_OBJECT

private slots:
    void theWalkWorks();
};

namespace {

/// The lines of the first shell block below the heading "The tool".
QStringList Walk()
{
    const QString readme = QString::fromUtf8(Workshop::Read(ZAX_README));
    return readme.section("\n## The tool\n", 1).section("```sh\n", 1).section("\n```", 0, 0).split('\n');
}

/// The exit code that the remark of a line announces, "(exit code 2)"; else that of success.
int ExpectedCode(const QString& line)
{
    static const QRegularExpression announced("\\(exit code (\\d)\\)$");
    return announced.match(line).captured(1).toInt();
}

/// A folder with what a clone has when it was built.
class Clone : public Workshop
{
public:
    Clone()
    {
        environment.remove("ZAXMAT_CATALOGUE");
        QDir().mkpath(Path("build/release/bin"));
        QDir().mkpath(Path("examples/catalogue"));
        QFile::link(ZAXMAT_PROGRAM, Path("build/release/bin/zaxmat"));
        Write(Path("examples/catalogue/materials.json"), Read(ZAX_EXAMPLES "/catalogue/materials.json"));
    }
};

} // namespace

void tst_ZaxmatReadme::theWalkWorks()
{
    const Clone clone;
    const QStringList lines = Walk();
    QVERIFY(lines.size() > 5);
    const QString preparation = lines[0] + '\n' + lines[1];
    QVERIFY2(lines[1].startsWith("export "), qUtf8Printable(preparation));
    for (const QString& line : lines.sliced(2)) {
        const Run run = clone.ZaxmatThrough(preparation + '\n' + line, {});
        QVERIFY2(run.code == ExpectedCode(line), qUtf8Printable(line + '\n' + run.out + run.err));
    }
}

QTEST_GUILESS_MAIN(tst_ZaxmatReadme)
#include "tst_ZaxmatReadme.moc"
