#include "Criterion.h"

#include "Failure.h"
#include "Properties.h"
#include "Records.h"
#include "Schema.h"
#include "Text.h"

#include "ZAXSysDefinedValue.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace zaxmat {

namespace {

using Test = std::function<bool(const QJsonValue&)>;

/// How much closer than any sheet is made two lengths are the same; other numbers must be equal but for rounding.
constexpr double lengthTolerance = 0.001;
constexpr double relativeTolerance = 1e-12;

/// Whether records have a member of that name besides their properties that can be asked for.
bool IsMember(const QByteArray& name)
{
    return name == "name" || name == "key" || name == "materialKey";
}

struct Range
{
    double from = -std::numeric_limits<double>::infinity();
    double to = std::numeric_limits<double>::infinity();
};

std::optional<double> NumberOf(const QString& text, std::optional<ZAXSysQuantity> quantity)
{
    if (quantity)
        return ZAXSysValue::FromString(*quantity, text);
    bool ok = false;
    const double number = QString(text).replace(u',', u'.').toDouble(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

/// What follows the number in \a text, with its space: " in" of "0.5 in".
QString UnitOf(const QString& text)
{
    static const QRegularExpression number(QLatin1String(R"(^[+-]?[0-9.,]*([eE][+-]?[0-9]+)?)"));
    return text.sliced(number.match(text).capturedLength());
}

/// The range, or the one number, that \a text stands for. A unit that stands only behind the upper bound is that of the
/// lower one too.
std::optional<Range> RangeOf(const QString& text, std::optional<ZAXSysQuantity> quantity)
{
    const qsizetype points = text.indexOf(QLatin1String(".."));
    if (points < 0) {
        const auto number = NumberOf(text, quantity);
        return number ? std::optional(Range{*number, *number}) : std::nullopt;
    }
    QString from = text.first(points).trimmed();
    const QString to = text.sliced(points + 2).trimmed();
    if (!from.isEmpty() && UnitOf(from).isEmpty())
        from += UnitOf(to);
    const auto low = NumberOf(from, quantity);
    const auto high = NumberOf(to, quantity);
    if ((from.isEmpty() && to.isEmpty()) || (!low && !from.isEmpty()) || (!high && !to.isEmpty()))
        return std::nullopt;
    return Range{low.value_or(Range().from), high.value_or(Range().to)};
}

bool IsIn(double number, const Range& range, bool isLength)
{
    const double tolerance = isLength ? lengthTolerance : std::abs(number) * relativeTolerance;
    // Like documents, that tell two thicknesses from a thousandth on.
    return isLength && range.from == range.to ? IsSameThickness(number, range.from)
                                              : number > range.from - tolerance && number < range.to + tolerance;
}

/// Whether texts match \a pattern with its wildcards.
QRegularExpression PatternOf(const QString& pattern)
{
    QString expression = QRegularExpression::escape(pattern);
    expression.replace(QLatin1String("\\*"), QLatin1String(".*")).replace(QLatin1String("\\?"), QLatin1String("."));
    return QRegularExpression(QRegularExpression::anchoredPattern(expression),
                              QRegularExpression::CaseInsensitiveOption |
                                  QRegularExpression::DotMatchesEverythingOption);
}

bool IsEmpty(const QJsonValue& value)
{
    return value.isNull() || value.isUndefined() || (value.isString() && value.toString().isEmpty());
}

Test RangeTest(const Range& range, std::optional<ZAXSysQuantity> quantity)
{
    const bool isLength = quantity == ZAXSysQuantity::Length;
    return [=](const QJsonValue& value) {
        if (value.isDouble())
            return IsIn(value.toDouble(), range, isLength);
        const auto number = value.isString() && quantity ? NumberOf(value.toString(), quantity) : std::nullopt;
        return number && IsIn(*number, range, isLength);
    };
}

/// Compares what people read, so that labels are found as well.
Test TextTest(const QMetaProperty& property, const QString& text)
{
    return [property, pattern = PatternOf(text)](const QJsonValue& value) {
        if (value.isNull() || value.isUndefined())
            return false;
        const QString held = value.isString() ? value.toString() : ValueText(property, value.toVariant());
        return pattern.match(held).hasMatch();
    };
}

Failure NoNumber(const PropertyName& name, const QString& text)
{
    return {ExitCode::WrongUsage, Text::tr("%1: %2 is no number and no range of numbers. Write 2, \"0.5 in\", 1..3, "
                                           "1.. or ..3.")
                                      .arg(Printable(NameText(name)), Quoted(text))};
}

/// \throws Failure (WrongUsage) unless \a text says clearly which numbers are meant, if it is about numbers.
void RequireClear(const PropertyName& name, const QString& text, const std::optional<Range>& range)
{
    if (!range)
        throw NoNumber(name, text);
    const QStringList bounds = text.split(QLatin1String(".."));
    for (const QString& bound : bounds) {
        if (const QString why = AmbiguityOf(bound); !why.isEmpty())
            throw Failure(ExitCode::WrongUsage,
                          Text::tr("%1: %2 %3").arg(Printable(NameText(name)), Quoted(bound), why));
    }
    if (range->from > range->to)
        throw Failure(ExitCode::WrongUsage, Text::tr("%1: there is nothing in %2: its first bound is the larger one.")
                                                .arg(Printable(NameText(name)), Quoted(text)));
}

Test BooleanTest(const PropertyName& name, const QString& text)
{
    const auto wanted = ReadBoolean(text);
    if (!wanted)
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1: %2 is neither true nor false.").arg(Printable(NameText(name)), Quoted(text)));
    return [isTrue = *wanted](const QJsonValue& value) { return value.isBool() && value.toBool() == isTrue; };
}

Test TestFor(const QMetaProperty& property, const PropertyName& name, const QString& text)
{
    if (text.isEmpty())
        return IsEmpty;
    const auto quantity = QuantityOf(property);
    const auto range = RangeOf(text, quantity);
    if (quantity || property.metaType().id() == QMetaType::Double) {
        RequireClear(name, text, range);
        return RangeTest(*range, quantity);
    }
    if (property.metaType().id() == QMetaType::Bool)
        return BooleanTest(name, text);
    const Test test = TextTest(property, text);
    // Nobody knows what kind of values there are.
    if (!property.isValid() && range) {
        return [test, number = RangeTest(*range, quantity)](const QJsonValue& value) {
            return value.isDouble() ? number(value) : test(value);
        };
    }
    return test;
}

} // namespace

Criterion::Criterion(const QString& text, const QByteArray& extension)
{
    const qsizetype sign = text.indexOf(u'=');
    if (sign < 0)
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 is no property=value.").arg(Quoted(text)));
    m_name = ParsePropertyName(text.first(sign));
    m_extension = m_name.extension.isEmpty() ? extension : m_name.extension;
    const QString value = text.sliced(sign + 1).trimmed();
    m_asksForNoValue = value.isEmpty();
    for (const auto type : {ZAXMatDefinition::Material, ZAXMatDefinition::Packaging}) {
        QMetaProperty property = FindProperty(ClassOf(type, m_extension), m_name.property);
        if (!property.isValid() && m_name.extension.isEmpty())
            property = FindProperty(ClassOf(type, {}), m_name.property);
        m_sides.at(type) = {property, {}};
    }
    // What one of the two declares is looked at in the same way in the other.
    auto& [material, stockForm] = m_sides;
    const QMetaProperty declared = material.property.isValid() ? material.property : stockForm.property;
    for (Side& side : m_sides)
        side.test = TestFor(side.property.isValid() ? side.property : declared, m_name, value);
}

bool Criterion::Matches(const CatalogueRecord& record) const
{
    return m_sides.at(record.GetType()).test(ValueOf(record));
}

QByteArray Criterion::GetNeededName() const
{
    const auto isPlain = [](char letter) { return (letter & ~0x20) >= 'A' && (letter & ~0x20) <= 'Z'; };
    const bool isNeeded =
        !m_asksForNoValue && !IsMember(m_name.property) && std::ranges::all_of(m_name.property, isPlain);
    return isNeeded ? m_name.property : QByteArray();
}

bool Criterion::IsKnownTo(const CatalogueRecord& record) const
{
    return m_sides.at(record.GetType()).property.isValid() || !ValueOf(record).isUndefined();
}

QJsonValue Criterion::ValueOf(const CatalogueRecord& record) const
{
    const QLatin1String property(m_name.property);
    const QJsonValue value = record.GetValue(property, QLatin1String(m_extension));
    if (!value.isUndefined() || !m_name.extension.isEmpty())
        return value;
    const QJsonValue own = m_extension.isEmpty() ? value : record.GetValue(property);
    return own.isUndefined() && IsMember(m_name.property) ? record.GetObject().value(property) : own;
}

} // namespace zaxmat
