#include "Workshop.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

class tst_ZaxmatDiff : public QObject
{
    Q_OBJECT

private slots:
    void findsNothingBetweenEqualCatalogues();
    void showsRecordsAndFields();
    void namesAValueByItsKindWhereTheTextsAreTheSame();
    void takesAValueThatIsNullForNone();
    void printsJson();
    void printsCsv();
    void comparesFilesToo();
    void displaysLengthsInInches();
    void leavesBothCataloguesAlone();
    void refusesWhatItCannotRead_data();
    void refusesWhatItCannotRead();
};

namespace {

/// Two folders with catalogues, the first one the small one.
struct Pair
{
    explicit Pair(const QList<QJsonObject>& changed)
    {
        workshop.WriteCatalogue(changed);
        QDir().mkpath(workshop.Path("before ø"));
        QFile::rename(workshop.CatalogueFile(), after());
        workshop.WriteCatalogue(SmallCatalogue());
        QFile::copy(workshop.CatalogueFile(), before());
        QFile::remove(workshop.CatalogueFile());
        QFile::copy(after(), workshop.CatalogueFile());
    }

    QString before() const { return workshop.Path("before ø/materials.json"); }
    QString after() const { return workshop.Path("after ø.json"); }
    Run Diff(const QStringList& options = {}) const
    {
        return workshop.Zaxmat(QStringList{"diff", workshop.Path("before ø"), workshop.CatalogueFolder()} + options);
    }

    Workshop workshop;
};

QList<QJsonObject> ChangedCatalogue()
{
    QList<QJsonObject> records = SmallCatalogue();
    QJsonObject properties = records[0]["properties"].toObject();
    QJsonObject base = properties[""].toObject();
    base["thickness"] = 2.5;
    base.remove("comment");
    properties[""] = base;
    properties["Gas"] = QJsonObject{{"pressure", 12}};
    records[0]["properties"] = properties;
    records[1]["name"] = "Sheet, small";
    records.removeAt(2);
    records.append(StockForm("new", "steel-3", "Coil", {{"form", "Roll"}}));
    return records;
}

} // namespace

void tst_ZaxmatDiff::findsNothingBetweenEqualCatalogues()
{
    const Pair pair(SmallCatalogue());
    const Run run = pair.Diff();
    QCOMPARE(run.out, "The catalogues hold the same.\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 0);
    QCOMPARE(pair.Diff({"--quiet"}).out, "");
    QCOMPARE(pair.Diff({"--format", "json"}).out.simplified(), "[ ]");
}

void tst_ZaxmatDiff::showsRecordsAndFields()
{
    const Pair pair(ChangedCatalogue());
    const Run run = pair.Diff();
    QCOMPARE(run.out, "Change   Record                    Property      Old          New           Key\n"
                      "-------  ------------------------  ------------  -----------  ------------  -------------\n"
                      "changed  Structural steel, 2.5 mm  comment       EN 10025-2   -             steel-2\n"
                      "changed  Structural steel, 2.5 mm  thickness     2 mm         2.5 mm        steel-2\n"
                      "changed  Structural steel, 2.5 mm  Gas.pressure  -            12            steel-2\n"
                      "added    Coil                                                               new\n"
                      "changed  Sheet, small              name          Sheet small  Sheet, small  steel-2-small\n"
                      "removed  Sheet large                                                        steel-2-large\n"
                      "\n"
                      "Records added: 1, removed: 1, changed: 2\n");
    QCOMPARE(run.err, "");
    QCOMPARE(run.code, 1);
}

void tst_ZaxmatDiff::namesAValueByItsKindWhereTheTextsAreTheSame()
{
    QList<QJsonObject> records = SmallCatalogue();
    records[0] = Material("steel-2", "Structural steel",
                          {{"materialType", "S235JR"},
                           {"thickness", "2"},
                           {"category", "Metal"},
                           {"density", 7.85},
                           {"comment", "EN 10025-2"}});
    const Run run = Pair(records).Diff();
    QVERIFY2(run.out.contains("changed  Structural steel, 2 mm  thickness  2    \"2\"  steel-2\n"),
             qUtf8Printable(run.out));
    QCOMPARE(run.code, 1);
}

void tst_ZaxmatDiff::takesAValueThatIsNullForNone()
{
    QList<QJsonObject> records = SmallCatalogue();
    QJsonObject properties = records[0]["properties"].toObject();
    properties.insert("Gas", QJsonObject{{"pressure", QJsonValue()}});
    records[0]["properties"] = properties;
    QCOMPARE(Pair(records).Diff().code, 0);
}

void tst_ZaxmatDiff::printsJson()
{
    const Run run = Pair(ChangedCatalogue()).Diff({"--format", "json"});
    const QJsonArray rows = QJsonDocument::fromJson(run.out.toUtf8()).array();
    QCOMPARE(rows.size(), 6);
    QCOMPARE(rows[1].toObject(), (QJsonObject{{"change", "changed"},
                                              {"type", "material"},
                                              {"key", "steel-2"},
                                              {"name", "Structural steel"},
                                              {"property", "thickness"},
                                              {"old", 2},
                                              {"new", 2.5}}));
    QCOMPARE(rows[2].toObject()["old"], QJsonValue(QJsonValue::Null));
    QCOMPARE(rows[3].toObject()["type"], QJsonValue("stock form"));
    QCOMPARE(rows[3].toObject()["change"], QJsonValue("added"));
    QCOMPARE(run.code, 1);
}

void tst_ZaxmatDiff::printsCsv()
{
    const Run run = Pair(ChangedCatalogue()).Diff({"--format", "csv"});
    QVERIFY2(run.out.startsWith("change,type,name,property,old,new,key\r\n"
                                "changed,material,Structural steel,comment,EN 10025-2,,steel-2\r\n"
                                "changed,material,Structural steel,thickness,2,2.5,steel-2\r\n"),
             qUtf8Printable(run.out));
}

void tst_ZaxmatDiff::comparesFilesToo()
{
    const Pair pair(ChangedCatalogue());
    QCOMPARE(pair.workshop.Zaxmat({"diff", pair.before(), pair.after()}).out, pair.Diff().out);
}

void tst_ZaxmatDiff::displaysLengthsInInches()
{
    QList<QJsonObject> records = SmallCatalogue();
    records[6] =
        Material("acrylic-12.7", "Acrylic, cast",
                 {{"materialType", "PMMA"}, {"thickness", 25.4}, {"category", "Plastic"}, {"density", "1190 kg/m³"}});
    const Pair pair(records);
    const Run run = pair.Diff({"--unit", "in"});
    QVERIFY2(run.out.contains("0.5 in  1 in"), qUtf8Printable(run.out));
    const Run json = pair.Diff({"--unit", "in", "--format", "json"});
    QCOMPARE(QJsonDocument::fromJson(json.out.toUtf8())[0]["new"], QJsonValue(25.4));
}

void tst_ZaxmatDiff::leavesBothCataloguesAlone()
{
    const Pair pair(ChangedCatalogue());
    const QByteArray before = Workshop::Read(pair.before());
    const QByteArray after = Workshop::Read(pair.workshop.CatalogueFile());
    pair.Diff();
    QCOMPARE(Workshop::Read(pair.before()), before);
    QCOMPARE(Workshop::Read(pair.workshop.CatalogueFile()), after);
    QCOMPARE(QDir(pair.workshop.CatalogueFolder()).entryList(QDir::Files), QStringList{"materials.json"});
}

void tst_ZaxmatDiff::refusesWhatItCannotRead_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    QTest::newRow("damaged") << QByteArray("{\"a\": }") << QString("is damaged");
    QTest::newRow("no object") << QByteArray("[]") << QString("it holds no JSON object");
}

void tst_ZaxmatDiff::refusesWhatItCannotRead()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, message);
    const Pair pair(SmallCatalogue());
    Workshop::Write(pair.workshop.CatalogueFile(), bytes);
    const Run run = pair.Diff();
    QCOMPARE(run.out, "");
    QVERIFY2(run.err.contains(message), qUtf8Printable(run.err));
    QCOMPARE(run.code, 3);
    QCOMPARE(pair.workshop.Zaxmat({"diff", pair.before(), pair.workshop.Path("nowhere")}).code, 3);
    QCOMPARE(pair.workshop.Zaxmat({"diff", pair.before()}).code, 2);
}

QTEST_GUILESS_MAIN(tst_ZaxmatDiff)
#include "tst_ZaxmatDiff.moc"
