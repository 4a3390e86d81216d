#include "ZAXMatCatalogueWriter.h"

#include <QIODevice>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTest>

#include <bit>
#include <climits>
#include <limits>

namespace {

using Result = ZAXMatCatalogueWriter::Result;
using Members = std::vector<ZAXMatCatalogueWriter::Member>;

/// What QJsonDocument makes of \a members.
QByteArray WriteByQt(const Members& members)
{
    QJsonObject root;
    for (const auto& [name, record] : members)
        root.insert(QString::fromUtf8(name), record->ToJson());
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

/// A device that takes so many pieces.
class Target : public QIODevice
{
public:
    explicit Target(int pieceCount = INT_MAX) : m_pieceCount(pieceCount) { open(WriteOnly | Unbuffered); }

    QList<QByteArray> pieces;
    int refusals = 0;

protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override
    {
        if (pieces.size() == m_pieceCount) {
            ++refusals;
            return size - 1;
        }
        pieces.append(QByteArray(data, size));
        return size;
    }

private:
    const int m_pieceCount;
};

QByteArray Write(const Members& members)
{
    Target target;
    return ZAXMatCatalogueWriter(target).Write(members) == Result::Written ? target.pieces.join() : "none";
}

ZAXMatDefinition RecordWith(const QVariant& value)
{
    ZAXMatDefinition record;
    record.SetValue("value", value);
    return record;
}

} // namespace

class tst_ZAXMatCatalogueWriter : public QObject
{
    Q_OBJECT

private slots:
    void recordsAreWrittenAsQtWritesThem();
    void anEmptyCatalogueIsWrittenAsQtWritesIt();
    void theLastOfSeveralMembersOfANameCounts();
    void aPieceEndsBehindTheRecordThatFillsIt();
    void nothingIsWrittenBehindARefusal();
    void valuesAreWrittenAsQtWritesThem_data();
    void valuesAreWrittenAsQtWritesThem();
    void namesAndKeysAreWrittenAsQtWritesThem_data();
    void namesAndKeysAreWrittenAsQtWritesThem();
    void randomNumbersAreWrittenAsQtWritesThem();
    void theRestIsLeftToQt_data();
    void theRestIsLeftToQt();
};

void tst_ZAXMatCatalogueWriter::recordsAreWrittenAsQtWritesThem()
{
    ZAXMatDefinition steel;
    steel.SetKey("{b}");
    steel.SetName(QString::fromUtf8("Stål \"S235\"\n"));
    for (const char* property : {"thickness", "density", "comment", "Density", "density2", ""})
        steel.SetValue(property, QLatin1String(property));
    steel.SetValue("pressure", 2.5, "GasExtension");
    steel.AddAllowedProperty("EmptyExtension", "x");
    steel.RemoveAllowedProperty("EmptyExtension", "x");
    ZAXMatDefinition sheet;
    sheet.SetKey("{a}");
    sheet.SetMaterialKey("{b}");
    sheet.SetType(ZAXMatDefinition::Packaging);
    const ZAXMatDefinition nothing;
    const Members members{{"{b}", &steel}, {"{a}", &sheet}, {"", &nothing}, {"{aa}", &sheet}, {"Z", &steel}};
    QCOMPARE(Write(members), WriteByQt(members));
}

void tst_ZAXMatCatalogueWriter::anEmptyCatalogueIsWrittenAsQtWritesIt()
{
    QCOMPARE(Write({}), WriteByQt({}));
}

void tst_ZAXMatCatalogueWriter::theLastOfSeveralMembersOfANameCounts()
{
    const ZAXMatDefinition one = RecordWith(1);
    const ZAXMatDefinition two = RecordWith(2);
    const Members members{{"a", &one}, {"b", &one}, {"a", &two}};
    QCOMPARE(Write(members), WriteByQt(members));
    QCOMPARE(Write(members), WriteByQt({{"a", &two}, {"b", &one}}));
}

void tst_ZAXMatCatalogueWriter::aPieceEndsBehindTheRecordThatFillsIt()
{
    const ZAXMatDefinition record = RecordWith(1);
    Members members;
    for (int i = 0; i < 100; ++i)
        members.emplace_back(QByteArray::number(1000 + i), &record);
    const QByteArray text = WriteByQt(members);
    const qsizetype recordSize = text.size() / 100;
    for (const qsizetype pieceSize : {qsizetype(1), recordSize, 10 * recordSize, 200 * recordSize}) {
        Target target;
        QCOMPARE(ZAXMatCatalogueWriter(target, pieceSize).Write(members), Result::Written);
        QCOMPARE(target.pieces.join(), text);
        const QByteArray last = target.pieces.takeLast();
        QVERIFY(last.endsWith("\n}\n"));
        for (const QByteArray& piece : std::as_const(target.pieces)) {
            QVERIFY(piece.endsWith('}'));
            QVERIFY(piece.size() >= pieceSize && piece.size() < pieceSize + 2 * recordSize);
        }
    }
}

void tst_ZAXMatCatalogueWriter::nothingIsWrittenBehindARefusal()
{
    const ZAXMatDefinition record = RecordWith(1);
    const Members members{{"a", &record}, {"b", &record}, {"c", &record}};
    for (int pieceCount = 0; pieceCount < 4; ++pieceCount) {
        Target target(pieceCount);
        QCOMPARE(ZAXMatCatalogueWriter(target, 1).Write(members), Result::Refused);
        QCOMPARE(target.pieces.size(), pieceCount);
        QCOMPARE(target.refusals, 1);
    }
    // The three records and the end.
    QCOMPARE(ZAXMatCatalogueWriter(*std::make_unique<Target>(4), 1).Write(members), Result::Written);
}

void tst_ZAXMatCatalogueWriter::valuesAreWrittenAsQtWritesThem_data()
{
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char* name, const QVariant& value) { QTest::newRow(name) << value; };
    const auto text = [](const char* name, const QString& value) { QTest::newRow(name) << QVariant(value); };
    using Doubles = std::numeric_limits<double>;
    row("nothing", QVariant());
    row("null of JSON", QVariant::fromValue(nullptr));
    row("true", true);
    row("false", false);
    row("integer", 7);
    row("negative integer", -7);
    row("unsigned integer", 7U);
    row("long integer", std::numeric_limits<qlonglong>::max());
    row("smallest long integer", std::numeric_limits<qlonglong>::min());
    row("unsigned long integer", std::numeric_limits<qulonglong>::max());
    row("fraction", 7.85);
    row("whole double", 2.0);
    row("zero", 0.0);
    row("negative zero", -0.0);
    row("small", 1e-300);
    row("smallest", Doubles::denorm_min());
    row("just below 1e15", 999999999999999.0);
    row("1e15", 1e15);
    row("2 to the 53", 9007199254740992.0);
    row("2 to the 63", 9223372036854775808.0);
    row("large", 1e300);
    row("negative large", -1e300);
    row("infinite", Doubles::infinity());
    row("not a number", Doubles::quiet_NaN());
    row("float", 0.1F);
    row("bytes", QByteArray("ab"));
    row("date", QDate(2020, 2, 29));
    text("no text", QString());
    text("text", QLatin1String("Sheet 1000 x 2000"));
    text("quotes", QLatin1String("48\" \\ /"));
    text("control characters", QLatin1String("\b\f\n\r\t\x01\x1f\x7f"));
    text("zero", QString(QChar::Null));
    text("beyond ASCII", QString::fromUtf8("Stål €"));
    text("last before the surrogates", QString(QChar(0xd7ff)));
    text("beyond the surrogates", QString(QChar(0xe000)) + QChar(0xfeff) + QChar(0xffff));
    text("beyond 16 bits", QString::fromUtf8("🔩"));
    text("lone surrogate", QString(QChar(0xd800)) + u'a');
}

void tst_ZAXMatCatalogueWriter::valuesAreWrittenAsQtWritesThem()
{
    QFETCH(const QVariant, value);
    ZAXMatDefinition record = RecordWith(value);
    record.SetName(value.toString());
    const Members members{{"a", &record}};
    QCOMPARE(Write(members), WriteByQt(members));
}

void tst_ZAXMatCatalogueWriter::namesAndKeysAreWrittenAsQtWritesThem_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("quotes") << QByteArray("a\"b\\");
    QTest::newRow("control characters") << QByteArray("\n\0\x1f\x7f", 4);
    QTest::newRow("space") << QByteArray(" a ");
}

void tst_ZAXMatCatalogueWriter::namesAndKeysAreWrittenAsQtWritesThem()
{
    QFETCH(const QByteArray, bytes);
    ZAXMatDefinition record;
    record.SetValue(bytes, 1, bytes);
    record.SetValue("a", 2, bytes);
    record.SetKey(bytes + "\xc3\xa5");
    record.SetMaterialKey(bytes + "\xe5");
    const Members members{{bytes, &record}, {"a", &record}};
    QCOMPARE(Write(members), WriteByQt(members));
}

void tst_ZAXMatCatalogueWriter::randomNumbersAreWrittenAsQtWritesThem()
{
    QRandomGenerator random(1);
    ZAXMatDefinition record;
    for (int i = 0; i < 20000; ++i) {
        const QByteArray name = QByteArray::number(i % 100);
        record.SetValue(name, std::bit_cast<double>(random.generate64()), "any bits");
        record.SetValue(name, random.bounded(1e6), "usual");
        record.SetValue(name, random.bounded(10000) / 100.0, "prices");
        if (i % 100 != 99)
            continue;
        const Members members{{"a", &record}};
        QCOMPARE(Write(members), WriteByQt(members));
    }
}

void tst_ZAXMatCatalogueWriter::theRestIsLeftToQt_data()
{
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<QByteArray>("extension");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("member beyond ASCII") << QByteArray("\xc3\xa5") << QByteArray() << QByteArray() << QVariant();
    QTest::newRow("extension beyond ASCII") << QByteArray() << QByteArray("\xe5") << QByteArray() << QVariant();
    QTest::newRow("property beyond ASCII") << QByteArray() << QByteArray() << QByteArray("\xe5") << QVariant();
    QTest::newRow("list") << QByteArray() << QByteArray() << QByteArray() << QVariant(QVariantList{1});
    QTest::newRow("texts") << QByteArray() << QByteArray() << QByteArray() << QVariant(QStringList{QLatin1String("a")});
    QTest::newRow("what is left out") << QByteArray() << QByteArray() << QByteArray()
                                      << QVariant::fromValue(QJsonValue(QJsonValue::Undefined));
    QTest::newRow("map") << QByteArray() << QByteArray() << QByteArray() << QVariant(QVariantMap());
}

void tst_ZAXMatCatalogueWriter::theRestIsLeftToQt()
{
    QFETCH(const QByteArray, member);
    QFETCH(const QByteArray, extension);
    QFETCH(const QByteArray, property);
    QFETCH(const QVariant, value);
    ZAXMatDefinition record;
    record.SetValue(property, value, extension);
    Target target;
    QCOMPARE(ZAXMatCatalogueWriter(target).Write({{member, &record}}), Result::Unusual);
    // What comes before may have been written by then.
    const ZAXMatDefinition nothing;
    QCOMPARE(ZAXMatCatalogueWriter(target, 1).Write({{"", &nothing}, {member + 'b', &record}}), Result::Unusual);
    QCOMPARE(target.pieces.size(), 1);
}

QTEST_GUILESS_MAIN(tst_ZAXMatCatalogueWriter)
#include "tst_ZAXMatCatalogueWriter.moc"
