#include "Table.h"

#include "Text.h"

#include <algorithm>

namespace zaxmat {

namespace {

/// How many places \a text takes in a terminal.
qsizetype WidthOf(const QString& text)
{
    const auto takesPlace = [](char32_t character) {
        const QChar::Category category = QChar::category(character);
        return category != QChar::Mark_NonSpacing && category != QChar::Mark_Enclosing &&
               category != QChar::Other_Format;
    };
    return std::ranges::count_if(text.toUcs4(), takesPlace);
}

QString Padded(const QString& text, qsizetype width, Table::Alignment alignment)
{
    const QString padding(width - WidthOf(text), u' ');
    return alignment == Table::Alignment::Left ? text + padding : padding + text;
}

} // namespace

QString Table::ToText() const
{
    QList<QStringList> rows;
    QStringList titles;
    std::ranges::transform(m_columns, std::back_inserter(titles), &Column::title);
    const bool hasTitles = std::ranges::any_of(titles, [](const QString& title) { return !title.isEmpty(); });
    if (hasTitles)
        rows.append(titles);
    for (const QStringList& row : m_rows) {
        QStringList cells;
        std::ranges::transform(row, std::back_inserter(cells), Printable);
        rows.append(cells);
    }

    QList<qsizetype> widths(m_columns.size(), 0);
    for (const QStringList& row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], WidthOf(row[i]));
    }
    if (hasTitles) {
        QStringList lines;
        std::ranges::transform(widths, std::back_inserter(lines), [](qsizetype width) { return QString(width, u'-'); });
        rows.insert(1, lines);
    }

    QStringList text;
    for (const QStringList& row : rows) {
        QStringList cells;
        for (qsizetype i = 0; i < row.size(); ++i)
            cells.append(Padded(row[i], widths[i], m_columns[i].alignment));
        QString line = cells.join(QLatin1String("  "));
        while (line.endsWith(u' '))
            line.chop(1);
        text.append(line);
    }
    return text.join(u'\n');
}

} // namespace zaxmat
