#include "OpenedDocument.h"

#include "CommandOptions.h"
#include "Failure.h"
#include "FileContents.h"
#include "FileReplacement.h"
#include "Output.h"
#include "Text.h"

#include <QJsonObject>
#include <QStringList>

namespace zaxmat {

namespace {

QLatin1String KindName(ZAXHostProblem::Kind kind)
{
    switch (kind) {
    case ZAXHostProblem::Unavailable:
        return QLatin1String("unavailable");
    case ZAXHostProblem::Unresolved:
        return QLatin1String("unresolved");
    case ZAXHostProblem::Damaged:
        break;
    }
    return QLatin1String("damaged");
}

/// \throws Failure (FileFailure) when the file \a path cannot be read.
QByteArray BytesOf(const QString& path)
{
    const FileContents contents = ReadFileContents(path);
    if (!contents.IsRead())
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The document %1 cannot be read: %2.").arg(QuotedPath(path), contents.failure));
    return contents.bytes;
}

} // namespace

void AddDocumentArgument(CLI::App& command, DocumentOptions& target)
{
    AddText(command, QLatin1String("FILE"), QString(), Text::tr("The document."), target.file).Required();
}

void AddChangedDocumentArgument(CLI::App& command, DocumentOptions& target)
{
    AddDocumentArgument(command, target);
    AddFlag(command, QLatin1String("--accept-damage"),
            Text::tr("Works with what is left of a damaged document. Before it is saved, the damaged file is copied to "
                     "FILE.damaged."),
            target.acceptsDamage);
}

void AddObjectArgument(CLI::App& command, QString& target)
{
    AddText(command, QLatin1String("OBJECT"), QString(), Text::tr("The object; \"zaxmat document --help\" says how."),
            target)
        .Required();
}

OpenedDocument::OpenedDocument(const DocumentOptions& options, Purpose purpose, const Output& output)
{
    const auto open = purpose == Purpose::Change ? OpenDocumentForChange : OpenDocument;
    if (!open(m_document, options.file, ZAXHostDocument::RecoverDamage, output))
        throw Failure(ExitCode::FileFailure, Text::tr("The document %1 does not exist.").arg(QuotedPath(options.file)));
    RequireUse(options, purpose);
    m_bytesBefore = m_document.Encode();
}

void OpenedDocument::RequireUse(const DocumentOptions& options, Purpose purpose)
{
    if (purpose == Purpose::Read)
        return;
    if (purpose == Purpose::Change && !m_document.GetReadOnlyReason().isEmpty())
        throw Failure(ExitCode::FileFailure, m_document.GetReadOnlyReason() + u'\n' + Text::tr("It is not changed."));
    m_isDamageAccepted = m_document.IsDamaged() && options.acceptsDamage;
    if (m_document.IsDamaged() && !m_isDamageAccepted) {
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The document %1 is damaged:\n%2\nNothing is done with it. --accept-damage works with "
                               "what is left of it, and keeps a copy of the file.")
                          .arg(QuotedPath(options.file), DamageLines()));
    }
}

QString OpenedDocument::DamageLines() const
{
    QStringList lines;
    const QList<ZAXHostProblem> problems = m_document.GetProblems();
    for (const ZAXHostProblem& problem : problems) {
        if (problem.kind == ZAXHostProblem::Damaged)
            lines.append(QLatin1String("  ") + Printable(problem.message));
    }
    return lines.join(u'\n');
}

void OpenedDocument::Report(Output& output) const
{
    if (!m_document.GetReadOnlyReason().isEmpty())
        output.AddNote(m_document.GetReadOnlyReason());
    const QList<ZAXHostProblem> problems = m_document.GetProblems();
    for (const ZAXHostProblem& problem : problems) {
        if (problem.kind != ZAXHostProblem::Damaged)
            output.AddNote(problem.message);
    }
    if (m_document.IsDamaged()) {
        output.PrintError(Text::tr("The document %1 is damaged. This is what is left of it.\n%2")
                              .arg(QuotedPath(m_document.GetPath()), DamageLines()));
    }
}

ExitCode OpenedDocument::GetExitCode() const
{
    return m_document.IsDamaged() && !m_isDamageAccepted ? ExitCode::FileFailure : ExitCode::Done;
}

QJsonArray OpenedDocument::GetProblems() const
{
    QJsonArray array;
    const QList<ZAXHostProblem> problems = m_document.GetProblems();
    for (const ZAXHostProblem& problem : problems) {
        array.append(QJsonObject{{QLatin1String("kind"), KindName(problem.kind)},
                                 {QLatin1String("id"), static_cast<qint64>(problem.id)},
                                 {QLatin1String("class"), QString::fromUtf8(problem.className)},
                                 {QLatin1String("message"), problem.message}});
    }
    return array;
}

void OpenedDocument::Save(Output& output)
{
    const QString path = m_document.GetPath();
    if (!m_isDamageAccepted && m_document.Encode() == m_bytesBefore) {
        output.Print(Text::tr("Document %1 holds all this already; nothing was written.").arg(QuotedPath(path)));
        return;
    }
    if (m_isDamageAccepted) {
        const QString copy = KeepCopy(path, BytesOf(path), QLatin1String(".damaged"));
        output.AddNote(Text::tr("The damaged file is kept as %1.").arg(QuotedPath(copy)));
        m_document.AcceptDamage();
    }
    ZAXHostDocument reopened;
    SaveDocument(m_document, path, reopened);
    output.Print(Text::tr("Document %1 saved; reopened, it is identical.").arg(QuotedPath(path)));
}

} // namespace zaxmat
