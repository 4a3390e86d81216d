#ifndef ZAXMAT_CSVCOLUMNS_H
#define ZAXMAT_CSVCOLUMNS_H

#include "Schema.h"
#include "Values.h"

#include "ZAXMatDefinition.h"
#include "ZAXSysValue.h"

#include <QList>
#include <QMetaProperty>
#include <QString>
#include <QVariant>

#include <array>
#include <optional>

namespace zaxmat {

/// A column of a file of records: what a field is called there, and in which unit its numbers count.
struct CsvColumn
{
    enum class Kind
    {
        Type,     ///< "type": whether the row is a material or a stock form
        Key,      ///< "key": of the record
        Material, ///< "material": the key or the name of a stock form's material
        Name,     ///< "name": of the record
        Property, ///< any other: "thickness [mm]", "Extension.property"
    };

    Kind kind = Kind::Property;
    /// The column's field without the unit.
    QString field;
    /// Of a property.
    PropertyName name = {};
    /// What is written in brackets behind a property.
    QString unit = {};
};

/// The column of a property in the unit that the catalogue counts in.
CsvColumn PropertyColumn(const PropertyName& name);
/// The title of the column, "thickness [mm]".
QString TitleOf(const CsvColumn& column);
/// The column that \a title stands for, whether there is such a property or not.
/// \throws Failure (WrongUsage) for an empty title and for a unit that the property does not have.
CsvColumn ColumnOf(const QString& title);

/// The words of the "type" column.
QString TypeWord(ZAXMatDefinition::Type type);
/// The type that \a text names, a material for an empty one. Letter case does not count.
std::optional<ZAXMatDefinition::Type> TypeOfWord(const QString& text);

/// A value as a cell: its text to the last bit, whatever it is; null for no value.
QString CellOf(const QVariant& value);

/// Reads the cells of the columns of a file.
class CellReader
{
public:
    /// \a decimalComma says how numbers are written in the file.
    CellReader(const QList<CsvColumn>& columns, ValueReading::DecimalComma decimalComma);

    /// Whether materials or stock forms have the property of the column \a column, as far as their classes are known.
    bool IsProperty(qsizetype column, ZAXMatDefinition::Type type) const;

    /// Whether that property is a text.
    bool IsText(qsizetype column, ZAXMatDefinition::Type type) const;

    /// What \a record is to hold for the property of the column \a column, the cell of which holds \a text, not empty:
    /// what it holds already when that says the same.
    /// \throws Failure when a record of that type has no such property, or it does not take the value.
    QVariant Read(qsizetype column, const ZAXMatDefinition& record, const QString& text) const;

    /// A text that two values of the property have in common exactly when they are the same to the classes; lengths
    /// and densities to a millionth.
    QString Normalized(qsizetype column, ZAXMatDefinition::Type type, const QVariant& value) const;

private:
    /// What a column is for records of a type.
    struct Field
    {
        QMetaProperty property;
        bool isSettable = false;
    };

    const Field& FieldOf(qsizetype column, ZAXMatDefinition::Type type) const;

    struct Column
    {
        CsvColumn column;
        ValueReading reading;
        /// Whether cells hold the numbers of the catalogue.
        bool isInternalUnit = true;
        std::array<Field, 2> fields;
    };

    QList<Column> m_columns;
};

} // namespace zaxmat

#endif
