#include "CatalogueEditor.h"

#include "CatalogueText.h"
#include "CautiousFileSystem.h"
#include "Failure.h"
#include "Progress.h"
#include "RecordDifference.h"
#include "Text.h"

#include "ZAXHostFileSaver.h"

#include <QFileInfo>

namespace zaxmat {

namespace {

/// The file that the catalogue is in, behind symbolic links. Whether it can be locked is another question.
/// \throws Failure when it is no file, or is missing without reason.
QString EditablePath(const CatalogueOptions& options, CatalogueEditor::MissingFile missing)
{
    const QString path = CatalogueFilePath(options);
    const QFileInfo file(path);
    if (!file.exists() && missing == CatalogueEditor::MissingFile::Create) {
        const QFileInfo folder(QFileInfo(ZAXHostFileSaver::TargetOf(path)).absolutePath());
        if (!folder.isDir()) {
            throw Failure(ExitCode::FileFailure, Text::tr("The catalogue %1 cannot be made, since there is no such "
                                                          "folder. Make the folder first.")
                                                     .arg(QuotedPath(path)));
        }
    } else if (!file.isFile()) {
        ReadCatalogueFile(path);
    }
    return path;
}

CommitResult CountEdits(const QList<RecordEdit>& edits)
{
    CommitResult result;
    result.edits = edits;
    for (const RecordEdit& edit : edits) {
        if (!edit.before.IsValid())
            ++result.added;
        else if (!edit.after.IsValid())
            ++result.removed;
        else
            ++result.changed;
    }
    return result;
}

} // namespace

CatalogueEditor::CatalogueEditor(const CatalogueOptions& options, const Output& output, MissingFile missing,
                                 std::function<void()> beforeReplacing)
    : m_path(EditablePath(options, missing)),
      m_output(output),
      m_beforeReplacing(std::move(beforeReplacing)),
      m_lock(ZAXHostFileSaver::TargetOf(m_path), output),
      m_isNew(missing == MissingFile::Create && !QFileInfo::exists(m_path)),
      m_bytes(m_isNew ? QByteArray() : ReadCatalogueFile(m_path)),
      m_catalogue(m_isNew ? Catalogue(m_path, QJsonObject()) : Catalogue(m_path, m_bytes))
{
}

CatalogueEditor::~CatalogueEditor() = default;

ZAXMatDefinition CatalogueEditor::GetRecord(ZAXMatDefinition::Type type, const QByteArray& key) const
{
    const auto place = m_places.constFind({type, key});
    if (place != m_places.cend())
        return m_edits[*place].after;
    return type == ZAXMatDefinition::Material ? m_catalogue.GetMaterial(key) : m_catalogue.GetStockForm(key);
}

void CatalogueEditor::Stage(const RecordEdit& edit)
{
    const ZAXMatDefinition& either = edit.after.IsValid() ? edit.after : edit.before;
    const std::pair<int, QByteArray> identity(either.GetType(), either.GetKey());
    const auto place = m_places.constFind(identity);
    if (place != m_places.cend()) {
        m_edits[*place].after = edit.after;
        return;
    }
    m_edits.append(edit);
    m_places.insert(identity, m_edits.size() - 1);
}

void CatalogueEditor::SetRecord(const ZAXMatDefinition& record)
{
    Stage({GetRecord(record.GetType(), record.GetKey()), record});
}

void CatalogueEditor::SetRecord(const ZAXMatDefinition& before, const ZAXMatDefinition& record)
{
    Stage({before, record});
}

void CatalogueEditor::RemoveRecord(ZAXMatDefinition::Type type, const QByteArray& key)
{
    if (const ZAXMatDefinition before = GetRecord(type, key); before.IsValid())
        Stage({before, {}});
}

QList<RecordEdit> CatalogueEditor::Changes() const
{
    QList<RecordEdit> changes;
    std::ranges::copy_if(m_edits, std::back_inserter(changes),
                         [](const RecordEdit& edit) { return !IsSameRecord(edit.before, edit.after); });
    return changes;
}

std::optional<QByteArray> CatalogueEditor::ReadPresent() const
{
    if (m_isNew && !QFileInfo::exists(m_path))
        return std::nullopt;
    return ReadCatalogueFile(m_path);
}

void CatalogueEditor::RequireNoConflict(const QList<RecordEdit>& changes, const QByteArray& theirs) const
{
    const auto conflicts = ConflictsOf(changes, m_catalogue, Catalogue(m_path, theirs));
    if (!conflicts.isEmpty()) {
        throw Failure(ExitCode::FileChanged,
                      Text::tr("The catalogue %1 was changed by somebody else meanwhile, and so were the same records. "
                               "Nothing was written:\n%2\nLook at them, and try again.")
                          .arg(QuotedPath(m_path), ConflictText(conflicts)));
    }
}

CommitResult CatalogueEditor::Commit()
{
    const QList<RecordEdit> changes = Changes();
    CommitResult result = CountEdits(changes);
    if (changes.isEmpty())
        return result;
    const Progress progress(m_output, Text::tr("writing %1").arg(QuotedPath(m_path)));
    // Whether the file still holds what was read is looked at just before it is replaced. Whoever writes without a lock
    // may have done so, or do so meanwhile: then it begins anew.
    auto present = m_isNew ? std::nullopt : std::optional(m_bytes);
    constexpr int tries = 10;
    for (int i = 0; i < tries; ++i) {
        result.isMerged = present.has_value() && (m_isNew || *present != m_bytes);
        if (TryCommit(changes, present, result.isMerged)) {
            result.isWritten = true;
            return result;
        }
        present = ReadPresent();
    }
    throw Failure(ExitCode::FileChanged,
                  Text::tr("The catalogue %1 is changed by somebody else again and again. Nothing was written; try "
                           "again.")
                      .arg(QuotedPath(m_path)));
}

bool CatalogueEditor::TryCommit(const QList<RecordEdit>& changes, const std::optional<QByteArray>& present,
                                bool isMerged)
{
    if (isMerged)
        RequireNoConflict(changes, *present);
    const bool isAsRead = present && !isMerged;
    const QByteArray text = isAsRead ? EditedCatalogue(m_path, m_bytes, changes, m_catalogue.GetPlaces())
                                     : EditedCatalogue(m_path, present.value_or("{}"), changes);
    CautiousFileSystem system(present, text, std::exchange(m_beforeReplacing, {}));
    const ZAXHostResult saved = ZAXHostFileSaver::Save(m_path, text, system);
    if (system.HasFoundChange())
        return false;
    if (!saved) {
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The catalogue %1 cannot be written: %2.").arg(QuotedPath(m_path), saved.GetMessage()));
    }
    Verify(text);
    return true;
}

void CatalogueEditor::Verify(const QByteArray& text) const
{
    if (ReadCatalogueFile(m_path) == text)
        return;
    throw Failure(ExitCode::FileFailure,
                  Text::tr("The catalogue %1 was written, but does not hold now what was written. Somebody else may "
                           "have replaced it. Look at it, and try again.")
                      .arg(QuotedPath(m_path)));
}

} // namespace zaxmat
