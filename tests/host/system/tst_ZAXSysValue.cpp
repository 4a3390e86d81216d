#include "ZAXSysValue.h"

#include <QLocale>
#include <QTest>

#include <cmath>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// The bits of a double, so that -0 and 0 differ and a mismatch of the last bit shows.
quint64 BitsOf(double value)
{
    return std::bit_cast<quint64>(value);
}

/// Numbers count by German habits as long as it lives: decimal comma, grouping point.
class GermanLocale
{
public:
    GermanLocale() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    ~GermanLocale() { QLocale::setDefault(m_before); }
    Q_DISABLE_COPY_MOVE(GermanLocale)

private:
    QLocale m_before;
};

void AddHardDoubles()
{
    QTest::addColumn<double>("value");
    QTest::newRow("0") << 0.0;
    QTest::newRow("-0") << -0.0;
    QTest::newRow("1") << 1.0;
    QTest::newRow("0.1") << 0.1;
    QTest::newRow("0.1 + 0.2") << 0.1 + 0.2;
    QTest::newRow("1/3") << 1.0 / 3.0;
    QTest::newRow("2/3") << 2.0 / 3.0;
    QTest::newRow("one inch") << 25.4;
    QTest::newRow("0.3048") << 0.3048;
    QTest::newRow("7.85") << 7.85;
    QTest::newRow("1e-6") << 1e-6;
    QTest::newRow("just below 1e-6") << std::nextafter(1e-6, 0.0);
    QTest::newRow("1e-7") << 1e-7;
    QTest::newRow("123456789.123456789") << 123456789.123456789;
    QTest::newRow("-987654.321") << -987654.321;
    QTest::newRow("2^53 - 1") << 9007199254740991.0;
    QTest::newRow("2^53 + 2") << 9007199254740994.0;
    QTest::newRow("just below 1e15") << std::nextafter(1e15, 0.0);
    QTest::newRow("1e15") << 1e15;
    QTest::newRow("1e22") << 1e22;
    QTest::newRow("1e23") << 1e23;
    QTest::newRow("just above 1") << std::nextafter(1.0, 2.0);
    QTest::newRow("just below 1") << std::nextafter(1.0, 0.0);
    QTest::newRow("smallest denormal") << 5e-324;
    QTest::newRow("largest denormal") << 2.225073858507201e-308;
    QTest::newRow("smallest normal") << 2.2250738585072014e-308;
    QTest::newRow("largest") << 1.7976931348623157e308;
    QTest::newRow("lowest") << -1.7976931348623157e308;
}

} // namespace

class tst_ZAXSysValue : public QObject
{
    Q_OBJECT

private slots:
    void quantitiesHaveTheNumbersOfTheInterface();
    void givesBackWhatItIsMadeFrom();
    void copyAndAssignmentKeepQuantityAndNumber();
    void isEqualOnlyForEqualQuantityAndNumber();
    void notANumberEqualsNothing();
    void isOrderedByQuantityThenNumber();
    void textNamesTheUnit_data();
    void textNamesTheUnit();
    void textIsIndependentOfTheLocale();
    void textIsReadBackToTheSameBits_data() { AddHardDoubles(); }
    void textIsReadBackToTheSameBits();
    void textHasNoMoreDigitsThanNeeded_data() { AddHardDoubles(); }
    void textHasNoMoreDigitsThanNeeded();
    void acceptsLengths_data();
    void acceptsLengths();
    void acceptsDensities_data();
    void acceptsDensities();
    void readsTheSameUnderACommaLocale();
    void refuses_data();
    void refuses();
    void unknownQuantityHasNoUnit();
};

void tst_ZAXSysValue::quantitiesHaveTheNumbersOfTheInterface()
{
    QCOMPARE(static_cast<int>(ZAXSysQuantity::Length), 1);
    QCOMPARE(static_cast<int>(ZAXSysQuantity::Density), 7);
}

void tst_ZAXSysValue::givesBackWhatItIsMadeFrom()
{
    const ZAXSysValue value(ZAXSysQuantity::Density, 7.85);
    QCOMPARE(value.GetQuantity(), ZAXSysQuantity::Density);
    QCOMPARE(value.GetValue(), 7.85);
    QCOMPARE(double(value), 7.85);
}

void tst_ZAXSysValue::copyAndAssignmentKeepQuantityAndNumber()
{
    const ZAXSysValue value(ZAXSysQuantity::Density, 0.25);
    const ZAXSysValue copy(value); // NOLINT(performance-unnecessary-copy-initialization)
    ZAXSysValue assigned(ZAXSysQuantity::Length, 1.0);
    assigned = value;
    QCOMPARE(copy.GetQuantity(), ZAXSysQuantity::Density);
    QCOMPARE(copy.GetValue(), 0.25);
    QCOMPARE(assigned.GetQuantity(), ZAXSysQuantity::Density);
    QCOMPARE(assigned.GetValue(), 0.25);
}

void tst_ZAXSysValue::isEqualOnlyForEqualQuantityAndNumber()
{
    const ZAXSysValue two(ZAXSysQuantity::Length, 2.0);
    QVERIFY(two == ZAXSysValue(ZAXSysQuantity::Length, 2.0));
    QVERIFY(!(two != ZAXSysValue(ZAXSysQuantity::Length, 2.0)));
    QVERIFY(two != ZAXSysValue(ZAXSysQuantity::Length, std::nextafter(2.0, 3.0)));
    QVERIFY(!(two == ZAXSysValue(ZAXSysQuantity::Length, std::nextafter(2.0, 3.0))));
    QVERIFY(two != ZAXSysValue(ZAXSysQuantity::Density, 2.0));
    QVERIFY(!(two == ZAXSysValue(ZAXSysQuantity::Density, 2.0)));
}

void tst_ZAXSysValue::notANumberEqualsNothing()
{
    const ZAXSysValue value(ZAXSysQuantity::Length, std::nan(""));
    QVERIFY(value != value);
    QVERIFY(!(value == value));
}

void tst_ZAXSysValue::isOrderedByQuantityThenNumber()
{
    const ZAXSysValue thin(ZAXSysQuantity::Length, 1.0);
    const ZAXSysValue thick(ZAXSysQuantity::Length, 2.0);
    const ZAXSysValue light(ZAXSysQuantity::Density, 0.1);
    QVERIFY(thin < thick);
    QVERIFY(!(thick < thin));
    QVERIFY(!(thin < thin));
    QVERIFY(thick < light);
    QVERIFY(!(light < thick));
}

void tst_ZAXSysValue::textNamesTheUnit_data()
{
    QTest::addColumn<ZAXSysQuantity>("quantity");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    using enum ZAXSysQuantity;
    QTest::newRow("whole length") << Length << 2.0 << "2 mm";
    QTest::newRow("length") << Length << 0.5 << "0.5 mm";
    QTest::newRow("negative length") << Length << -1.25 << "-1.25 mm";
    QTest::newRow("density") << Density << 7.85 << u"7.85 g/cm³"_qs;
    QTest::newRow("zero") << Length << 0.0 << "0 mm";
    QTest::newRow("third") << Length << 1.0 / 3.0 << "0.3333333333333333 mm";
    QTest::newRow("large, written out") << Length << 1000000.0 << "1000000 mm";
    QTest::newRow("small, written out") << Length << 0.000001 << "0.000001 mm";
    QTest::newRow("largest written out") << Length << 999999999999999.0 << "999999999999999 mm";
    QTest::newRow("smaller than written out") << Length << 1e-7 << "1e-07 mm";
    QTest::newRow("larger than written out") << Length << 1e15 << "1e+15 mm";
}

void tst_ZAXSysValue::textNamesTheUnit()
{
    QFETCH(ZAXSysQuantity, quantity);
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(ZAXSysValue(quantity, value).ToString(), text);
}

void tst_ZAXSysValue::textIsIndependentOfTheLocale()
{
    const GermanLocale german;
    QCOMPARE(QLocale().toString(1234.5), QStringLiteral("1.234,5"));
    QCOMPARE(ZAXSysValue(ZAXSysQuantity::Length, 1234.5).ToString(), QStringLiteral("1234.5 mm"));
}

void tst_ZAXSysValue::textIsReadBackToTheSameBits()
{
    QFETCH(double, value);
    const QString length = ZAXSysValue(ZAXSysQuantity::Length, value).ToString();
    const QString density = ZAXSysValue(ZAXSysQuantity::Density, value).ToString();
    QCOMPARE(BitsOf(ZAXSysValue::FromString(ZAXSysQuantity::Length, length).value()), BitsOf(value));
    QCOMPARE(BitsOf(ZAXSysValue::FromString(ZAXSysQuantity::Density, density).value()), BitsOf(value));
}

void tst_ZAXSysValue::textHasNoMoreDigitsThanNeeded()
{
    QFETCH(double, value);
    const auto digitsIn = [](const QString& number) {
        const QString mantissa = number.section(u'e', 0, 0).remove(u'-').remove(u'.');
        QString digits = mantissa;
        while (digits.startsWith(u'0'))
            digits.remove(0, 1);
        while (digits.endsWith(u'0'))
            digits.chop(1);
        return digits;
    };
    const QString number = ZAXSysValue(ZAXSysQuantity::Length, value).ToString().section(u' ', 0, 0);
    QCOMPARE(digitsIn(number), digitsIn(QString::number(value, 'e', QLocale::FloatingPointShortest)));
}

void tst_ZAXSysValue::acceptsLengths_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("millimetres");
    QTest::newRow("own text form") << "2 mm" << 2.0;
    QTest::newRow("bare number") << "2" << 2.0;
    QTest::newRow("decimal point") << "1.5" << 1.5;
    QTest::newRow("decimal comma") << "1,5" << 1.5;
    QTest::newRow("comma and unit") << "0,5 mm" << 0.5;
    QTest::newRow("no space before the unit") << "3mm" << 3.0;
    QTest::newRow("several spaces before the unit") << "3   mm" << 3.0;
    QTest::newRow("spaces around") << "  3 mm\t" << 3.0;
    QTest::newRow("no-break space") << u"3\u00a0mm"_qs << 3.0;
    QTest::newRow("plus") << "+3" << 3.0;
    QTest::newRow("minus") << "-3 mm" << -3.0;
    QTest::newRow("leading zeros") << "007" << 7.0;
    QTest::newRow("no digit before the point") << ".5" << 0.5;
    QTest::newRow("no digit behind the point") << "5." << 5.0;
    QTest::newRow("no digit behind the comma") << "5, mm" << 5.0;
    QTest::newRow("exponent") << "1.5e3" << 1500.0;
    QTest::newRow("capital exponent") << "1E3 mm" << 1000.0;
    QTest::newRow("signed exponents") << "1e+3" << 1000.0;
    QTest::newRow("negative exponent and unit") << "25e-1cm" << 25.0;
    QTest::newRow("comma and exponent") << "2,5e1" << 25.0;
    QTest::newRow("centimetres") << "2.5 cm" << 25.0;
    QTest::newRow("decimetres") << "1.5 dm" << 150.0;
    QTest::newRow("metres") << "1.5 m" << 1500.0;
    QTest::newRow("micrometres, micro sign") << u"500 µm"_qs << 0.5;
    QTest::newRow("micrometres, Greek letter") << u"500 \u03bcm"_qs << 0.5;
    QTest::newRow("micrometres, Latin letter") << "500 um" << 0.5;
    QTest::newRow("inches") << "0.5 in" << 12.7;
    QTest::newRow("inches, long") << "2 inch" << 50.8;
    QTest::newRow("inches, sign") << "1\"" << 25.4;
    QTest::newRow("inches, comma") << "0,25 in" << 6.35;
    QTest::newRow("feet") << "1 ft" << 304.8;
    QTest::newRow("eight feet") << "8 ft" << 2438.4;
    QTest::newRow("thousandths, mil") << "1000 mil" << 25.4;
    QTest::newRow("thousandths, thou") << "20 thou" << 0.508;
    QTest::newRow("zero") << "0" << 0.0;
    QTest::newRow("largest") << "1.7976931348623157e308" << 1.7976931348623157e308;
    QTest::newRow("large, though its inches count more than doubles can") << "5e306 in" << 1.27e308;
    QTest::newRow("large, though its feet count more than doubles can") << "5e305 ft" << 1.524e308;
    QTest::newRow("largest in a small unit") << "1.7976931348623157e308 um" << 1.7976931348623157e305;
}

void tst_ZAXSysValue::acceptsLengths()
{
    QFETCH(QString, text);
    QFETCH(double, millimetres);
    const auto value = ZAXSysValue::FromString(ZAXSysQuantity::Length, text);
    QVERIFY(value.has_value());
    QCOMPARE(BitsOf(*value), BitsOf(millimetres));
}

void tst_ZAXSysValue::acceptsDensities_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("density");
    QTest::newRow("own text form") << u"7.85 g/cm³"_qs << 7.85;
    QTest::newRow("bare number") << "2,7" << 2.7;
    QTest::newRow("grams per cubic centimetre, digit") << "2.7 g/cm3" << 2.7;
    QTest::newRow("grams per millilitre") << "1.19 g/ml" << 1.19;
    QTest::newRow("kilograms per cubic metre") << u"2700 kg/m³"_qs << 2.7;
    QTest::newRow("kilograms per cubic metre, digit") << "7850 kg/m3" << 7.85;
    QTest::newRow("kilograms per cubic metre, comma") << "0,5 kg/m3" << 0.0005;
    QTest::newRow("kilograms per cubic decimetre") << u"8.96 kg/dm³"_qs << 8.96;
    QTest::newRow("kilograms per cubic decimetre, digit") << "8.96 kg/dm3" << 8.96;
    QTest::newRow("tonnes per cubic metre") << u"4.5 t/m³"_qs << 4.5;
    QTest::newRow("tonnes per cubic metre, digit") << "4.5t/m3" << 4.5;
    QTest::newRow("pounds per cubic inch") << u"1 lb/in³"_qs << 453.59237 / 16.387064;
    QTest::newRow("pounds per cubic inch, digit") << "1 lb/in3" << 453.59237 / 16.387064;
    QTest::newRow("pounds per cubic foot") << u"1 lb/ft³"_qs << 453.59237 / 28316.846592;
    QTest::newRow("pounds per cubic foot, digit") << "1 lb/ft3" << 453.59237 / 28316.846592;
}

void tst_ZAXSysValue::acceptsDensities()
{
    QFETCH(QString, text);
    QFETCH(double, density);
    const auto value = ZAXSysValue::FromString(ZAXSysQuantity::Density, text);
    QVERIFY(value.has_value());
    QCOMPARE(BitsOf(*value), BitsOf(density));
}

void tst_ZAXSysValue::readsTheSameUnderACommaLocale()
{
    const GermanLocale german;
    QCOMPARE(ZAXSysValue::FromString(ZAXSysQuantity::Length, QStringLiteral("1.5 mm")), std::optional(1.5));
    QCOMPARE(ZAXSysValue::FromString(ZAXSysQuantity::Length, QStringLiteral("1,5 mm")), std::optional(1.5));
    QCOMPARE(ZAXSysValue::FromString(ZAXSysQuantity::Length, QStringLiteral("1.500")), std::optional(1.5));
}

void tst_ZAXSysValue::refuses_data()
{
    QTest::addColumn<ZAXSysQuantity>("quantity");
    QTest::addColumn<QString>("text");
    using enum ZAXSysQuantity;
    QTest::newRow("null") << Length << QString();
    QTest::newRow("empty") << Length << "";
    QTest::newRow("spaces") << Length << "   ";
    QTest::newRow("text") << Length << "thick";
    QTest::newRow("unit alone") << Length << "mm";
    QTest::newRow("sign alone") << Length << "-";
    QTest::newRow("point alone") << Length << ".";
    QTest::newRow("comma alone") << Length << ", mm";
    QTest::newRow("exponent alone") << Length << "e5";
    QTest::newRow("exponent without digits") << Length << "1e";
    QTest::newRow("exponent with a sign only") << Length << "1e+";
    QTest::newRow("two signs") << Length << "--1";
    QTest::newRow("sign and space") << Length << "- 1";
    QTest::newRow("two points") << Length << "1.2.3";
    QTest::newRow("grouping points") << Length << "1.000.000";
    QTest::newRow("grouping comma and point") << Length << "1,000.5";
    QTest::newRow("grouping point and comma") << Length << "1.000,5";
    QTest::newRow("grouping space") << Length << "1 000";
    QTest::newRow("grouping apostrophe") << Length << "1'000";
    QTest::newRow("grouping underscore") << Length << "1_000";
    QTest::newRow("two numbers") << Length << "1 2";
    QTest::newRow("two units") << Length << "1 mm mm";
    QTest::newRow("feet and inches") << Length << "1 ft 2 in";
    QTest::newRow("unit first") << Length << "mm 2";
    QTest::newRow("unknown unit") << Length << "2 parsec";
    QTest::newRow("unit in another case") << Length << "2 MM";
    QTest::newRow("unit of density for a length") << Length << "2 g/cm3";
    QTest::newRow("unit of length for a density") << Density << "2 mm";
    QTest::newRow("unit of time") << Length << "2 s";
    QTest::newRow("infinity") << Length << "inf";
    QTest::newRow("infinity with unit") << Length << "inf mm";
    QTest::newRow("negative infinity") << Length << "-inf";
    QTest::newRow("not a number") << Length << "nan";
    QTest::newRow("too large") << Length << "1e309";
    QTest::newRow("too large by its unit") << Length << "1e306 m";
    QTest::newRow("too large by a unit that is a fraction") << Length << "1e308 in";
    QTest::newRow("hexadecimal") << Length << "0x10";
    QTest::newRow("fraction") << Length << "1/2 in";
    QTest::newRow("digits of another script") << Length << u"\u0661\u0662"_qs;
    QTest::newRow("typographic minus") << Length << u"\u22125"_qs;
    QTest::newRow("null character behind") << Length << QString(QLatin1String("2\0", 2));
    QTest::newRow("truth") << Length << "true";
}

void tst_ZAXSysValue::refuses()
{
    QFETCH(ZAXSysQuantity, quantity);
    QFETCH(QString, text);
    QCOMPARE(ZAXSysValue::FromString(quantity, text), std::optional<double>());
}

void tst_ZAXSysValue::unknownQuantityHasNoUnit()
{
    const auto temperature = static_cast<ZAXSysQuantity>(3);
    QCOMPARE(ZAXSysValue(temperature, 20.5).ToString(), QStringLiteral("20.5"));
    QCOMPARE(ZAXSysValue::FromString(temperature, QStringLiteral("20.5")), std::optional<double>());
    QVERIFY(std::isinf(ZAXSysValue(temperature, infinity).GetValue()));
}

QTEST_GUILESS_MAIN(tst_ZAXSysValue)
#include "tst_ZAXSysValue.moc"
