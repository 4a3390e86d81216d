#include "ZAXSysDefinedValue.h"

#include <QIterable>
#include <QJsonValue>
#include <QLocale>
#include <QMetaSequence>
#include <QSequentialIterable>
#include <QSignalSpy>
#include <QTest>

#include <bit>
#include <cmath>
#include <limits>

static_assert(std::is_base_of_v<ZAXSysValue, ZAXSysLengthValue>);
static_assert(std::is_base_of_v<ZAXSysValue, ZAXSysDensityValue>);
static_assert(!std::is_same_v<ZAXSysLengthValue, ZAXSysDensityValue>);
static_assert(!std::is_convertible_v<double, ZAXSysLengthValue>);

/// An object with a property of each typed value, as a feature has them: the setter takes a double elsewhere.
class Sheet : public QObject
{
    Q_OBJECT
    Q_PROPERTY(ZAXSysLengthValue thickness READ GetThickness WRITE SetThickness)
    Q_PROPERTY(ZAXSysDensityValue density READ GetDensity WRITE SetDensity)

public:
    ZAXSysLengthValue GetThickness() const { return m_thickness; }
    void SetThickness(const ZAXSysLengthValue& thickness)
    {
        m_thickness = thickness;
        ++writes;
    }
    ZAXSysDensityValue GetDensity() const { return m_density; }
    void SetDensity(const ZAXSysDensityValue& density)
    {
        m_density = density;
        ++writes;
    }

    int writes = 0;

private:
    ZAXSysLengthValue m_thickness{0.75};
    ZAXSysDensityValue m_density{7.85};
};

struct NotAValue
{
    double number = 1.0;
};

class tst_ZAXSysDefinedValue : public QObject
{
    Q_OBJECT

private slots:
    void startsAsZeroOfItsQuantity();
    void holdsTheNumberItIsMadeFrom();
    void typesHaveTheirNames();
    void propertyAccepts_data();
    void propertyAccepts();
    void propertyRefuses_data();
    void propertyRefuses();
    void densityPropertyRefusesLengthTexts();
    void invalidVariantWritesTheDefault();
    void variantConvertsToDouble();
    void variantConvertsToText();
    void variantConvertsToNothingElse_data();
    void variantConvertsToNothingElse();
    void textOfAVariantIsReadBackExactly_data();
    void textOfAVariantIsReadBackExactly();
    void variantsWithEqualValuesAreEqual();
    void variantsWithOtherValuesDiffer();
    void variantsAreOrdered();
    void jsonTakesTheText();
    void conversionIsIndependentOfTheLocale();
    void hostHasRegisteredTheSequenceViews();
};

void tst_ZAXSysDefinedValue::startsAsZeroOfItsQuantity()
{
    QCOMPARE(ZAXSysLengthValue().GetQuantity(), ZAXSysQuantity::Length);
    QCOMPARE(ZAXSysLengthValue().GetValue(), 0.0);
    QCOMPARE(ZAXSysDensityValue().GetQuantity(), ZAXSysQuantity::Density);
    QCOMPARE(ZAXSysDensityValue().GetValue(), 0.0);
}

void tst_ZAXSysDefinedValue::holdsTheNumberItIsMadeFrom()
{
    QCOMPARE(ZAXSysLengthValue(2.5).GetValue(), 2.5);
    QCOMPARE(double(ZAXSysDensityValue(7.85)), 7.85);
    QCOMPARE(ZAXSysLengthValue(2.5).ToString(), QStringLiteral("2.5 mm"));
    QCOMPARE(ZAXSysDensityValue(7.85).ToString(), u"7.85 g/cm³"_qs);
}

void tst_ZAXSysDefinedValue::typesHaveTheirNames()
{
    QCOMPARE(QMetaType::fromName("ZAXSysLengthValue"), QMetaType::fromType<ZAXSysLengthValue>());
    QCOMPARE(QMetaType::fromName("ZAXSysDensityValue"), QMetaType::fromType<ZAXSysDensityValue>());
}

void tst_ZAXSysDefinedValue::propertyAccepts_data()
{
    QTest::addColumn<QVariant>("variant");
    QTest::addColumn<double>("thickness");
    QTest::newRow("int") << QVariant(2) << 2.0;
    QTest::newRow("negative int") << QVariant(-2) << -2.0;
    QTest::newRow("uint") << QVariant(4000000000U) << 4000000000.0;
    QTest::newRow("qlonglong, as JSON gives") << QVariant(Q_INT64_C(2)) << 2.0;
    QTest::newRow("largest exact qlonglong") << QVariant(Q_INT64_C(9007199254740992)) << 9007199254740992.0;
    QTest::newRow("qulonglong") << QVariant(Q_UINT64_C(3)) << 3.0;
    QTest::newRow("largest qulonglong") << QVariant(std::numeric_limits<quint64>::max()) << 18446744073709551616.0;
    QTest::newRow("float") << QVariant(0.5F) << 0.5;
    QTest::newRow("float that is no short double") << QVariant(0.1F) << double(0.1F);
    QTest::newRow("double") << QVariant(0.1) << 0.1;
    QTest::newRow("smallest double") << QVariant(5e-324) << 5e-324;
    QTest::newRow("largest double") << QVariant(1.7976931348623157e308) << 1.7976931348623157e308;
    QTest::newRow("its own type") << QVariant::fromValue(ZAXSysLengthValue(1.25)) << 1.25;
    QTest::newRow("text, own form") << QVariant(QStringLiteral("2 mm")) << 2.0;
    QTest::newRow("text, other unit") << QVariant(QStringLiteral("0.5 in")) << 12.7;
    QTest::newRow("text, bare number") << QVariant(QStringLiteral("3")) << 3.0;
    QTest::newRow("text, comma") << QVariant(QStringLiteral("1,5 mm")) << 1.5;
    QTest::newRow("text, spaces") << QVariant(QStringLiteral(" 1.5mm ")) << 1.5;
    QTest::newRow("JSON number") << QJsonValue(2.0).toVariant() << 2.0;
    QTest::newRow("JSON text") << QJsonValue(QStringLiteral("2 mm")).toVariant() << 2.0;
}

void tst_ZAXSysDefinedValue::propertyAccepts()
{
    QFETCH(QVariant, variant);
    QFETCH(double, thickness);
    Sheet sheet;
    QVERIFY(sheet.setProperty("thickness", variant));
    QCOMPARE(sheet.writes, 1);
    QCOMPARE(std::bit_cast<quint64>(sheet.GetThickness().GetValue()), std::bit_cast<quint64>(thickness));
    QCOMPARE(sheet.GetThickness().GetQuantity(), ZAXSysQuantity::Length);
}

void tst_ZAXSysDefinedValue::propertyRefuses_data()
{
    QTest::addColumn<QVariant>("variant");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("JSON null") << QVariant::fromValue(nullptr);
    QTest::newRow("empty text") << QVariant(QString());
    QTest::newRow("other text") << QVariant(QStringLiteral("thick"));
    QTest::newRow("unit of another quantity") << QVariant(u"7.85 g/cm³"_qs);
    QTest::newRow("grouping") << QVariant(QStringLiteral("1,000.5"));
    QTest::newRow("value of another quantity") << QVariant::fromValue(ZAXSysDensityValue(2.0));
    QTest::newRow("infinity") << QVariant(infinity);
    QTest::newRow("negative infinity") << QVariant(-infinity);
    QTest::newRow("not a number") << QVariant(std::nan(""));
    QTest::newRow("infinite float") << QVariant(std::numeric_limits<float>::infinity());
    QTest::newRow("infinity as text") << QVariant(QStringLiteral("inf"));
    QTest::newRow("true") << QVariant(true);
    QTest::newRow("bytes") << QVariant(QByteArray("2"));
    QTest::newRow("character") << QVariant(QChar(u'2'));
    QTest::newRow("list") << QVariant(QVariantList{2.0});
    QTest::newRow("list of texts") << QVariant(QStringList{QStringLiteral("2")});
    QTest::newRow("map") << QVariant(QVariantMap{{QStringLiteral("value"), 2.0}});
    QTest::newRow("unrelated type") << QVariant::fromValue(NotAValue());
}

void tst_ZAXSysDefinedValue::propertyRefuses()
{
    QFETCH(QVariant, variant);
    Sheet sheet;
    QVERIFY(!sheet.setProperty("thickness", variant));
    QCOMPARE(sheet.writes, 0);
    QCOMPARE(sheet.GetThickness(), ZAXSysLengthValue(0.75));
}

void tst_ZAXSysDefinedValue::densityPropertyRefusesLengthTexts()
{
    Sheet sheet;
    QVERIFY(!sheet.setProperty("density", QStringLiteral("2 mm")));
    QCOMPARE(sheet.GetDensity(), ZAXSysDensityValue(7.85));
    QVERIFY(sheet.setProperty("density", u"2700 kg/m³"_qs));
    QCOMPARE(sheet.GetDensity(), ZAXSysDensityValue(2.7));
}

void tst_ZAXSysDefinedValue::invalidVariantWritesTheDefault()
{
    Sheet sheet;
    QVERIFY(sheet.setProperty("thickness", QVariant()));
    QCOMPARE(sheet.GetThickness(), ZAXSysLengthValue());
}

void tst_ZAXSysDefinedValue::variantConvertsToDouble()
{
    const QVariant variant = QVariant::fromValue(ZAXSysLengthValue(0.1));
    bool ok = false;
    QVERIFY(variant.canConvert<double>());
    QCOMPARE(variant.toDouble(&ok), 0.1);
    QVERIFY(ok);
    QCOMPARE(QVariant::fromValue(ZAXSysDensityValue(7.85)).toDouble(), 7.85);
}

void tst_ZAXSysDefinedValue::variantConvertsToText()
{
    QCOMPARE(QVariant::fromValue(ZAXSysLengthValue(2.0)).toString(), QStringLiteral("2 mm"));
    QCOMPARE(QVariant::fromValue(ZAXSysDensityValue(7.85)).toString(), u"7.85 g/cm³"_qs);
}

void tst_ZAXSysDefinedValue::variantConvertsToNothingElse_data()
{
    QTest::addColumn<QMetaType>("type");
    QTest::newRow("int") << QMetaType::fromType<int>();
    QTest::newRow("bool") << QMetaType::fromType<bool>();
    QTest::newRow("bytes") << QMetaType::fromType<QByteArray>();
    QTest::newRow("the other quantity") << QMetaType::fromType<ZAXSysDensityValue>();
}

void tst_ZAXSysDefinedValue::variantConvertsToNothingElse()
{
    QFETCH(QMetaType, type);
    QVariant variant = QVariant::fromValue(ZAXSysLengthValue(2.0));
    QVERIFY(!variant.convert(type));
}

void tst_ZAXSysDefinedValue::textOfAVariantIsReadBackExactly_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("0.1") << 0.1;
    QTest::newRow("1/3") << 1.0 / 3.0;
    QTest::newRow("1e-7") << 1e-7;
    QTest::newRow("5e-324") << 5e-324;
    QTest::newRow("1.7976931348623157e308") << 1.7976931348623157e308;
    QTest::newRow("123456789.123456789") << 123456789.123456789;
    QTest::newRow("0.3048") << 0.3048;
    QTest::newRow("just above 1") << std::nextafter(1.0, 2.0);
}

void tst_ZAXSysDefinedValue::textOfAVariantIsReadBackExactly()
{
    QFETCH(double, number);
    QVariant variant(QVariant::fromValue(ZAXSysLengthValue(number)).toString());
    QVERIFY(variant.convert(QMetaType::fromType<ZAXSysLengthValue>()));
    const double back = variant.value<ZAXSysLengthValue>().GetValue();
    QCOMPARE(std::bit_cast<quint64>(back), std::bit_cast<quint64>(number));
}

void tst_ZAXSysDefinedValue::variantsWithEqualValuesAreEqual()
{
    QVERIFY(QVariant::fromValue(ZAXSysLengthValue(2.0)) == QVariant::fromValue(ZAXSysLengthValue(2.0)));
    QVERIFY(QVariant::fromValue(ZAXSysDensityValue(0.1)) == QVariant::fromValue(ZAXSysDensityValue(0.1)));
}

void tst_ZAXSysDefinedValue::variantsWithOtherValuesDiffer()
{
    const QVariant two = QVariant::fromValue(ZAXSysLengthValue(2.0));
    QVERIFY(two != QVariant::fromValue(ZAXSysLengthValue(std::nextafter(2.0, 3.0))));
    QVERIFY(two != QVariant::fromValue(ZAXSysDensityValue(2.0)));
    QVERIFY(two != QVariant(2.0));
    QVERIFY(two != QVariant());
}

void tst_ZAXSysDefinedValue::variantsAreOrdered()
{
    const QVariant thin = QVariant::fromValue(ZAXSysLengthValue(1.0));
    const QVariant thick = QVariant::fromValue(ZAXSysLengthValue(2.0));
    QVERIFY(QVariant::compare(thin, thick) == QPartialOrdering::Less);
    QVERIFY(QVariant::compare(thick, thin) == QPartialOrdering::Greater);
}

void tst_ZAXSysDefinedValue::jsonTakesTheText()
{
    QCOMPARE(QJsonValue::fromVariant(QVariant::fromValue(ZAXSysLengthValue(2.0))), QJsonValue(QStringLiteral("2 mm")));
    QCOMPARE(QJsonValue::fromVariant(QVariant::fromValue(ZAXSysDensityValue(7.85))), QJsonValue(u"7.85 g/cm³"_qs));
}

void tst_ZAXSysDefinedValue::conversionIsIndependentOfTheLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QString text = QVariant::fromValue(ZAXSysLengthValue(1234.5)).toString();
    Sheet sheet;
    const bool isPointRead = sheet.setProperty("thickness", QStringLiteral("1234.5 mm"));
    QLocale::setDefault(before);
    QCOMPARE(text, QStringLiteral("1234.5 mm"));
    QVERIFY(isPointRead);
    QCOMPARE(sheet.GetThickness(), ZAXSysLengthValue(1234.5));
}

void tst_ZAXSysDefinedValue::hostHasRegisteredTheSequenceViews()
{
    QVERIFY(QMetaType::fromName("QIterable<QMetaSequence>").isValid());
    QVERIFY(QMetaType::fromName("QSequentialIterable").isValid());
}

QTEST_GUILESS_MAIN(tst_ZAXSysDefinedValue)
#include "tst_ZAXSysDefinedValue.moc"
