#include "CsvColumns.h"

#include "Properties.h"
#include "RecordDifference.h"
#include "Text.h"

#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"
#include "ZAXSysDefinedValue.h"

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>

#include <algorithm>
#include <array>
#include <cmath>

namespace zaxmat {

namespace {

struct OwnColumn
{
    QLatin1String title;
    CsvColumn::Kind kind;
};

constexpr std::array ownColumns{
    OwnColumn{QLatin1String("type"), CsvColumn::Kind::Type},
    OwnColumn{QLatin1String("key"), CsvColumn::Kind::Key},
    OwnColumn{QLatin1String("material"), CsvColumn::Kind::Material},
    OwnColumn{QLatin1String("name"), CsvColumn::Kind::Name},
};

ZAXMatDefinition EmptyRecord(ZAXMatDefinition::Type type)
{
    ZAXMatDefinition record;
    record.SetType(type);
    return record;
}

/// The property of materials, else that of stock forms; invalid when neither have it.
QMetaProperty PropertyOfEither(const QByteArray& extension, const QByteArray& property)
{
    const QMetaProperty ofMaterial = FindProperty(ClassOf(EmptyRecord(ZAXMatDefinition::Material), extension), property);
    return ofMaterial.isValid()
               ? ofMaterial
               : FindProperty(ClassOf(EmptyRecord(ZAXMatDefinition::Packaging), extension), property);
}

std::optional<ZAXSysQuantity> QuantityOf(const QMetaProperty& property)
{
    if (property.metaType() == QMetaType::fromType<ZAXSysLengthValue>())
        return ZAXSysQuantity::Length;
    if (property.metaType() == QMetaType::fromType<ZAXSysDensityValue>())
        return ZAXSysQuantity::Density;
    return std::nullopt;
}

/// The unit that the catalogue counts \a quantity in.
QString InternalUnit(ZAXSysQuantity quantity)
{
    return ZAXSysValue(quantity, 1).ToString().section(u' ', 1);
}

QString FieldOf(const QByteArray& extension, const QByteArray& property)
{
    const QString field = FieldName(extension, property);
    const bool isOwn = std::ranges::find(ownColumns, field, &OwnColumn::title) != ownColumns.end();
    // A property that a column of the record's own is called like.
    return isOwn ? u'.' + field : field;
}

bool IsInteger(const QMetaProperty& property)
{
    constexpr std::array integers{QMetaType::Int, QMetaType::UInt, QMetaType::LongLong, QMetaType::ULongLong};
    return std::ranges::find(integers, property.metaType().id()) != integers.end();
}

CsvColumnError NoValue(const QString& field, const QString& text, const QString& wanted)
{
    return CsvColumnError(Text::tr("%1: %2 is not %3").arg(field, Quoted(text), wanted));
}

std::optional<bool> ReadBool(const QString& text)
{
    const QString word = text.trimmed().toLower();
    constexpr std::array yes{QLatin1String("true"), QLatin1String("yes"), QLatin1String("1")};
    constexpr std::array no{QLatin1String("false"), QLatin1String("no"), QLatin1String("0")};
    if (std::ranges::find(yes, word) != yes.end())
        return true;
    if (std::ranges::find(no, word) != no.end())
        return false;
    return std::nullopt;
}

/// The names of an enumeration for a message: "Rectangular", "Roll".
QString NamesOf(const QMetaEnum& enumeration)
{
    QStringList names;
    for (int i = 0; i < enumeration.keyCount(); ++i)
        names.append(Quoted(QString::fromLatin1(enumeration.key(i))));
    return names.join(QLatin1String(", "));
}

/// Whether \a property takes \a value for the same as what \a present is to it: "0.5 in" is 12.7 to a length.
bool SaysTheSame(const QMetaProperty& property, const QVariant& present, const QVariant& value)
{
    if (IsSameValue(present, value))
        return true;
    QVariant a = present;
    QVariant b = value;
    return QuantityOf(property) && !IsMissing(present) && a.convert(property.metaType()) &&
           b.convert(property.metaType()) && a.toDouble() == b.toDouble();
}

} // namespace

std::optional<ZAXSysQuantity> QuantityOf(const QByteArray& extension, const QByteArray& property)
{
    return QuantityOf(PropertyOfEither(extension, property));
}

bool IsDeclared(const QByteArray& extension, const QByteArray& property)
{
    return PropertyOfEither(extension, property).isValid();
}

CsvColumn PropertyColumn(const QByteArray& extension, const QByteArray& property)
{
    const auto quantity = QuantityOf(extension, property);
    return {CsvColumn::Kind::Property, extension, property, quantity ? InternalUnit(*quantity) : QString(),
            FieldOf(extension, property)};
}

QString TitleOf(const CsvColumn& column)
{
    return column.unit.isEmpty() ? column.field : column.field + QLatin1String(" [") + column.unit + u']';
}

CsvColumn ColumnOf(const QString& title)
{
    const QString trimmed = title.trimmed();
    const auto* const own = std::ranges::find(ownColumns, trimmed, &OwnColumn::title);
    if (own != ownColumns.end())
        return {own->kind, {}, {}, {}, trimmed};
    const qsizetype bracket = trimmed.endsWith(u']') ? trimmed.lastIndexOf(u'[') : -1;
    const QString field = (bracket >= 0 ? trimmed.first(bracket) : trimmed).trimmed();
    const qsizetype dot = field.indexOf(u'.');
    CsvColumn column = PropertyColumn(field.first(std::max<qsizetype>(dot, 0)).toLatin1(), field.sliced(dot + 1).toLatin1());
    if (bracket < 0)
        return column;
    column.unit = trimmed.sliced(bracket + 1).chopped(1).trimmed();
    const auto quantity = QuantityOf(column.extension, column.property);
    if (!quantity)
        throw CsvColumnError(Text::tr("%1 has no unit, so that nothing can stand in brackets behind it").arg(Quoted(field)));
    if (!ZAXSysValue::FromString(*quantity, QLatin1String("1 ") + column.unit))
        throw CsvColumnError(Text::tr("%1 is no unit of %2; the catalogue counts in %3")
                                 .arg(Quoted(column.unit), Quoted(field), InternalUnit(*quantity)));
    return column;
}

QString TypeWord(ZAXMatDefinition::Type type)
{
    return type == ZAXMatDefinition::Material ? QLatin1String("material") : QLatin1String("stock form");
}

std::optional<ZAXMatDefinition::Type> TypeOfWord(const QString& text)
{
    const QString word = text.trimmed().toLower();
    if (word.isEmpty() || word == TypeWord(ZAXMatDefinition::Material))
        return ZAXMatDefinition::Material;
    if (word == TypeWord(ZAXMatDefinition::Packaging))
        return ZAXMatDefinition::Packaging;
    return std::nullopt;
}

QString CellOf(const QVariant& value)
{
    if (IsMissing(value))
        return {};
    switch (value.typeId()) {
    case QMetaType::Double:
        return NumberText(value.toDouble());
    case QMetaType::QVariantMap:
    case QMetaType::QVariantList:
        return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
    default: {
        const QString text = value.toString();
        return text.isNull() ? QString(QLatin1String("")) : text;
    }
    }
}

QVariant CellReader::Read(const CsvColumn& column, const ZAXMatDefinition& record, const QString& text) const
{
    const QVariant present = record.GetValue(column.property, column.extension);
    const auto quantity = QuantityOf(column.extension, column.property);
    const bool isInternalUnit = !quantity || column.unit.isEmpty() || column.unit == InternalUnit(*quantity);
    if (!IsMissing(present) && isInternalUnit && CellOf(present) == text)
        return present;
    const QMetaObject* const type = ClassOf(record, column.extension);
    const QMetaProperty property = FindProperty(type, column.property);
    if (property.isValid()) {
        const QVariant value = ReadDeclared(column, property, text);
        return SaysTheSame(property, present, value) ? present : value;
    }
    if (type && !record.IsDefined(column.property, column.extension)) {
        const QString what = record.GetType() == ZAXMatDefinition::Material
                                 ? Text::tr("a material has no property %1")
                                 : Text::tr("a stock form has no property %1");
        throw CsvColumnError(what.arg(Quoted(column.field)));
    }
    return ReadUndeclared(present, text);
}

QVariant CellReader::ReadDeclared(const CsvColumn& column, const QMetaProperty& property, const QString& text) const
{
    const QString& field = column.field;
    if (const auto quantity = QuantityOf(property)) {
        if (const auto number = ReadQuantity(column, *quantity, text))
            return *number;
        throw NoValue(field, text,
                      *quantity == ZAXSysQuantity::Length ? Text::tr("a length") : Text::tr("a density"));
    }
    if (property.isEnumType()) {
        if (IsAccepted(property, text.trimmed()))
            return text.trimmed();
        throw NoValue(field, text, Text::tr("one of %1").arg(NamesOf(property.enumerator())));
    }
    switch (property.metaType().id()) {
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return text;
    case QMetaType::Bool:
        if (const auto truth = ReadBool(text))
            return *truth;
        throw NoValue(field, text, Text::tr("true or false"));
    case QMetaType::QColor:
        if (QColor::isValidColor(text.trimmed()))
            return text.trimmed();
        throw NoValue(field, text, Text::tr("a colour"));
    case QMetaType::Double:
    case QMetaType::Float:
        if (const auto number = ReadNumber(text))
            return *number;
        throw NoValue(field, text, Text::tr("a number"));
    default:
        break;
    }
    if (IsInteger(property)) {
        const auto number = ReadNumber(text);
        if (number && *number == std::floor(*number))
            return *number;
        throw NoValue(field, text, Text::tr("a whole number"));
    }
    if (property.isWritable() && IsAccepted(property, text))
        return text;
    throw CsvColumnError(Text::tr("%1 cannot be given in a cell").arg(field));
}

QVariant CellReader::ReadUndeclared(const QVariant& present, const QString& text) const
{
    if (present.typeId() == QMetaType::QString)
        return text;
    if (present.typeId() == QMetaType::QVariantMap || present.typeId() == QMetaType::QVariantList) {
        const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
        return document.isNull() ? QVariant(text) : document.toVariant();
    }
    if (text == QLatin1String("true") || text == QLatin1String("false"))
        return text == QLatin1String("true");
    const auto number = ReadNumber(text);
    return number ? QVariant(*number) : QVariant(text);
}

std::optional<double> CellReader::ReadNumber(const QString& text) const
{
    QString plain = text.trimmed();
    if (allowsDecimalComma && !plain.contains(u'.'))
        plain.replace(u',', u'.');
    bool isNumber = false;
    const double number = plain.toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<double> CellReader::ReadQuantity(const CsvColumn& column, ZAXSysQuantity quantity,
                                               const QString& text) const
{
    if (text.contains(u',') && !allowsDecimalComma)
        return std::nullopt;
    // A unit of its own counts for more than the column's.
    if (ReadNumber(text))
        return ZAXSysValue::FromString(quantity, text.trimmed() + u' ' + column.unit);
    return ZAXSysValue::FromString(quantity, text);
}

} // namespace zaxmat
