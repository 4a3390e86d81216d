#ifndef ZAXMAT_CSV_H
#define ZAXMAT_CSV_H

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <stdexcept>

namespace zaxmat {

/// A row of a CSV file.
struct CsvRow
{
    /// The line of the file that the row starts in, counted from 1: a cell in quotation marks may span several.
    qsizetype line = 0;
    /// The texts of the cells, spaces around them included. A cell without any text is null, a pair of quotation
    /// marks with nothing between them is empty.
    QStringList cells;
};

/// What a CSV file holds.
struct CsvTable
{
    /// What stands between the cells: a comma, a semicolon or a tab.
    char separator = ',';
    /// All rows, lines that are blank or hold nothing but spaces left out, the row of titles first. They may be of
    /// different lengths.
    QList<CsvRow> rows;
};

/// A text that is no CSV.
class CsvError : public std::runtime_error
{
public:
    CsvError(qsizetype line, const QString& message) : std::runtime_error(message.toStdString()), m_line(line) {}

    /// The line of the mistake, counted from 1.
    qsizetype GetLine() const { return m_line; }
    /// What is wrong, for the user.
    QString GetMessage() const { return QString::fromUtf8(what()); }

private:
    qsizetype m_line;
};

/// Reads CSV in UTF-8, with or without a byte order mark, with the line ends of any system. What separates the cells
/// is what the first line holds outside quotation marks: tabs, else semicolons, else commas. A line "sep=;" before it,
/// by which spreadsheets are told, says so itself and is no row. \throws CsvError for bytes that are no UTF-8, and for
/// quotation marks that are not closed, or stand inside a cell that does not start with one.
CsvTable ReadCsv(const QByteArray& bytes);

/// One row as RFC 4180 has it, its line break included, in UTF-8. Only a cell that needs quotation marks gets them: an
/// empty text that is not null is one. ReadCsv() brings every row back as it was, but for a byte order
/// mark in front of a text.
QByteArray CsvLine(const QStringList& cells, char separator = ',');

} // namespace zaxmat

#endif
