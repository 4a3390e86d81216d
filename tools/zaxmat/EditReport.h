#ifndef ZAXMAT_EDITREPORT_H
#define ZAXMAT_EDITREPORT_H

#include "CatalogueEditor.h"

namespace zaxmat {

class Output;

/// Prints what the edit \a result of \a catalogue, as it was before, came to: every change, how many there were, and
/// what the user should know of them.
void PrintEdits(const CommitResult& result, const Catalogue& catalogue, Output& output);

} // namespace zaxmat

#endif
