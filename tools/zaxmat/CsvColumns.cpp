#include "CsvColumns.h"

#include "Failure.h"
#include "Properties.h"
#include "RecordDifference.h"
#include "Text.h"

#include "ZAXSysDefinedValue.h"

#include <QJsonDocument>

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

constexpr std::array types{ZAXMatDefinition::Material, ZAXMatDefinition::Packaging};

/// The quantity of the property of materials, else of stock forms; empty for none.
std::optional<ZAXSysQuantity> QuantityNamed(const PropertyName& name)
{
    const auto ofMaterial =
        QuantityOf(FindProperty(ClassOf(ZAXMatDefinition::Material, name.extension), name.property));
    return ofMaterial ? ofMaterial
                      : QuantityOf(FindProperty(ClassOf(ZAXMatDefinition::Packaging, name.extension), name.property));
}

/// The unit that the catalogue counts \a quantity in.
QString InternalUnit(ZAXSysQuantity quantity)
{
    return ZAXSysValue(quantity, 1).ToString().section(u' ', 1);
}

/// Letter case does not count in the titles of the columns that are no properties.
const OwnColumn* FindOwn(const QString& title)
{
    return std::ranges::find_if(
        ownColumns, [&](const OwnColumn& own) { return title.compare(own.title, Qt::CaseInsensitive) == 0; });
}

QString FieldText(const PropertyName& name)
{
    const QString field = NameText(name);
    const bool isOwn = FindOwn(field) != ownColumns.end();
    // A property that is called like a column of the record's own.
    return isOwn ? u'.' + field : field;
}

/// The number of a length or a density, whatever a record holds for it.
std::optional<double> NumberOf(const QMetaProperty& property, const QVariant& value)
{
    QVariant taken = value;
    if (!QuantityOf(property) || IsMissing(value) || !taken.convert(property.metaType()))
        return std::nullopt;
    return taken.toDouble();
}

/// Whether \a property takes both for the same: "0.5 in" is 12.7 to a length.
bool SaysTheSame(const QMetaProperty& property, const QVariant& present, const QVariant& value)
{
    const auto number = NumberOf(property, present);
    return IsSameValue(present, value) || (number && number == NumberOf(property, value));
}

Failure NoSuchProperty(const CsvColumn& column, ZAXMatDefinition::Type type)
{
    const QString what = type == ZAXMatDefinition::Material ? Text::tr("a material has no property %1")
                                                            : Text::tr("a stock form has no property %1");
    return {ExitCode::InvalidValues, what.arg(Quoted(column.field))};
}

} // namespace

CsvColumn PropertyColumn(const PropertyName& name)
{
    const auto quantity = QuantityNamed(name);
    return {CsvColumn::Kind::Property, FieldText(name), name, quantity ? InternalUnit(*quantity) : QString()};
}

QString TitleOf(const CsvColumn& column)
{
    return column.unit.isEmpty() ? column.field : column.field + QLatin1String(" [") + column.unit + u']';
}

CsvColumn ColumnOf(const QString& title)
{
    const QString trimmed = title.trimmed();
    if (const OwnColumn* const own = FindOwn(trimmed); own != ownColumns.end())
        return {own->kind, own->title};
    const qsizetype bracket = trimmed.endsWith(u']') ? trimmed.lastIndexOf(u'[') : -1;
    const QString field = (bracket >= 0 ? trimmed.first(bracket) : trimmed).trimmed();
    CsvColumn column = PropertyColumn(ParsePropertyName(field.startsWith(u'.') ? field.sliced(1) : field));
    if (bracket < 0)
        return column;
    column.unit = trimmed.sliced(bracket + 1).chopped(1).trimmed();
    const auto quantity = QuantityNamed(column.name);
    // Says what there is, unless there is such a property.
    if (!quantity &&
        !FindProperty(ClassOf(ZAXMatDefinition::Packaging, column.name.extension), column.name.property).isValid())
        RequireProperty(ZAXMatDefinition::Material, column.name);
    if (!quantity)
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 has no unit, so that none can stand in brackets behind it.").arg(Quoted(field)));
    if (!ZAXSysValue::FromString(*quantity, QLatin1String("1 ") + column.unit))
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 is no unit of %2; the catalogue counts in %3.")
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
    if (word.isEmpty())
        return ZAXMatDefinition::Material;
    const auto* const found = std::ranges::find(types, word, TypeWord);
    return found != types.end() ? std::optional(*found) : std::nullopt;
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

CellReader::CellReader(const QList<CsvColumn>& columns, ValueReading::DecimalComma decimalComma)
{
    const Schema schema;
    for (const CsvColumn& column : columns) {
        Column known{column, {decimalComma, column.unit}, true, {}};
        const auto quantity = QuantityNamed(column.name);
        known.isInternalUnit = !quantity || column.unit == InternalUnit(*quantity);
        for (const ZAXMatDefinition::Type type : types)
            known.fields[type] = {FindProperty(ClassOf(type, column.name.extension), column.name.property),
                                  schema.GetProperties(type, column.name.extension).contains(column.name.property)};
        m_columns.append(known);
    }
}

const CellReader::Field& CellReader::FieldOf(qsizetype column, ZAXMatDefinition::Type type) const
{
    return m_columns[column].fields[type];
}

bool CellReader::IsProperty(qsizetype column, ZAXMatDefinition::Type type) const
{
    return FieldOf(column, type).isSettable;
}

bool CellReader::IsText(qsizetype column, ZAXMatDefinition::Type type) const
{
    const Field& field = FieldOf(column, type);
    return field.isSettable && field.property.metaType() == QMetaType::fromType<QString>();
}

QVariant CellReader::Read(qsizetype column, const ZAXMatDefinition& record, const QString& text) const
{
    const auto& [csv, reading, isInternalUnit, fields] = m_columns[column];
    const QVariant present = record.GetValue(csv.name.property, csv.name.extension);
    if (isInternalUnit && !IsMissing(present) && CellOf(present) == text)
        return present;
    const Field& field = FieldOf(column, record.GetType());
    if (field.isSettable) {
        const QVariant value = ParseValue(field.property, csv.name, text, reading);
        return SaysTheSame(field.property, present, value) ? present : value;
    }
    const bool isKnownClass = ClassOf(record.GetType(), csv.name.extension);
    if (isKnownClass && !record.IsDefined(csv.name.property, csv.name.extension))
        throw NoSuchProperty(csv, record.GetType());
    const QVariant value = ParseValueLike(present, csv.name, text, reading);
    return IsSameValue(present, value) ? present : value;
}

QString CellReader::Normalized(qsizetype column, ZAXMatDefinition::Type type, const QVariant& value) const
{
    const auto number = NumberOf(FieldOf(column, type).property, value);
    return number ? QString::number(std::round(*number * 1e6), 'g', 17) : CellOf(value);
}

} // namespace zaxmat
