#include "ZAXMatCatalogueReader.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTest>
#include <QThread>

#include <bit>
#include <cmath>
#include <cstring>
#include <memory>

namespace {

/// JSON with single quotes in the place of double ones.
QByteArray Json(QByteArray text)
{
    return text.replace('\'', '"');
}

/// A catalogue of one record with one property, whose value is \a value.
QByteArray CatalogueOf(const QByteArray& value)
{
    return Json("{'k':{'key':'k','properties':{'':{'a':" + value + "}}}}");
}

const QByteArray& Example()
{
    static const QByteArray text =
        Json("{\n    '{a}': {\n        'key': '{a}',\n        'materialKey': '',\n        'name': 'Stål \\'S235\\'',\n"
             "        'properties': {\n            '': {\n                'comment': null,\n"
             "                'density': 7.85,\n                'isActive': true,\n                'thickness': 2\n"
             "            },\n            'GasExtension': {\n                'pressure': -0.5\n            }\n"
             "        },\n        'type': 0\n    },\n    '{b}': {\n        'key': '{b}',\n"
             "        'materialKey': '{a}',\n        'name': 'Sheet',\n        'properties': {\n        },\n"
             "        'type': 1\n    }\n}\n");
    return text;
}

/// All that there is to know about \a value, the bits of a number included.
QByteArray Describe(const QVariant& value)
{
    const QByteArray type(value.metaType().name());
    if (value.typeId() == QMetaType::Double)
        return type + QByteArray::number(std::bit_cast<quint64>(value.toDouble()));
    const QString text = value.toString();
    return type + (text.isNull() ? " null " : " ") + text.toUtf8();
}

QByteArray Describe(const QByteArray& key)
{
    return (key.isNull() ? "null " : "") + key;
}

QList<QByteArray> Describe(const ZAXMatDefinition& record)
{
    QList<QByteArray> description{Describe(record.GetKey()), Describe(record.GetMaterialKey()),
                                  Describe(QVariant(record.GetName())), QByteArray::number(int(record.GetType())),
                                  QByteArray::number(int(record.IsChanged()))};
    const QList<QByteArray> extensions = record.GetDefinedExtensions();
    for (const QByteArray& extension : extensions) {
        description.append("extension " + extension);
        const QList<QByteArray> properties = record.GetDefinedProperties(extension);
        for (const QByteArray& property : properties)
            description.append(property + ' ' + Describe(record.GetValue(property, extension)));
    }
    return description;
}

QList<QList<QByteArray>> Describe(const ZAXMatCatalogueReader::Records& records)
{
    QList<QList<QByteArray>> descriptions;
    for (const ZAXMatDefinition& record : records)
        descriptions.append(Describe(record));
    return descriptions;
}

/// The records of \a text, read in pieces of \a pieceSize bytes.
std::optional<ZAXMatCatalogueReader::Records> Read(QByteArray text, qsizetype pieceSize = 1024)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return ZAXMatCatalogueReader(buffer, pieceSize).Read();
}

/// A device that gives a text up to some byte, and fails from there on.
class Source : public QIODevice
{
public:
    Source(const QByteArray& text, qsizetype size) : m_text(text.first(size)) { open(ReadOnly | Unbuffered); }

    int requests = 0;
    int failures = 0;
    qint64 largestRequest = 0;

protected:
    qint64 readData(char* data, qint64 size) override
    {
        ++requests;
        largestRequest = qMax(largestRequest, size);
        const qint64 given = qMin(size, m_text.size() - m_at);
        if (given == 0) {
            ++failures;
            return -1;
        }
        std::memcpy(data, m_text.constData() + m_at, std::size_t(given));
        m_at += given;
        return given;
    }
    qint64 writeData(const char* /*data*/, qint64 /*size*/) override { return -1; }

private:
    const QByteArray m_text;
    qint64 m_at = 0;
};

/// The records as Qt reads them.
ZAXMatCatalogueReader::Records ReadByQt(const QByteArray& text)
{
    ZAXMatCatalogueReader::Records records;
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    for (auto member = root.begin(); member != root.end(); ++member)
        records.emplace_back().FromJson(member.value());
    return records;
}

bool IsWellFormed(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).isObject();
}

/// A catalogue of \a count records of two kinds in turns, each with its number in all of its values.
QByteArray TwoKinds(int count)
{
    QByteArray text = "{";
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        const QByteArray key = number.rightJustified(6, '0');
        const QByteArray values = i % 2 == 0 ? "{'':{'comment':'c" + number + "','thickness':" + number + ".5}}"
                                             : "{'':{'length':" + number + "},'A':{'cost':" + number + ",'x':null}}";
        text += (i > 0 ? ",'" : "'") + key + "':{'key':'" + key + "','properties':" + values + "}";
    }
    return Json(text + "}");
}

} // namespace

class tst_ZAXMatCatalogueReader : public QObject
{
    Q_OBJECT

private slots:
    void whatCataloguesHoldIsReadAsQtReadsIt_data();
    void whatCataloguesHoldIsReadAsQtReadsIt();
    void theRestIsLeftToQt_data();
    void theRestIsLeftToQt();
    void noMoreIsAskedForThanAPieceTakes();
    void aRecordMayBeLargerThanAPiece();
    void aDeviceThatFailsEndsThere();
    void equalTextsAreShared();
    void recordsOutliveTheOthersOfTheirFile();
    void recordsOfOneFileChangeByThemselves();
    void damagedTextsAreReadAsQtReadsThemOrLeftToQt();
    void randomNumbersAreReadAsQtReadsThem();
};

void tst_ZAXMatCatalogueReader::whatCataloguesHoldIsReadAsQtReadsIt_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* name, const QByteArray& text) { QTest::newRow(name) << text; };
    row("example", Example());
    row("empty", "{}");
    row("empty with space", " \t\r\n{ \t\r\n} \t\r\n");
    row("record without members", Json("{'a':{}}"));
    row("members in another order", Json("{'a':{'type':1,'properties':{},'name':'n','materialKey':'m','key':'a'}}"));
    row("records in another order", Json("{'b':{'key':'k','name':'2'},'':{'key':'k','name':'0'},'a':{'key':'1'}}"));
    row("values in another order", Json("{'a':{'properties':{'B':{'z':1,'a':2},'':{'y':3}}}}"));
    row("a name that begins like another", Json("{'ab':{'key':'1'},'a':{'key':'2'},'abc':{'key':'3'}}"));
    row("tables of all sizes", Json("{'a':{'properties':{'':{},'A':{'a':1},'B':{'a':1,'b':2}}},"
                                    "'b':{'properties':{'':{'a':1},'A':{},'B':{'a':1,'b':2}}}}"));
    for (const char* type : {"0", "1", "2", "-1", "2147483647", "-2147483648", "1.0"})
        row(type, Json("{'a':{'type':") + type + "}}");
    for (const char* value : {"0",
                              "-0",
                              "7",
                              "-7",
                              "0.0",
                              "2.0",
                              "2.00",
                              "2.50",
                              "-2.5",
                              "0.1",
                              "7.85",
                              "0.001",
                              "1219.2",
                              "123456789012345",
                              "-123456789012345",
                              "0.00000000000001",
                              "12345678.9012345",
                              "99999999999999.9",
                              "1234567890123456",
                              "-9007199254740993",
                              "9223372036854775807",
                              "-9223372036854775807",
                              "-9223372036854775808",
                              "9223372036854775808",
                              "123456789012345678901234567890",
                              "0.123456789012345",
                              "7.619999999999999",
                              "-0.30000000000000004",
                              "1234567890123456.0",
                              "9007199254740993.0",
                              "-0.0",
                              "-0e5",
                              "0E-3",
                              "1e3",
                              "1E3",
                              "1e+3",
                              "1.5e-3",
                              "1e-05",
                              "1.5e1",
                              "9.2233720368547747e18",
                              "9.2233720368547758e18",
                              "-9.2233720368547758e18",
                              "1e22",
                              "-2.2250738585072014e-308",
                              "4.9406564584124654e-324",
                              "1.7976931348623157e308",
                              "true",
                              "false",
                              "null",
                              "''",
                              "'a'",
                              "'Stål €'",
                              "'\\'\\\\\\/\\b\\f\\n\\r\\t'",
                              "'å\\n'",
                              "'a b'",
                              "'\xf0\x9f\x94\xa9 \xef\xbc\x88\xef\xbf\xbe\xef\xbf\xbf'",
                              "'x\xef\xbb\xbf'",
                              "'{}[]:,'",
                              "'\x7f'"})
        row(value, CatalogueOf(value));
}

void tst_ZAXMatCatalogueReader::whatCataloguesHoldIsReadAsQtReadsIt()
{
    QFETCH(const QByteArray, text);
    QVERIFY(IsWellFormed(text));
    // Whatever the pieces end in.
    for (qsizetype pieceSize = 1; pieceSize <= text.size() + 1; ++pieceSize) {
        const auto records = Read(text, pieceSize);
        QVERIFY(records);
        QCOMPARE(Describe(*records), Describe(ReadByQt(text)));
    }
}

void tst_ZAXMatCatalogueReader::theRestIsLeftToQt_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* name, const QByteArray& text) { QTest::newRow(name) << text; };
    row("nothing", "");
    row("space", "  \n");
    row("no object", "[]");
    row("byte-order mark", "\xef\xbb\xbf{}");
    row("garbage behind", "{} x");
    row("zero byte behind", QByteArray("{}\0", 3));
    row("zero byte within", QByteArray("{\0}", 3));
    row("second object", "{}{}");
    row("comma at the end", Json("{'a':{},}"));
    row("comma alone", "{,}");
    row("colon missing", Json("{'a' {}}"));
    row("quotes missing", "{a:{}}");
    row("record that is no object", Json("{'a':1}"));
    row("record that is null", Json("{'a':null}"));
    row("unknown member", Json("{'a':{'Key':'a'}}"));
    row("name that is no text", Json("{'a':{'name':1}}"));
    row("key that is no text", Json("{'a':{'key':1}}"));
    row("key with an escape", Json("{'a':{'key':'\\n'}}"));
    row("key beyond ASCII", Json("{'a':{'key':'å'}}"));
    row("member beyond ASCII", Json("{'å':{}}"));
    row("property beyond ASCII", Json("{'a':{'properties':{'':{'å':1}}}}"));
    row("extension beyond ASCII", Json("{'a':{'properties':{'å':{}}}}"));
    row("properties that are no object", Json("{'a':{'properties':[]}}"));
    row("table that is no object", Json("{'a':{'properties':{'':null}}}"));
    row("type a text", Json("{'a':{'type':'1'}}"));
    row("type a fraction", Json("{'a':{'type':1.5}}"));
    row("type beyond an integer", Json("{'a':{'type':2147483648}}"));
    row("type null", Json("{'a':{'type':null}}"));
    row("record twice", Json("{'a':{'key':'1'},'a':{'key':'2'}}"));
    row("record twice, apart", Json("{'a':{'key':'1'},'b':{},'a':{'key':'2'}}"));
    row("member twice", Json("{'a':{'key':'1','key':'2'}}"));
    row("extension twice", Json("{'a':{'properties':{'':{},'':{}}}}"));
    row("property twice", Json("{'a':{'properties':{'':{'a':1,'b':2,'a':3}}}}"));
    for (const char* value : {"[]",
                              "{}",
                              "",
                              "nul",
                              "nulll",
                              "True",
                              "+1",
                              "01",
                              "-",
                              "1.",
                              ".5",
                              "1e",
                              "1e+",
                              "1.e5",
                              "01e5",
                              "1e400",
                              "1e-400",
                              "1e5.0",
                              "1.2.3",
                              "0x10",
                              "NaN",
                              "'",
                              "'\\u00e5'",
                              "'\\ud800'",
                              "'\\x'",
                              "'\\",
                              "'\n'",
                              "'\xc3'",
                              "'\xc3('",
                              "'\xed\xa0\x80'",
                              "'\xef\xbb\xbf'",
                              "'\xef\xbb\xbfx'",
                              "'\xef\xbf\xbd'",
                              "'\xf5\x80\x80\x80'",
                              "'\xff'",
                              "'\xc0\x80'",
                              "tru",
                              "truefalse",
                              "1 2"})
        row(value, CatalogueOf(value));
}

void tst_ZAXMatCatalogueReader::theRestIsLeftToQt()
{
    QFETCH(const QByteArray, text);
    for (const qsizetype pieceSize : {1, 2, 3, 5, 1024})
        QVERIFY(!Read(text, pieceSize));
}

void tst_ZAXMatCatalogueReader::noMoreIsAskedForThanAPieceTakes()
{
    const QByteArray text = TwoKinds(1000);
    Source source(text, text.size());
    const auto records = ZAXMatCatalogueReader(source, 1000).Read();
    QVERIFY(records);
    QCOMPARE(Describe(*records), Describe(ReadByQt(text)));
    QVERIFY(source.requests > text.size() / 1000);
    QCOMPARE(source.largestRequest, 1000);
}

void tst_ZAXMatCatalogueReader::aRecordMayBeLargerThanAPiece()
{
    const QByteArray text = CatalogueOf('"' + QByteArray(100000, 'x') + '"') + QByteArray(5000, ' ');
    Source source(text, text.size());
    const auto records = ZAXMatCatalogueReader(source, 100).Read();
    QVERIFY(records);
    QCOMPARE(records->at(0).GetValue("a").toString().size(), 100000);
    // Twice as much every time.
    QVERIFY(source.requests < 40);
}

void tst_ZAXMatCatalogueReader::aDeviceThatFailsEndsThere()
{
    const QByteArray text = TwoKinds(100);
    Source broken(text, text.size() / 2);
    QVERIFY(!ZAXMatCatalogueReader(broken, 100).Read());
    QCOMPARE(broken.failures, 1);
    Source brokenBehind(text, text.size());
    QVERIFY(ZAXMatCatalogueReader(brokenBehind, 100).Read());
    QCOMPARE(brokenBehind.failures, 1);
}

void tst_ZAXMatCatalogueReader::equalTextsAreShared()
{
    const QByteArray text = Json("{'a':{'name':'Sheet','properties':{'':{'form':'Roll','note':'Stål\\n'}}},"
                                 "'b':{'name':'Sheet','properties':{'':{'form':'Roll','note':'Stål\\n'}}}}");
    // In whatever piece they stand.
    for (const qsizetype pieceSize : {1, 60, 1024}) {
        const auto records = Read(text, pieceSize);
        QVERIFY(records);
        const ZAXMatDefinition& one = records->front();
        const ZAXMatDefinition& other = records->back();
        QCOMPARE(one.GetName().constData(), other.GetName().constData());
        QCOMPARE(one.GetValue("form").toString().constData(), other.GetValue("form").toString().constData());
        QCOMPARE(one.GetValue("note").toString().constData(), other.GetValue("note").toString().constData());
    }
}

void tst_ZAXMatCatalogueReader::recordsOutliveTheOthersOfTheirFile()
{
    QList<ZAXMatDefinition> kept;
    {
        const auto records = Read(TwoKinds(3000));
        QVERIFY(records);
        for (const int i : {0, 1, 15, 16, 40, 1000, 1001, 2999})
            kept.append(records->at(i));
    }
    QCOMPARE(kept.at(0).GetValue("thickness"), QVariant(0.5));
    QCOMPARE(kept.at(1).GetValue("cost", "A"), QVariant(qlonglong(1)));
    QCOMPARE(kept.at(2).GetValue("length"), QVariant(qlonglong(15)));
    QCOMPARE(kept.at(3).GetValue("comment"), QVariant(QStringLiteral("c16")));
    QCOMPARE(kept.at(5).GetValue("thickness"), QVariant(1000.5));
    QCOMPARE(kept.at(7).GetValue("cost", "A"), QVariant(qlonglong(2999)));
    const std::unique_ptr<QThread> thread(QThread::create([&kept] { kept.clear(); }));
    thread->start();
    QVERIFY(thread->wait());
    QVERIFY(kept.isEmpty());
}

void tst_ZAXMatCatalogueReader::recordsOfOneFileChangeByThemselves()
{
    auto records = Read(TwoKinds(100));
    QVERIFY(records);
    const ZAXMatDefinition before = records->at(50);
    (*records)[50].SetValue("thickness", QVariant(7.0));
    (*records)[52].RemoveAllowedProperty("", "thickness");
    (*records)[54].SetValue("density", QVariant(7.85));
    QCOMPARE(before.GetValue("thickness"), QVariant(50.5));
    QCOMPARE(records->at(48).GetValue("thickness"), QVariant(48.5));
    QCOMPARE(records->at(50).GetValue("thickness"), QVariant(7.0));
    QCOMPARE(records->at(52).GetDefinedProperties(""), QList<QByteArray>{"comment"});
    QCOMPARE(records->at(54).GetValue("density"), QVariant(7.85));
    QCOMPARE(records->at(54).GetValue("comment"), QVariant(QStringLiteral("c54")));
    QCOMPARE(records->at(56).GetValue("thickness"), QVariant(56.5));
}

void tst_ZAXMatCatalogueReader::damagedTextsAreReadAsQtReadsThemOrLeftToQt()
{
    constexpr int count = 20000;
    const QByteArray bytes("{}[]:,\"\\ \n\0\xc3\xa5\xef\xed"
                           "0159-.+eEtfn'/ku",
                           29);
    QRandomGenerator random(1);
    int read = 0;
    for (int i = 0; i < count; ++i) {
        QByteArray text = Example();
        for (int damages = random.bounded(1, 4); damages > 0; --damages) {
            const qsizetype at = random.bounded(text.size());
            const qsizetype taken = random.bounded(3);
            text.replace(at, taken, bytes.sliced(random.bounded(bytes.size()), random.bounded(2) * 1));
        }
        const auto records = Read(text, random.bounded(1, 400));
        if (!records)
            continue;
        ++read;
        QVERIFY2(IsWellFormed(text), text.constData());
        QVERIFY2(Describe(*records) == Describe(ReadByQt(text)), text.constData());
    }
    QVERIFY(read > count / 20 && read < count);
}

void tst_ZAXMatCatalogueReader::randomNumbersAreReadAsQtReadsThem()
{
    QRandomGenerator random(1);
    for (int i = 0; i < 20000; ++i) {
        const int digits = random.bounded(1, 16);
        QByteArray number = QByteArray::number(random.generate64() % 1000000000000000).right(digits);
        number.insert(random.bounded(1, int(number.size()) + 1), '.');
        const QByteArray text = CatalogueOf(number.endsWith('.') ? number.chopped(1) : number);
        const auto records = Read(text);
        // A number with a leading zero is none.
        QCOMPARE(records.has_value(), IsWellFormed(text));
        QVERIFY2(!records || Describe(*records) == Describe(ReadByQt(text)), text.constData());
    }
    // As Qt writes them, and with more digits than they have.
    for (int i = 0; i < 20000; ++i) {
        const auto number = std::bit_cast<double>(random.generate64());
        if (!std::isfinite(number))
            continue;
        const QByteArray text = CatalogueOf(QByteArray::number(number, 'g', random.bounded(1, 25)));
        const auto records = Read(text);
        QCOMPARE(records.has_value(), IsWellFormed(text));
        QVERIFY2(!records || Describe(*records) == Describe(ReadByQt(text)), text.constData());
    }
}

QTEST_GUILESS_MAIN(tst_ZAXMatCatalogueReader)
#include "tst_ZAXMatCatalogueReader.moc"
