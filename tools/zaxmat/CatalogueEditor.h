#ifndef ZAXMAT_CATALOGUEEDITOR_H
#define ZAXMAT_CATALOGUEEDITOR_H

#include "Catalogue.h"
#include "FileLock.h"
#include "RecordMerge.h"

#include <QHash>

#include <functional>
#include <optional>
#include <utility>

namespace zaxmat {

class Output;

/// What an edit of a catalogue came to.
struct CommitResult
{
    qsizetype added = 0;
    qsizetype changed = 0;
    qsizetype removed = 0;
    /// Whether the file was written; it is left alone when nothing is to be changed.
    bool isWritten = false;
    /// Whether somebody else had changed the file meanwhile, and both changes are in it now.
    bool isMerged = false;
    /// What was done.
    QList<RecordEdit> edits = {};
};

/// A catalogue that is being changed. It is locked from the construction to the end. What is to become of its records
/// is collected, and written all at once by Commit(), or not at all. Schema makes new records.
class CatalogueEditor
{
public:
    enum class MissingFile
    {
        Refuse,
        /// Commit() makes it, in a folder that is there.
        Create,
    };

    /// Locks the catalogue, waiting up to a minute for others, and reads it. The progress line of \a output, which must
    /// live as long as this, tells of that and of Commit(). \a beforeReplacing is called by Commit() once, just before
    /// it replaces the file, for tests in which somebody else writes meanwhile. \throws Failure (FileFailure) when it
    /// stays locked, and for a file that Catalogue does not take.
    CatalogueEditor(const CatalogueOptions& options, const Output& output, MissingFile missing = MissingFile::Refuse,
                    std::function<void()> beforeReplacing = {});
    ~CatalogueEditor();
    CatalogueEditor(const CatalogueEditor&) = delete;
    CatalogueEditor& operator=(const CatalogueEditor&) = delete;

    /// The catalogue as it was read; what was collected since is not in it.
    const Catalogue& GetCatalogue() const { return m_catalogue; }
    /// Whether the file was not there.
    bool IsNew() const { return m_isNew; }

    /// The record as it is to be, after what was collected so far; invalid if there is none.
    ZAXMatDefinition GetRecord(ZAXMatDefinition::Type type, const QByteArray& key) const;
    /// Has the catalogue hold \a record, which must be valid, in the place of the one of its type and key, or besides
    /// all others.
    void SetRecord(const ZAXMatDefinition& record);
    /// The same where the caller has read from GetCatalogue() what \a record was \a before; invalid for a new one.
    void SetRecord(const ZAXMatDefinition& before, const ZAXMatDefinition& record);
    /// Takes the record of that type and key out of the catalogue. The stock forms of a material stay.
    void RemoveRecord(ZAXMatDefinition::Type type, const QByteArray& key);

    /// Writes what was collected: looks whether the file still holds what was read and otherwise merges record by
    /// record, replaces it, reads it again and compares. Nothing is written when nothing is changed.
    /// Somebody else's change while it is being replaced makes it begin anew.
    /// \throws Failure (FileChanged) when somebody else changed one of the same records meanwhile, or goes on changing
    /// the file, nothing being written; (FileFailure) when the file holds a member twice, cannot be written, or does
    /// not hold afterwards what it should.
    CommitResult Commit();

private:
    void Stage(const RecordEdit& edit);
    /// What was collected and is a change.
    QList<RecordEdit> Changes() const;
    /// What the file holds now; nothing when it was not there and is not there yet.
    std::optional<QByteArray> ReadPresent() const;
    /// Writes the \a changes into the file, as long as that holds \a present; false when it does not any more.
    /// \a isMerged says that this is not what was read.
    bool TryCommit(const QList<RecordEdit>& changes, const std::optional<QByteArray>& present, bool isMerged);
    /// \throws Failure (FileChanged) when somebody else, whose catalogue is \a theirs, touched what \a changes do.
    void RequireNoConflict(const QList<RecordEdit>& changes, const QByteArray& theirs) const;
    /// \throws Failure unless the file holds \a text.
    void Verify(const QByteArray& text) const;

    QString m_path;
    const Output& m_output;
    std::function<void()> m_beforeReplacing;
    FileLock m_lock;
    bool m_isNew;
    QByteArray m_bytes;
    Catalogue m_catalogue;
    QList<RecordEdit> m_edits;
    /// Where in the list a record of that type and key is.
    QHash<std::pair<int, QByteArray>, qsizetype> m_places;
};

} // namespace zaxmat

#endif
