#include "EditReport.h"

#include "Output.h"
#include "RecordChanges.h"
#include "Text.h"
#include "Twins.h"

#include <algorithm>
#include <iterator>

namespace zaxmat {

namespace {

QList<ZAXMatDefinition> Valid(const QList<RecordEdit>& edits, ZAXMatDefinition RecordEdit::*side)
{
    QList<ZAXMatDefinition> records;
    for (const RecordEdit& edit : edits) {
        if ((edit.*side).IsValid())
            records.append(edit.*side);
    }
    return records;
}

} // namespace

void PrintEdits(const CommitResult& result, const Catalogue& catalogue, Output& output)
{
    const QString path = QuotedPath(catalogue.GetFilePath());
    if (result.isWritten || output.GetFormat() != Format::Table) {
        output.Print(ChangesTable(
            RecordChanges(Valid(result.edits, &RecordEdit::before), Valid(result.edits, &RecordEdit::after)),
            output.GetUnit()));
        output.Print(QString());
    }
    if (result.isMerged)
        output.AddNote(
            Text::tr("somebody else changed other records of the catalogue meanwhile; both changes are in it."));
    NoteTwins(catalogue, result.edits, output);
    output.Print(result.isWritten ? Text::tr("Catalogue %1 saved: records added: %2, changed: %3, removed: %4")
                                        .arg(path, QString::number(result.added), QString::number(result.changed),
                                             QString::number(result.removed))
                                  : Text::tr("Catalogue %1 holds this already; nothing was written.").arg(path));
}

} // namespace zaxmat
