#include "RecordScan.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace zaxmat;

/// What is read of a catalogue without parsing it must be what the parser would have read.
class tst_RecordScan : public QObject
{
    Q_OBJECT

private slots:
    void recordsAreFound_data();
    void recordsAreFound();
    void unusualTextsAreLeftToTheParser_data();
    void unusualTextsAreLeftToTheParser();
    void everyDamageIsLeftToTheParser_data();
    void everyDamageIsLeftToTheParser();
};

namespace {

const QByteArray usual =
    "{\n    \"a\": {\n        \"key\": \"a\",\n        \"materialKey\": \"\",\n        \"name\": "
    "\"\xC3\xB8 \\\"x\\\"\",\n        \"properties\": { \"\": { \"t\": -2.5, \"c\": null, \"l\": [1, "
    "[], {}, true] } },\n        \"type\": 0\n    },\n    \"b\": {\"type\":1,\"key\":\"b\","
    "\"materialKey\":\"a\",\"properties\":{}}\n}\n";

} // namespace

void tst_RecordScan::recordsAreFound_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("two") << usual;
    QTest::newRow("small exponents") << QByteArray(R"({"k":{"key":"k","a":1e-07,"b":-2.5E+99,"type":0}})");
    QTest::newRow("control characters") << QByteArray(R"({"k":{"key":"k","a":"\u0001\u001f","type":0}})");
    QTest::newRow("line breaks of others")
        << QByteArray(usual).replace("\n", "\r\n").replace("\"type\": 0", "\"type\": 0\t");
    QTest::newRow("none") << QByteArray("{}");
    QTest::newRow("with spaces") << QByteArray(" { \"k\" :\t{ \"key\" : \"k\" , \"type\" : 1 } } \r\n");
    QTest::newRow("compact") << QJsonDocument::fromJson(usual).toJson(QJsonDocument::Compact);
}

void tst_RecordScan::recordsAreFound()
{
    QFETCH(QByteArray, text);
    const auto places = ScanRecords(text);
    QVERIFY(places);
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    QCOMPARE(qsizetype(places->size()), root.size());
    for (const RecordPlace& place : *places) {
        const QJsonObject record = root[QString::fromUtf8(place.key)].toObject();
        QCOMPARE(QJsonDocument::fromJson(place.text.toByteArray()).object(), record);
        QCOMPARE(QString::fromUtf8(place.materialKey), record["materialKey"].toString());
        QCOMPARE(place.isMaterial, record["type"].toInt() == 0);
    }
}

void tst_RecordScan::unusualTextsAreLeftToTheParser_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* name, const QByteArray& text) { QTest::newRow(name) << text; };
    const QByteArray k = R"({"key":"k","type":0})";
    row("nothing", "");
    row("an array", "[]");
    row("a byte order mark", "\xEF\xBB\xBF{}");
    row("something behind it", "{}{}");
    row("a comma at the end", "{\"k\":" + k + ",}");
    row("the same name twice", "{\"k\":" + k + ",\"k\":" + k + "}");
    row("out of order", R"({"l":{"key":"l","type":0},"k":)" + k + "}");
    row("a name that is not the key", "{\"j\":" + k + "}");
    row("a key beyond ASCII", "{\"\xC3\xB8\":{\"key\":\"\xC3\xB8\",\"type\":0}}");
    row("a key with an escape", R"({"\n":{"key":"\n","type":0}})");
    row("no key", R"({"":{"key":"","type":0}})");
    row("no type", R"({"k":{"key":"k"}})");
    row("another type", R"({"k":{"key":"k","type":3}})");
    row("a type with a fraction", R"({"k":{"key":"k","type":0.5}})");
    row("a type of two digits", R"({"k":{"key":"k","type":01}})");
    row("the key twice", R"({"k":{"key":"k","key":"k","type":0}})");
    row("no record", R"({"k":5})");
    row("a large exponent", R"({"k":{"key":"k","a":1e100,"type":0}})");
    row("no exponent", R"({"k":{"key":"k","a":1e,"type":0}})");
    row("the number of a letter", R"({"k":{"key":"k","a":"\u0041","type":0}})");
    row("the number of no character", R"({"k":{"key":"k","a":"\u001","type":0}})");
    row("a long number", R"({"k":{"key":"k","a":)" + QByteArray(50, '1') + R"(,"type":0}})");
    row("a leading zero", R"({"k":{"key":"k","a":01,"type":0}})");
    row("no digits", R"({"k":{"key":"k","a":-,"type":0}})");
    row("no fraction", R"({"k":{"key":"k","a":1.,"type":0}})");
    row("a line break in a string", "{\"k\":{\"key\":\"k\",\"a\":\"\n\",\"type\":0}}");
    row("an unknown escape", R"({"k":{"key":"k","a":"\x","type":0}})");
    row("half a surrogate pair", R"({"k":{"key":"k","a":"\ud800","type":0}})");
    row("no UTF-8", "{\"k\":{\"key\":\"k\",\"a\":\"\xF8\",\"type\":0}}");
    row("too long UTF-8", "{\"k\":{\"key\":\"k\",\"a\":\"\xC0\xAF\",\"type\":0}}");
    row("a surrogate in UTF-8", "{\"k\":{\"key\":\"k\",\"a\":\"\xED\xA0\x80\",\"type\":0}}");
    row("beyond Unicode", "{\"k\":{\"key\":\"k\",\"a\":\"\xF4\x90\x80\x80\",\"type\":0}}");
    row("a deep one", "{\"k\":{\"key\":\"k\",\"a\":" + QByteArray(2000, '[') + QByteArray(2000, ']') + ",\"type\":0}}");
    row("a half word", R"({"k":{"key":"k","a":tru,"type":0}})");
}

void tst_RecordScan::unusualTextsAreLeftToTheParser()
{
    QFETCH(QByteArray, text);
    QVERIFY(!ScanRecords(text));
}

void tst_RecordScan::everyDamageIsLeftToTheParser_data()
{
    QTest::addColumn<char>("byte");
    for (const char byte : QByteArray("\"{}[],:\\x0 \xC3\x01"))
        QTest::addRow("%d", int(byte)) << byte;
}

void tst_RecordScan::everyDamageIsLeftToTheParser()
{
    QFETCH(char, byte);
    for (qsizetype i = 0; i < usual.size(); ++i) {
        QByteArray replaced = usual;
        replaced[i] = byte;
        const QByteArray cut = usual.first(i);
        for (const QByteArray& text : {replaced, cut, cut + usual.sliced(i + 1), cut + byte + usual.sliced(i)})
            QVERIFY2(!ScanRecords(text) || QJsonDocument::fromJson(text).isObject(), text.constData());
    }
}

QTEST_APPLESS_MAIN(tst_RecordScan)
#include "tst_RecordScan.moc"
