#ifndef ZAXMAT_TABLE_H
#define ZAXMAT_TABLE_H

#include "Style.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

namespace zaxmat {

/// What a table holds in one place: the text for people and the value for programs.
struct Cell
{
    /// A text that is its own value.
    Cell(const QString& ownText, Emphasis textEmphasis = Emphasis::None)
        : text(ownText), value(ownText), emphasis(textEmphasis)
    {
    }
    Cell(const QString& valueText, const QJsonValue& ownValue, Emphasis textEmphasis = Emphasis::None)
        : text(valueText), value(ownValue), emphasis(textEmphasis)
    {
    }

    QString text;
    QJsonValue value;
    Emphasis emphasis;
};

/// Rows of cells under titled columns.
class Table
{
public:
    enum class Alignment
    {
        Left,
        Right,
    };

    struct Column
    {
        /// The title for people. A column with a name and a null title is for programs only.
        QString title;
        Alignment alignment = Alignment::Left;
        /// The name for programs, which stays the same in every language. A column without one is for people only.
        QString name = {};
    };

    explicit Table(const QList<Column>& columns) : m_columns(columns) {}

    /// Appends a row; \a cells has one cell per column.
    void AddRow(const QList<Cell>& cells) { m_rows.append(cells); }

    bool IsEmpty() const { return m_rows.isEmpty(); }

    /// The table for a terminal, without a line break at its end: the columns in line, the titles above them and
    /// underlined. Without any title there are only the rows. \a isColoured shows the emphasis of titles and cells.
    QString ToText(bool isColoured = false) const;

    /// The values, an object per row with a member per named column.
    QJsonArray ToJson() const;

    /// The names of the named columns, then their values row by row, as texts: numbers with as many digits as
    /// they have and a decimal point, "true" and "false", nothing for null.
    QList<QStringList> ToTexts() const;

private:
    QList<qsizetype> ColumnsWhere(bool (*isWanted)(const Column&)) const;

    QList<Column> m_columns;
    QList<QList<Cell>> m_rows;
};

} // namespace zaxmat

#endif
