#ifndef ZAXMAT_CSVCOLUMNS_H
#define ZAXMAT_CSVCOLUMNS_H

#include "ZAXMatDefinition.h"
#include "ZAXSysValue.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>
#include <stdexcept>

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
    QByteArray extension;
    QByteArray property;
    /// What is written in brackets; empty for the unit that the catalogue counts in.
    QString unit;
    /// The column's field without the unit.
    QString field;
};

/// A title or a cell that cannot be understood.
class CsvColumnError : public std::runtime_error
{
public:
    explicit CsvColumnError(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString GetMessage() const { return QString::fromUtf8(what()); }
};

/// The quantity that the property is of, for materials or stock forms; empty for none.
std::optional<ZAXSysQuantity> QuantityOf(const QByteArray& extension, const QByteArray& property);

/// Whether a class that is known declares the property, for materials or stock forms.
bool IsDeclared(const QByteArray& extension, const QByteArray& property);

/// The column of a property in the unit that the catalogue counts in.
CsvColumn PropertyColumn(const QByteArray& extension, const QByteArray& property);
/// The title of the column, "thickness [mm]".
QString TitleOf(const CsvColumn& column);
/// The column that \a title stands for, whether there is such a property or not.
/// \throws CsvColumnError for a unit that the property does not have.
CsvColumn ColumnOf(const QString& title);

/// The words of the "type" column.
QString TypeWord(ZAXMatDefinition::Type type);
/// The type that \a text names, a material for an empty one. Letter case does not count.
std::optional<ZAXMatDefinition::Type> TypeOfWord(const QString& text);

/// A value as a cell: its text to the last bit, whatever it is; null for no value.
QString CellOf(const QVariant& value);

/// Reads the cells of a file.
struct CellReader
{
    /// Whether numbers may have a decimal comma, as they may where commas do not separate cells.
    bool allowsDecimalComma = false;

    /// What \a record is to hold for the property of \a column when its cell holds \a text, which is not empty: what
    /// it holds already when the two say the same.
    /// \throws CsvColumnError when a record of that type has no such property, or it does not take the value.
    QVariant Read(const CsvColumn& column, const ZAXMatDefinition& record, const QString& text) const;

private:
    QVariant ReadDeclared(const CsvColumn& column, const QMetaProperty& property, const QString& text) const;
    QVariant ReadUndeclared(const QVariant& present, const QString& text) const;
    std::optional<double> ReadNumber(const QString& text) const;
    std::optional<double> ReadQuantity(const CsvColumn& column, ZAXSysQuantity quantity, const QString& text) const;
};

} // namespace zaxmat

#endif
