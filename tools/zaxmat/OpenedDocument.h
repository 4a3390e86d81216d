#ifndef ZAXMAT_OPENEDDOCUMENT_H
#define ZAXMAT_OPENEDDOCUMENT_H

#include "ExitCode.h"

#include "DocumentFile.h"

#include <QJsonArray>
#include <QString>

namespace CLI {
class App;
} // namespace CLI

namespace zaxmat {

class Output;

/// How the user names a document, which must exist.
struct DocumentOptions
{
    QString file;
    /// Whether a damaged document may be worked on, after which it holds what is left of it.
    bool acceptsDamage = false;
};

/// Declares how \a command is told which document it reads.
void AddDocumentArgument(CLI::App& command, DocumentOptions& target);
/// The same for a command that changes the document, or relies on all of it.
void AddChangedDocumentArgument(CLI::App& command, DocumentOptions& target);

/// Declares how \a command is told which object of the document it is about.
void AddObjectArgument(CLI::App& command, QString& target);

/// The document that a command works on. Of a damaged file it holds what is whole.
class OpenedDocument
{
public:
    enum class Purpose
    {
        Read,   ///< the file stays as it is, so it may be damaged, and in use elsewhere
        Rely,   ///< the file stays as it is and may be in use elsewhere, but damage must have been accepted
        Change, ///< the file must be ours, and damage must have been accepted
    };

    /// Opens the file; to change it, once others have given it back. The progress line of \a output tells of that.
    /// \throws Failure (FileFailure) when the file cannot be read, or not be used for \a purpose.
    OpenedDocument(const DocumentOptions& options, Purpose purpose, const Output& output);

    ZAXHostDocument& Get() { return m_document; }
    const ZAXHostDocument& Get() const { return m_document; }

    /// Says what the user should know of the file: who else uses it, and what is missing. Damage is an error.
    void Report(Output& output) const;
    /// FileFailure for a damaged file that was only read, else Done.
    ExitCode GetExitCode() const;
    /// What Report() says of the file, for programs.
    QJsonArray GetProblems() const;

    /// Saves the document to its file, and prints so, unless nothing has changed. Of a damaged file a copy is kept
    /// beside it first.
    /// \throws Failure (FileFailure) when the file does not hold the document in the end.
    void Save(Output& output);

private:
    void RequireUse(const DocumentOptions& options, Purpose purpose);
    /// The lines about damage, for a message.
    QString DamageLines() const;

    ZAXHostDocument m_document;
    QByteArray m_bytesBefore;
    bool m_isDamageAccepted = false;
};

} // namespace zaxmat

#endif
