#include "Workshop.h"

#include <QDir>
#include <QFile>
#include <QTest>

Q_DECLARE_METATYPE(QProcessEnvironment)

/// Which catalogue the commands work on, and what they say about one that they cannot work on.
class tst_ZaxmatCatalogue : public QObject
{
    Q_OBJECT

private slots:
    void isTakenFromTheDataFolder_data();
    void isTakenFromTheDataFolder();
    void isTakenFromTheEnvironment();
    void optionGoesBeforeTheEnvironment();
    void relativeFolderIsUnderstood();
    void anEmptyObjectIsAnEmptyCatalogue();
    void recordsOfOtherTypesAreLeftOut();
    void damagedFileIsRefused_data();
    void damagedFileIsRefused();
    void otherThingsThanFilesAreRefused_data();
    void otherThingsThanFilesAreRefused();
    void unreadableFileIsRefused_data();
    void unreadableFileIsRefused();
};

namespace {

/// The closing line of "list".
QString Counts(const QString& file, int materials, int stockForms)
{
    return QString("Catalogue \"%1\": materials: %2, stock forms: %3\n")
        .arg(file, QString::number(materials), QString::number(stockForms));
}

QString HowToChoose()
{
    return "Name the folder of a catalogue with --catalogue DIR or in ZAXMAT_CATALOGUE.\n";
}

} // namespace

void tst_ZaxmatCatalogue::isTakenFromTheDataFolder_data()
{
    QTest::addColumn<QProcessEnvironment>("without");
    QProcessEnvironment none = Workshop().environment;
    none.remove("ZAXMAT_CATALOGUE");
    QTest::newRow("no variable") << none;
    QProcessEnvironment empty = none;
    empty.insert("ZAXMAT_CATALOGUE", "");
    QTest::newRow("an empty variable") << empty;
}

void tst_ZaxmatCatalogue::isTakenFromTheDataFolder()
{
    QFETCH(QProcessEnvironment, without);
    Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const QString folder = workshop.DataFolder() + "/zaxmat";
    QDir().mkpath(folder);
    QVERIFY(QFile::rename(workshop.CatalogueFile(), folder + "/materials.json"));
    without.insert("XDG_DATA_HOME", workshop.DataFolder());
    workshop.environment = without;
    const Run run = workshop.Zaxmat({"list"});
    QVERIFY2(run.out.endsWith(Counts(folder + "/materials.json", 3, 4)), qUtf8Printable(run.out + run.err));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatCatalogue::isTakenFromTheEnvironment()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"list"});
    QVERIFY2(run.out.endsWith(Counts(workshop.CatalogueFile(), 3, 4)), qUtf8Printable(run.out + run.err));
}

void tst_ZaxmatCatalogue::optionGoesBeforeTheEnvironment()
{
    Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    workshop.environment.insert("ZAXMAT_CATALOGUE", workshop.Path("elsewhere"));
    const Run run = workshop.Zaxmat({"list", "--catalogue", workshop.CatalogueFolder()});
    QVERIFY2(run.out.endsWith(Counts(workshop.CatalogueFile(), 3, 4)), qUtf8Printable(run.out + run.err));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatCatalogue::relativeFolderIsUnderstood()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat({"list", "--catalogue", "catalogue ø"});
    QVERIFY2(run.out.endsWith(Counts("catalogue ø/materials.json", 3, 4)), qUtf8Printable(run.out + run.err));
}

void tst_ZaxmatCatalogue::anEmptyObjectIsAnEmptyCatalogue()
{
    const Workshop workshop;
    workshop.WriteCatalogue({});
    const Run run = workshop.Zaxmat({"list"});
    QVERIFY2(run.out.endsWith(Counts(workshop.CatalogueFile(), 0, 0)), qUtf8Printable(run.out + run.err));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatCatalogue::recordsOfOtherTypesAreLeftOut()
{
    const Workshop workshop;
    QJsonObject other = Material("other", "Other", {});
    other["type"] = 3;
    workshop.WriteCatalogue({other, Material("one", "One", {})});
    const Run run = workshop.Zaxmat({"list"});
    QVERIFY2(run.out.endsWith(Counts(workshop.CatalogueFile(), 1, 0)), qUtf8Printable(run.out + run.err));
}

void tst_ZaxmatCatalogue::damagedFileIsRefused_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("why");
    const QStringList list{"list"};
    QTest::newRow("empty") << list << QByteArray("") << "illegal value at line 1, column 1";
    QTest::newRow("no JSON") << list << QByteArray("hello") << "illegal value at line 1, column 1";
    QTest::newRow("in the second line, behind an ø")
        << list << QByteArray("{ \"a\": 1,\n  \"ø\": tru }") << "illegal value at line 2, column 11";
    QTest::newRow("a comma too much") << list << QByteArray("{\n\"a\": 1,\n}")
                                      << "object is missing after a comma at line 3, column 1";
    QTest::newRow("a comma missing") << list << QByteArray("{\r\n\"a\": 1\r\n\"b\": 2\r\n}")
                                     << "unterminated object at line 3, column 1";
    QTest::newRow("cut off") << list << QByteArray("{\n\"a\": { \"b\"") << "unterminated string at line 2, column 10";
    QTest::newRow("a second object") << list << QByteArray("{}\n{}")
                                     << "garbage at the end of the document at line 1, column 3";
    QTest::newRow("an array") << list << QByteArray("[]") << "it holds no JSON object";
    QTest::newRow("show") << QStringList{"show", "S235JR"} << QByteArray("{")
                          << "unterminated object at line 1, column 1";
    QTest::newRow("use") << QStringList{"use", "S235JR", "--document", "a.zaxdoc"} << QByteArray("{")
                         << "unterminated object at line 1, column 1";
}

void tst_ZaxmatCatalogue::damagedFileIsRefused()
{
    QFETCH(QStringList, command);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, why);
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), bytes);
    const Run run = workshop.Zaxmat(command);
    QCOMPARE(run.err, QString("zaxmat: The catalogue \"%1\" is damaged: %2.\n"
                              "Correct it, or put a good copy in its place. Nothing is written to \"%1\" until it can "
                              "be read.\n")
                          .arg(workshop.CatalogueFile(), why));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), bytes);
    QVERIFY(!QFile::exists(workshop.Path("a.zaxdoc")));
}

void tst_ZaxmatCatalogue::otherThingsThanFilesAreRefused_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("a folder") << "mkdir \"$ZAXMAT_CATALOGUE/materials.json\"; exec \"$@\"";
    QTest::newRow("a pipe") << "mkfifo \"$ZAXMAT_CATALOGUE/materials.json\"; exec \"$@\"";
    QTest::newRow("an endless device") << "ln -s /dev/zero \"$ZAXMAT_CATALOGUE/materials.json\"; exec \"$@\"";
}

void tst_ZaxmatCatalogue::otherThingsThanFilesAreRefused()
{
    QFETCH(QString, script);
    const Workshop workshop;
    const Run run = workshop.ZaxmatThrough(script, {"list"});
    QCOMPARE(run.err,
             QString("zaxmat: The catalogue \"%1\" cannot be read: it is no file.\n").arg(workshop.CatalogueFile()) +
                 HowToChoose());
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
}

void tst_ZaxmatCatalogue::unreadableFileIsRefused_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("why");
    const QString missing = "rm \"$ZAXMAT_CATALOGUE/materials.json\"; exec \"$@\"";
    const QString missingFolder = "rm -r \"$ZAXMAT_CATALOGUE\"; exec \"$@\"";
    const QString forbidden = "chmod 0 \"$ZAXMAT_CATALOGUE/materials.json\"; " + Workshop::AsOrdinaryUser();
    const QString forbiddenFolder = "chmod 0 \"$ZAXMAT_CATALOGUE\"; " + Workshop::AsOrdinaryUser();
    const QStringList list{"list"};
    const QStringList show{"show", "S235JR"};
    const QStringList use{"use", "acrylic-12.7", "--document", "a.zaxdoc"};
    QTest::newRow("list, no file") << list << missing << "No such file or directory";
    QTest::newRow("show, no file") << show << missing << "No such file or directory";
    QTest::newRow("use, no file") << use << missing << "No such file or directory";
    QTest::newRow("no folder") << list << missingFolder << "No such file or directory";
    QTest::newRow("list, not allowed") << list << forbidden << "Permission denied";
    QTest::newRow("use, not allowed") << use << forbidden << "Permission denied";
    QTest::newRow("folder not allowed") << list << forbiddenFolder << "Permission denied";
}

void tst_ZaxmatCatalogue::unreadableFileIsRefused()
{
    QFETCH(QStringList, command);
    QFETCH(QString, script);
    QFETCH(QString, why);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.ZaxmatThrough(script, command);
    QCOMPARE(run.err, QString("zaxmat: The catalogue \"%1\" cannot be read: %2.\n").arg(workshop.CatalogueFile(), why) +
                          HowToChoose());
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
    QVERIFY(!QFile::exists(workshop.Path("a.zaxdoc")));
}

QTEST_GUILESS_MAIN(tst_ZaxmatCatalogue)
#include "tst_ZaxmatCatalogue.moc"
