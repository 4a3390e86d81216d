#ifndef ZAXMAT_CATALOGUETEXT_H
#define ZAXMAT_CATALOGUETEXT_H

#include "RecordMerge.h"
#include "RecordScan.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace zaxmat {

/// The text of a catalogue, \a bytes, with \a edits carried out on it, whatever it holds. Where every record is named
/// by its key, and they stand in their order, as this program and the library write them, all other records keep every
/// byte; in any case they keep what they hold, members that no record has included.
/// \a places is what ScanRecords() finds in \a bytes; without, it is called.
/// \throws Failure (FileFailure), naming the file \a path, when \a bytes are no JSON object, when a record to be
/// written stands in it several times or another one has its place, and when one of two members of the same name would
/// be lost.
QByteArray EditedCatalogue(const QString& path, const QByteArray& bytes, const QList<RecordEdit>& edits);
QByteArray EditedCatalogue(const QString& path, const QByteArray& bytes, const QList<RecordEdit>& edits,
                           const std::optional<std::vector<RecordPlace>>& places);

} // namespace zaxmat

#endif
