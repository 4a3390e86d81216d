#ifndef ZAXMAT_RECORDCHANGES_H
#define ZAXMAT_RECORDCHANGES_H

#include "Output.h"
#include "RecordDifference.h"
#include "Table.h"

#include "ZAXMatDefinition.h"

#include <QList>
#include <QString>

#include <utility>

namespace zaxmat {

/// What happened to a record.
struct RecordChange
{
    enum class Kind
    {
        Added,
        Removed,
        Changed,
    };

    Kind kind = Kind::Changed;
    /// The record after the change; of a removed one, what it was.
    ZAXMatDefinition record;
    /// What differs; of a changed record only.
    QList<FieldDifference> fields;
};

/// What has to happen to the records \a before to make them \a after, in the order of \a after, removed ones last.
/// Records are matched by type and key.
QList<RecordChange> RecordChanges(const QList<ZAXMatDefinition>& before, const QList<ZAXMatDefinition>& after);

/// The word for programs: "added", "removed", "changed".
QString ChangeWord(RecordChange::Kind kind);

/// The changes as a table with a row per record that was added or removed and per field that changed.
Table ChangesTable(const QList<RecordChange>& changes, LengthUnit unit);

/// The two values of \a field, a field of \a record, told apart even where they read alike, as 5 and "5" do.
std::pair<Cell, Cell> ValueCells(const ZAXMatDefinition& record, const FieldDifference& field, LengthUnit unit);

} // namespace zaxmat

#endif
