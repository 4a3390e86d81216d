#include "CatalogueText.h"
#include "Failure.h"
#include "Workshop.h"

#include <QJsonDocument>
#include <QRandomGenerator>
#include <QTest>

using namespace zaxmat;

/// What edits make of the text of a catalogue, record by record.
class tst_CatalogueText : public QObject
{
    Q_OBJECT

private slots:
    void anyEditsGiveTheTextOfTheEditedCatalogue_data();
    void anyEditsGiveTheTextOfTheEditedCatalogue();
    void whatStandsAroundRecordsStays_data();
    void whatStandsAroundRecordsStays();
    void otherTextsAreWrittenAnew_data();
    void otherTextsAreWrittenAnew();
    void whatWouldBeLostIsRefused_data();
    void whatWouldBeLostIsRefused();
    void namesBeyondLatin1Stay();
    void lineBreaksStay();
    void wrongPlacesAreRefused();
};

namespace {

QJsonObject RecordOf(const QString& key, int type, int number)
{
    const QString name = QString("Name \"%1\" ø\n").arg(number);
    return type == 0 ? Material(key, name, {{"thickness", number / 8.0}, {"comment", QJsonValue()}})
                     : StockForm(key, "m", name, {{"cost", number}});
}

ZAXMatDefinition Definition(const QJsonObject& object)
{
    ZAXMatDefinition record;
    record.FromJson(object);
    record.Commit();
    return record;
}

/// The types of records by their keys are the same in all catalogues.
int TypeOf(int i)
{
    return i % 3 == 0 ? 0 : 1;
}

QJsonObject RandomCatalogue(QRandomGenerator& random)
{
    QJsonObject root;
    const int size = random.bounded(6);
    for (int i = 0; i < size; ++i) {
        const int key = random.bounded(10);
        QJsonObject record = RecordOf(QString::number(key), TypeOf(key), random.bounded(100));
        record.insert("note", QJsonArray{1, "not of a record"});
        root.insert(QString::number(key), record);
    }
    return root;
}

QList<RecordEdit> RandomEdits(QRandomGenerator& random, const QJsonObject& root)
{
    QList<RecordEdit> edits;
    for (int key = 0; key < 10; ++key) {
        const QString name = QString::number(key);
        const ZAXMatDefinition before = Definition(root[name].toObject());
        const ZAXMatDefinition after = Definition(RecordOf(name, TypeOf(key), random.bounded(100)));
        switch (random.bounded(4)) {
        case 0:
            edits.append({before, after});
            break;
        case 1:
            if (before.IsValid())
                edits.append({before, {}});
            break;
        default:
            break;
        }
    }
    return edits;
}

QJsonObject Parsed(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

void tst_CatalogueText::anyEditsGiveTheTextOfTheEditedCatalogue_data()
{
    QTest::addColumn<QJsonDocument::JsonFormat>("format");
    QTest::newRow("indented") << QJsonDocument::Indented;
    QTest::newRow("compact") << QJsonDocument::Compact;
}

void tst_CatalogueText::anyEditsGiveTheTextOfTheEditedCatalogue()
{
    QFETCH(QJsonDocument::JsonFormat, format);
    for (quint32 seed = 0; seed < 500; ++seed) {
        QRandomGenerator random(seed);
        const QJsonObject root = RandomCatalogue(random);
        const QList<RecordEdit> edits = RandomEdits(random, root);
        const QByteArray text = EditedCatalogue("x", QJsonDocument(root).toJson(format), edits);
        const QJsonObject edited = Edited(root, edits);
        QVERIFY2(Parsed(text) == edited, qPrintable(QString::number(seed) + '\n' + QString::fromUtf8(text)));
        if (format == QJsonDocument::Indented)
            QCOMPARE(text, QJsonDocument(edited).toJson());
    }
}

void tst_CatalogueText::whatStandsAroundRecordsStays_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("after");
    const QByteArray b =
        "\"b\": {\"key\":\"b\",\"materialKey\":\"\",\"name\":\"B\",\"properties\":{\"\":{}},\"type\":0}";
    const QByteArray a = R"("a" :{"type":0, "key":"a"})";
    const QByteArray c = R"("c":{"type":0,"key":"c" , "properties":{"":{"t":1.50}}})";
    QTest::newRow("added to none") << QByteArray(" { } ") << "b"
                                   << QJsonDocument(QJsonObject{{"b", Parsed('{' + b + '}')["b"]}}).toJson();
    QTest::newRow("added behind") << "\n{ " + a + "\t}\r\n"
                                  << "b"
                                  << "\n{ " + a + ", " + b + "\t}\r\n";
    QTest::newRow("added before") << "{ " + c + "}"
                                  << "b"
                                  << "{ " + b + ", " + c + "}";
    QTest::newRow("added between") << "{" + a + " ,\n" + c + " }"
                                   << "b"
                                   << "{" + a + " ,\n" + b + " ,\n" + c + " }";
    QTest::newRow("removed before") << "{ " + a + " ,\n" + c + " }"
                                    << "-a"
                                    << "{ " + c + " }";
    QTest::newRow("removed behind") << "{ " + a + " ,\n" + c + " }"
                                    << "-c"
                                    << "{ " + a + " }";
    QTest::newRow("the last one removed") << "{ " + a + "}"
                                          << "-a" << QByteArray("{\n}\n");
    QTest::newRow("one that is not there removed") << "{ " + a + "}"
                                                   << "-b"
                                                   << "{ " + a + "}";
}

void tst_CatalogueText::whatStandsAroundRecordsStays()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, key);
    const QString own = QString(key).remove('-');
    const ZAXMatDefinition record = Definition(Material(own, own.toUpper(), {}));
    const RecordEdit edit = key == own ? RecordEdit{{}, record} : RecordEdit{record, {}};
    QTEST(EditedCatalogue("x", before, {edit}), "after");
}

void tst_CatalogueText::otherTextsAreWrittenAnew_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray a = R"({"type":0,"key":"a","name":"A","properties":{}})";
    const QByteArray b = R"({"type":1,"key":"b","materialKey":"a","name":"B","properties":{"":{"cost":1e2}}})";
    QTest::newRow("byte order mark") << "\xEF\xBB\xBF{\"a\":" + a + "}";
    QTest::newRow("large exponents") << "{\"a\":" + a + ",\"b\":" + QByteArray(b).replace("1e2", "1e200") + "}";
    QTest::newRow("other names") << "{\"x\":" + a + ",\"y\":" + b + "}";
    QTest::newRow("another order") << "{\"b\":" + b + ",\"a\":" + a + "}";
    QTest::newRow("what is no record") << "{\"a\":" + a + ",\"b\":7}";
}

void tst_CatalogueText::otherTextsAreWrittenAnew()
{
    QFETCH(QByteArray, text);
    const RecordEdit edit{Definition(Material("a", "A", {})), Definition(Material("a", "New", {}))};
    QCOMPARE(EditedCatalogue("x", text, {edit}), QJsonDocument(Edited(Parsed(text), {edit})).toJson());
}

void tst_CatalogueText::whatWouldBeLostIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    const QByteArray b = R"({"type":0,"key":"b","name":"B","properties":{}})";
    const auto a = [](const QByteArray& properties) {
        return R"({"type":0,"key":"a","name":"A","properties":)" + properties + "}";
    };
    const auto usual = [&](const QByteArray& record) { return "{\"a\":" + record + ",\n\"b\":" + b + "}"; };
    const auto unusual = [&](const QByteArray& record) { return "{\"b\":" + b + ",\n\"a\":" + record + "}"; };
    const QByteArray twice = a(R"({"":{"x":1,"x":2}})");
    const QByteArray half = a(R"({"":{"comment":"\ud800","x":1,"x":2}})");
    QTest::newRow("twice") << usual(twice) << "holds \"x\" twice (line 1, column 61)";
    QTest::newRow("twice, written anew") << unusual(twice) << "holds \"x\" twice (line 2, column 60)";
    QTest::newRow("half a pair, written anew")
        << unusual(half) << "cannot be changed without loss: a text holds the number of no character (line 2, ";
    QTest::newRow("a list of properties") << usual(a("[1, 2]")) << "The record \"a\" holds something other than values";
    QTest::newRow("a list of values") << usual(a(R"({"":{},"X":[7]})"))
                                      << "The record \"a\" holds something other than values";
}

void tst_CatalogueText::whatWouldBeLostIsRefused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    const RecordEdit edit{Definition(Material("a", "A", {})), Definition(Material("a", "New", {}))};
    try {
        EditedCatalogue("x", text, {edit});
        QFAIL("It was written.");
    } catch (const Failure& failure) {
        QVERIFY2(failure.GetMessage().contains(message), qUtf8Printable(failure.GetMessage()));
    }
}

void tst_CatalogueText::namesBeyondLatin1Stay()
{
    const QByteArray text =
        R"({"a":{"key":"a","materialKey":"","name":"A","properties":{"":{"Ψ":2,"Ωmega":1}},"type":0}})";
    const ZAXMatDefinition before = Definition(Parsed(text)["a"].toObject());
    ZAXMatDefinition after = before;
    after.SetName("B");
    QCOMPARE(EditedCatalogue("x", text, {{before, after}}), QByteArray(text).replace("\"A\"", "\"B\""));
}

void tst_CatalogueText::lineBreaksStay()
{
    const QByteArray text = QJsonDocument(QJsonObject{{"a", RecordOf("a", 0, 1)}, {"b", RecordOf("b", 0, 2)}}).toJson();
    const RecordEdit edit{Definition(RecordOf("a", 0, 1)), Definition(RecordOf("a", 0, 3))};
    QCOMPARE(EditedCatalogue("x", QByteArray(text).replace("\n", "\r\n"), {edit}),
             EditedCatalogue("x", text, {edit}).replace("\n", "\r\n"));
}

void tst_CatalogueText::wrongPlacesAreRefused()
{
    const QByteArray text = QJsonDocument(QJsonObject{{"a", RecordOf("a", 1, 2)}}).toJson();
    const RecordEdit edit{{}, Definition(Material("a", "A", {}))};
    QVERIFY_THROWS_EXCEPTION(Failure, EditedCatalogue("x", text, {edit}));
    QVERIFY_THROWS_EXCEPTION(Failure, EditedCatalogue("x", "{", {edit}));
}

QTEST_GUILESS_MAIN(tst_CatalogueText)
#include "tst_CatalogueText.moc"
