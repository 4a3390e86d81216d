#ifndef ZAXMAT_OUTPUT_H
#define ZAXMAT_OUTPUT_H

#include "Style.h"

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <memory>

namespace zaxmat {

class ProgressLine;
class Table;

/// What results are printed as.
enum class Format
{
    Table, ///< text for people
    Json,  ///< one JSON document
    Csv,   ///< comma-separated values with a row of names
};

/// The unit that lengths are displayed in. JSON and CSV have millimetres always.
enum class LengthUnit
{
    Millimetre,
    Inch,
};

/// How the user wants to be told the results.
struct OutputOptions
{
    Format format = Format::Table;
    /// Only the data asked for, and errors.
    bool isQuiet = false;
    LengthUnit unit = LengthUnit::Millimetre;
};

/// The results of a command on their way to the standard output, in UTF-8. They are collected and written when
/// the command has succeeded, so that nothing is printed that did not come true.
///
/// A command prints its data in the format asked for, with Print(Table) or PrintJson() and PrintText(), and the prose
/// around them with Print(QString) in any case.
class Output
{
public:
    explicit Output(const OutputOptions& options = {});
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    Format GetFormat() const { return m_options.format; }
    bool IsQuiet() const { return m_options.isQuiet; }
    /// The unit to display lengths in.
    LengthUnit GetUnit() const { return m_options.unit; }
    /// Whether texts may carry colours.
    bool IsColoured() const { return m_isColoured; }
    /// \a text with \a emphasis where colours are shown.
    QString Emphasize(const QString& text, Emphasis emphasis) const;

    /// Appends prose, of one line or more, and a line break. Only people who did not ask for quiet get it.
    void Print(const QString& text);
    /// Appends data in any format: a table for people, a JSON array or CSV.
    void Print(const Table& table);
    /// Appends data for people, one line or more, and a line break. Nothing in other formats.
    void PrintText(const QString& text);
    /// Appends \a value, an array or an object, as a JSON document. Nothing in other formats.
    void PrintJson(const QJsonValue& value);
    /// Keeps a remark that does not belong to the results. It goes to the standard error, unless quiet was asked for.
    void AddNote(const QString& note);
    /// The line that tells what a command is at, until anything else is written. There unless quiet was asked for, or
    /// the standard error is no terminal.
    ProgressLine& GetProgressLine() const { return *m_progressLine; }
    /// Writes \a message to the standard error at once, as PrintError() does.
    void PrintError(const QString& message);
    /// Writes the notes and what was printed. False, with \a reason, when the standard output does not take it all.
    bool Write(QString* reason);

private:
    OutputOptions m_options;
    bool m_isColoured = zaxmat::IsColoured(stdout);
    QByteArray m_text;
    QStringList m_notes;
    std::unique_ptr<ProgressLine> m_progressLine;
};

/// Writes \a message to the standard error, under the name of the program.
void PrintError(const QString& message);

} // namespace zaxmat

#endif
