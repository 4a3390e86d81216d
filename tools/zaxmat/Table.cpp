#include "Table.h"

#include "Text.h"

#include <QJsonObject>

#include <algorithm>

namespace zaxmat {

namespace {

bool IsForPeople(const Table::Column& column)
{
    return !column.title.isNull() || column.name.isEmpty();
}

bool IsForPrograms(const Table::Column& column)
{
    return !column.name.isEmpty();
}

/// How many places \a text takes in a terminal.
qsizetype WidthOf(const QString& text)
{
    const auto isPlain = [](QChar character) { return character.unicode() < 0x80; };
    if (std::ranges::all_of(text, isPlain))
        return text.size();
    const auto takesPlace = [](char32_t character) {
        const QChar::Category category = QChar::category(character);
        return category != QChar::Mark_NonSpacing && category != QChar::Mark_Enclosing &&
               category != QChar::Other_Format;
    };
    return std::ranges::count_if(text.toUcs4(), takesPlace);
}

/// A text on its way into the table for a terminal.
struct Piece
{
    QString text;
    qsizetype width = 0;
    Emphasis emphasis = Emphasis::None;
};

Piece PieceOf(const QString& text, Emphasis emphasis)
{
    return {text, WidthOf(text), emphasis};
}

using Pieces = QList<Piece>;

QList<qsizetype> WidthsOf(const QList<Pieces>& rows, qsizetype columns)
{
    QList<qsizetype> widths(columns, 0);
    for (const Pieces& row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].width);
    }
    return widths;
}

QString ValueText(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Double:
        return NumberText(value.toDouble());
    default:
        return value.toString();
    }
}

} // namespace

QList<qsizetype> Table::ColumnsWhere(bool (*isWanted)(const Column&)) const
{
    QList<qsizetype> columns;
    for (qsizetype i = 0; i < m_columns.size(); ++i) {
        if (isWanted(m_columns[i]))
            columns.append(i);
    }
    return columns;
}

QString Table::ToText(bool isColoured) const
{
    const QList<qsizetype> columns = ColumnsWhere(IsForPeople);
    const auto titleOf = [this](qsizetype column) { return m_columns[column].title; };
    const bool hasTitles = std::ranges::any_of(columns, [&](qsizetype column) { return !titleOf(column).isEmpty(); });
    QList<Pieces> rows;
    rows.reserve(m_rows.size() + 2);
    const auto addRow = [&](const auto& pieceOf) {
        Pieces pieces;
        pieces.reserve(columns.size());
        std::ranges::transform(columns, std::back_inserter(pieces), pieceOf);
        rows.append(pieces);
    };
    if (hasTitles)
        addRow([&](qsizetype column) { return PieceOf(titleOf(column), Emphasis::Heading); });
    for (const QList<Cell>& row : m_rows)
        addRow([&](qsizetype column) { return PieceOf(Printable(row[column].text), row[column].emphasis); });

    const QList<qsizetype> widths = WidthsOf(rows, columns.size());
    if (hasTitles) {
        Pieces lines;
        for (const qsizetype width : widths)
            lines.append({QString(width, u'-'), width, Emphasis::None});
        rows.insert(1, lines);
    }

    QString text;
    for (const Pieces& row : rows) {
        qsizetype missing = 0;
        for (qsizetype i = 0; i < row.size(); ++i) {
            const Piece& piece = row[i];
            const bool isRight = m_columns[columns[i]].alignment == Alignment::Right;
            const qsizetype padding = widths[i] - piece.width;
            // What would stand at the end of the line is held back until something follows.
            if (!piece.text.isEmpty()) {
                text += QString(missing + (isRight ? padding : 0), u' ') +
                        (isColoured ? Emphasized(piece.text, piece.emphasis) : piece.text);
                missing = isRight ? 0 : padding;
            } else {
                missing += padding;
            }
            missing += 2;
        }
        text += u'\n';
    }
    text.chop(1);
    return text;
}

QJsonArray Table::ToJson() const
{
    const QList<qsizetype> columns = ColumnsWhere(IsForPrograms);
    QJsonArray rows;
    for (const QList<Cell>& row : m_rows) {
        QJsonObject object;
        for (const qsizetype column : columns)
            object.insert(m_columns[column].name, row[column].value);
        rows.append(object);
    }
    return rows;
}

QList<QStringList> Table::ToTexts() const
{
    const QList<qsizetype> columns = ColumnsWhere(IsForPrograms);
    QList<QStringList> rows;
    const auto addRow = [&](const auto& textOf) {
        QStringList texts;
        std::ranges::transform(columns, std::back_inserter(texts), textOf);
        rows.append(texts);
    };
    addRow([&](qsizetype column) { return m_columns[column].name; });
    for (const QList<Cell>& row : m_rows)
        addRow([&](qsizetype column) { return ValueText(row[column].value); });
    return rows;
}

} // namespace zaxmat
