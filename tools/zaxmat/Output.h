#ifndef ZAXMAT_OUTPUT_H
#define ZAXMAT_OUTPUT_H

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace zaxmat {

/// The results of a command on their way to the standard output, in UTF-8. They are collected and written when
/// the command has succeeded, so that nothing is printed that did not come true.
class Output
{
public:
    /// Appends \a text, of one line or more, and a line break.
    void Print(const QString& text);
    /// Keeps a remark that does not belong to the results. It goes to the standard error.
    void AddNote(const QString& note) { m_notes.append(note); }
    /// Writes the notes and what was printed. False, with \a reason, when the standard output does not take it all.
    bool Write(QString* reason);

private:
    QByteArray m_text;
    QStringList m_notes;
};

/// Writes \a message to the standard error, under the name of the program.
void PrintError(const QString& message);

} // namespace zaxmat

#endif
