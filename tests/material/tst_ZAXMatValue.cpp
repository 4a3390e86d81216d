#include "ZAXMatValue.h"
#include "ZAXMatValueEquality.h"

#include <QDateTime>
#include <QTest>

#include <cmath>
#include <limits>
#include <utility>

namespace {

/// Values of all sorts, with what is special about each.
const QList<std::pair<const char*, QVariant>>& Samples()
{
    static const double nan = std::numeric_limits<double>::quiet_NaN();
    static const QList<std::pair<const char*, QVariant>> samples{
        {"nothing", QVariant()},
        {"null of JSON", QVariant::fromValue(nullptr)},
        {"null pointer type without a value", QVariant(QMetaType(QMetaType::Nullptr))},
        {"true", QVariant(true)},
        {"false", QVariant(false)},
        {"truth value without a value", QVariant(QMetaType(QMetaType::Bool))},
        {"one", QVariant(1)},
        {"long one", QVariant(qlonglong(1))},
        {"unsigned one", QVariant(1u)},
        {"least integer", QVariant(std::numeric_limits<qlonglong>::min())},
        {"long without a value", QVariant(QMetaType(QMetaType::LongLong))},
        {"one as a number", QVariant(1.0)},
        {"half", QVariant(0.5)},
        {"zero", QVariant(0.0)},
        {"zero below", QVariant(-0.0)},
        {"not a number", QVariant(nan)},
        {"infinity", QVariant(std::numeric_limits<double>::infinity())},
        {"float", QVariant(0.5F)},
        {"number without a value", QVariant(QMetaType(QMetaType::Double))},
        {"text", QVariant(QStringLiteral("Steel"))},
        {"other text", QVariant(QStringLiteral("steel"))},
        {"text of a number", QVariant(QStringLiteral("1"))},
        {"empty text", QVariant(QStringLiteral(""))},
        {"null text", QVariant(QString())},
        {"text without a value", QVariant(QMetaType(QMetaType::QString))},
        {"bytes", QVariant(QByteArray("Steel"))},
        {"list", QVariant(QVariantList{1, QStringLiteral("a")})},
        {"list with what is not a number", QVariant(QVariantList{nan})},
        {"map", QVariant(QVariantMap{{QStringLiteral("a"), 1}})},
        {"date", QVariant(QDate(2026, 1, 2))},
    };
    return samples;
}

void AddSamples()
{
    QTest::addColumn<QVariant>("value");
    for (const auto& [name, value] : Samples())
        QTest::newRow(name) << value;
}

} // namespace

/// Compiled into this program, since the library keeps it to itself.
class tst_ZAXMatValue : public QObject
{
    Q_OBJECT

private slots:
    void atFirstItIsNothing();
    void itGivesTheVariantThatItWasMadeFrom_data() { AddSamples(); }
    void itGivesTheVariantThatItWasMadeFrom();
    void copiesAndMovesKeepTheValue_data() { AddSamples(); }
    void copiesAndMovesKeepTheValue();
    void numbersAreMadeWithoutAVariant();
    void onlyAWholeNumberIsAnInteger_data();
    void onlyAWholeNumberIsAnInteger();
    void valuesAreTheSameWhereTheirVariantsAre_data() { AddSamples(); }
    void valuesAreTheSameWhereTheirVariantsAre();
    void itTakesHalfTheRoomOfAVariant();
};

void tst_ZAXMatValue::atFirstItIsNothing()
{
    QVERIFY(!ZAXMatValue().ToVariant().isValid());
}

void tst_ZAXMatValue::itGivesTheVariantThatItWasMadeFrom()
{
    QFETCH(const QVariant, value);
    const QVariant read = ZAXMatValue(value).ToVariant();
    QCOMPARE(read.metaType(), value.metaType());
    QCOMPARE(read.isValid(), value.isValid());
    QCOMPARE(read.isNull(), value.isNull());
    QCOMPARE(read.toString(), value.toString());
    QCOMPARE(read.toString().isNull(), value.toString().isNull());
    QCOMPARE(read == value, value == value);
    QCOMPARE(std::signbit(read.toDouble()), std::signbit(value.toDouble()));
}

void tst_ZAXMatValue::copiesAndMovesKeepTheValue()
{
    QFETCH(const QVariant, value);
    const QString text = value.toString();
    ZAXMatValue a(value);
    ZAXMatValue b(a);
    QCOMPARE(b.ToVariant().toString(), text);
    ZAXMatValue c(std::move(b));
    QCOMPARE(c.ToVariant().metaType(), value.metaType());
    QCOMPARE(c.ToVariant().toString(), text);
    a = ZAXMatValue(QVariant(QStringLiteral("other")));
    QCOMPARE(c.ToVariant().toString(), text);
    a = c;
    c = ZAXMatValue();
    QCOMPARE(a.ToVariant().toString(), text);
    const ZAXMatValue& itself = a;
    a = itself;
    QCOMPARE(a.ToVariant().metaType(), value.metaType());
    QCOMPARE(a.ToVariant().toString(), text);
}

void tst_ZAXMatValue::numbersAreMadeWithoutAVariant()
{
    QCOMPARE(ZAXMatValue(nullptr).ToVariant(), QVariant::fromValue(nullptr));
    QCOMPARE(ZAXMatValue(true).ToVariant(), QVariant(true));
    QCOMPARE(ZAXMatValue(false).ToVariant(), QVariant(false));
    QCOMPARE(ZAXMatValue(qlonglong(-7)).ToVariant(), QVariant(qlonglong(-7)));
    QCOMPARE(ZAXMatValue(0.1).ToVariant(), QVariant(0.1));
}

void tst_ZAXMatValue::onlyAWholeNumberIsAnInteger_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("isInteger");
    QTest::newRow("whole") << QVariant(qlonglong(7)) << true;
    QTest::newRow("zero") << QVariant(qlonglong(0)) << true;
    QTest::newRow("a number") << QVariant(7.0) << false;
    QTest::newRow("a truth value") << QVariant(true) << false;
    QTest::newRow("a text") << QVariant(QStringLiteral("7")) << false;
    QTest::newRow("nothing") << QVariant() << false;
}

void tst_ZAXMatValue::onlyAWholeNumberIsAnInteger()
{
    QFETCH(const QVariant, value);
    QFETCH(const bool, isInteger);
    const auto integer = ZAXMatValue(value).ToInteger();
    QCOMPARE(integer.has_value(), isInteger);
    QCOMPARE(integer.value_or(value.toLongLong()), value.toLongLong());
}

void tst_ZAXMatValue::valuesAreTheSameWhereTheirVariantsAre()
{
    QFETCH(const QVariant, value);
    const ZAXMatValue stored(value);
    for (const auto& [name, other] : Samples()) {
        const bool isSame = ZAXMatIsSameValue(value, other);
        QVERIFY2(stored.IsSame(other) == isSame, name);
        QVERIFY2(stored.IsSame(ZAXMatValue(other)) == isSame, name);
    }
    QCOMPARE(stored.IsSame(ZAXMatValue(stored)), ZAXMatIsSameValue(value, value));
}

void tst_ZAXMatValue::itTakesHalfTheRoomOfAVariant()
{
    QVERIFY(2 * sizeof(ZAXMatValue) <= sizeof(QVariant));
}

QTEST_GUILESS_MAIN(tst_ZAXMatValue)
#include "tst_ZAXMatValue.moc"
