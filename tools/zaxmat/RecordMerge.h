#ifndef ZAXMAT_RECORDMERGE_H
#define ZAXMAT_RECORDMERGE_H

#include "ZAXMatDefinition.h"

#include <QJsonObject>
#include <QList>
#include <QString>

namespace zaxmat {

class Catalogue;

/// What is to become of a record.
struct RecordEdit
{
    /// The record as it was read; invalid for a new one.
    ZAXMatDefinition before;
    /// What it is to be; invalid for one that is removed.
    ZAXMatDefinition after;
};

/// A record that was changed on two sides, and not in the same way.
struct RecordConflict
{
    /// The record as both sides read it; invalid if there was none.
    ZAXMatDefinition before;
    /// What each side made of it; invalid where that removed it.
    ZAXMatDefinition ours;
    ZAXMatDefinition theirs;
    /// What is in the way, where it is not the record itself.
    QString reason = {};
};

/// Which of \a edits, made of the catalogue \a base, cannot be carried out on \a theirs, the same catalogue as somebody
/// else left it: those of records that are no longer what they were before the edit, unless they are what the edit
/// makes of them. A new stock form of a material that the other side removed is a conflict, and so is a stock form
/// that the other side put under a material which is removed here.
QList<RecordConflict> ConflictsOf(const QList<RecordEdit>& edits, const Catalogue& base, const Catalogue& theirs);

/// The catalogue \a root with \a edits carried out on it, whatever it holds. Other records and what else is in it stay
/// as they are, to the letter.
/// \throws Failure (FileFailure) when a record to be written stands in \a root several times, or another record has its
/// place there: neither may get lost.
QJsonObject Edited(const QJsonObject& root, const QList<RecordEdit>& edits);

/// The conflicts for a message: each record, field by field, with its value before and on either side.
QString ConflictText(const QList<RecordConflict>& conflicts);

} // namespace zaxmat

#endif
