#include "ZAXSysValue.h"

#include <QByteArray>
#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// A unit and its size as a fraction of the internal unit. A fraction, since 2700 / 1000 is 2.7 while 2700 * 0.001
/// is not.
struct Unit
{
    ZAXSysQuantity quantity;
    const char* name;
    double numerator;
    double denominator;
};

// Inch, foot and mil are exact by the international yard of 1959; pound per cubic inch and cubic foot follow from
// the pound of 453.59237 g.
constexpr std::array units{
    Unit{ZAXSysQuantity::Length, "mm", 1, 1},
    Unit{ZAXSysQuantity::Length, "cm", 10, 1},
    Unit{ZAXSysQuantity::Length, "dm", 100, 1},
    Unit{ZAXSysQuantity::Length, "m", 1000, 1},
    Unit{ZAXSysQuantity::Length, "µm", 1, 1000},
    Unit{ZAXSysQuantity::Length, "μm", 1, 1000}, // the Greek letter, as some keyboards give it
    Unit{ZAXSysQuantity::Length, "um", 1, 1000},
    Unit{ZAXSysQuantity::Length, "in", 254, 10},
    Unit{ZAXSysQuantity::Length, "inch", 254, 10},
    Unit{ZAXSysQuantity::Length, "\"", 254, 10},
    Unit{ZAXSysQuantity::Length, "ft", 3048, 10},
    Unit{ZAXSysQuantity::Length, "mil", 254, 10000},
    Unit{ZAXSysQuantity::Length, "thou", 254, 10000},
    Unit{ZAXSysQuantity::Density, "g/cm³", 1, 1},
    Unit{ZAXSysQuantity::Density, "g/cm3", 1, 1},
    Unit{ZAXSysQuantity::Density, "g/ml", 1, 1},
    Unit{ZAXSysQuantity::Density, "kg/dm³", 1, 1},
    Unit{ZAXSysQuantity::Density, "kg/dm3", 1, 1},
    Unit{ZAXSysQuantity::Density, "t/m³", 1, 1},
    Unit{ZAXSysQuantity::Density, "t/m3", 1, 1},
    Unit{ZAXSysQuantity::Density, "kg/m³", 1, 1000},
    Unit{ZAXSysQuantity::Density, "kg/m3", 1, 1000},
    Unit{ZAXSysQuantity::Density, "lb/in³", 453.59237, 16.387064},
    Unit{ZAXSysQuantity::Density, "lb/in3", 453.59237, 16.387064},
    Unit{ZAXSysQuantity::Density, "lb/ft³", 453.59237, 28316.846592},
    Unit{ZAXSysQuantity::Density, "lb/ft3", 453.59237, 28316.846592},
};

/// The first unit listed for a quantity is its internal one.
const Unit* InternalUnit(ZAXSysQuantity quantity)
{
    const auto* const unit = std::ranges::find(units, quantity, &Unit::quantity);
    return unit != units.end() ? unit : nullptr;
}

const Unit* FindUnit(ZAXSysQuantity quantity, QStringView name)
{
    if (name.isEmpty())
        return InternalUnit(quantity);
    const QByteArray utf8 = name.toUtf8();
    const auto* const unit = std::ranges::find_if(
        units, [&](const Unit& candidate) { return candidate.quantity == quantity && utf8 == candidate.name; });
    return unit != units.end() ? unit : nullptr;
}

double ToInternal(double number, const Unit& unit)
{
    const double value = number * unit.numerator / unit.denominator;
    // Only the product may be too large for a double.
    return std::isfinite(value) ? value : number / unit.denominator * unit.numerator;
}

qsizetype SkipDigits(QStringView text, qsizetype from)
{
    while (from < text.size() && text[from] >= u'0' && text[from] <= u'9')
        ++from;
    return from;
}

/// The length of the number that \a text starts with, [sign] digits [. or , digits] [e [sign] digits]; 0 for none.
qsizetype NumberLength(QStringView text)
{
    const auto isSign = [&](qsizetype i) { return i < text.size() && (text[i] == u'+' || text[i] == u'-'); };
    const qsizetype start = isSign(0) ? 1 : 0;
    qsizetype end = SkipDigits(text, start);
    qsizetype digits = end - start;
    if (end < text.size() && (text[end] == u'.' || text[end] == u',')) {
        const qsizetype fraction = SkipDigits(text, end + 1);
        digits += fraction - end - 1;
        end = fraction;
    }
    if (digits == 0)
        return 0;
    if (end < text.size() && text[end].toLower() == u'e') {
        const qsizetype exponent = isSign(end + 1) ? end + 2 : end + 1;
        const qsizetype exponentEnd = SkipDigits(text, exponent);
        if (exponentEnd > exponent)
            end = exponentEnd;
    }
    return end;
}

} // namespace

std::optional<double> ZAXSysValue::FromString(ZAXSysQuantity quantity, const QString& text)
{
    const QStringView trimmed = QStringView(text).trimmed();
    const qsizetype length = NumberLength(trimmed);
    if (length == 0)
        return std::nullopt;
    const Unit* const unit = FindUnit(quantity, trimmed.sliced(length).trimmed());
    bool ok = false;
    const double number = trimmed.first(length).toLatin1().replace(',', '.').toDouble(&ok);
    if (!unit || !ok)
        return std::nullopt;
    const double value = ToInternal(number, *unit);
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

QString ZAXSysValue::ToString() const
{
    // The shortest form turns to exponents early (1e+06); lengths and densities of real parts are written out.
    const double magnitude = std::abs(m_value);
    const char format = magnitude == 0.0 || (magnitude >= 1e-6 && magnitude < 1e15) ? 'f' : 'g';
    // QString::number() drops the sign of a negative zero.
    const QString number = magnitude == 0.0 ? QLatin1String(std::signbit(m_value) ? "-0" : "0")
                                            : QString::number(m_value, format, QLocale::FloatingPointShortest);
    const Unit* const unit = InternalUnit(m_quantity);
    return unit ? number + u' ' + QString::fromUtf8(unit->name) : number;
}
