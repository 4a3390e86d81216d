#ifndef ZAXMAT_RECORDCHANGES_H
#define ZAXMAT_RECORDCHANGES_H

#include "Table.h"

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

namespace zaxmat {

class Output;

/// A field of a record that has two different values.
struct FieldChange
{
    /// Of a property the extension key and the name; of the record's own fields no extension, and "name", "type" or
    /// "materialKey".
    QByteArray extension;
    QByteArray field;
    /// Whether the field is the record's own, and no property.
    bool isOwn = false;
    QVariant before;
    QVariant after;
};

/// The fields in which \a after differs from \a before, the record's own first. A property without a value counts as
/// one that is not there.
QList<FieldChange> FieldChanges(const ZAXMatDefinition& before, const ZAXMatDefinition& after);

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
    QList<FieldChange> fields;
};

/// What has to happen to the records \a before to make them \a after, in the order of \a after, removed ones last.
/// Records are matched by type and key.
QList<RecordChange> RecordChanges(const QList<ZAXMatDefinition>& before, const QList<ZAXMatDefinition>& after);

/// The word for programs: "added", "removed", "changed".
QString ChangeWord(RecordChange::Kind kind);

/// The changes as a table with a row per record that was added or removed and per field that changed.
Table ChangesTable(const QList<RecordChange>& changes);

} // namespace zaxmat

#endif
