#ifndef ZAXMAT_TABLE_H
#define ZAXMAT_TABLE_H

#include <QList>
#include <QString>
#include <QStringList>

namespace zaxmat {

/// Rows of texts under titled columns.
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
        QString title;
        Alignment alignment = Alignment::Left;
    };

    explicit Table(const QList<Column>& columns) : m_columns(columns) {}

    /// Appends a row; \a cells has one text per column.
    void AddRow(const QStringList& cells) { m_rows.append(cells); }

    bool IsEmpty() const { return m_rows.isEmpty(); }

    /// The table for a terminal, without a line break at its end: the columns in line, the titles above them and
    /// underlined. Without any title there are only the rows.
    QString ToText() const;

private:
    QList<Column> m_columns;
    QList<QStringList> m_rows;
};

} // namespace zaxmat

#endif
