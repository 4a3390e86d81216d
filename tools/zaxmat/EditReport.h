#ifndef ZAXMAT_EDITREPORT_H
#define ZAXMAT_EDITREPORT_H

#include "CatalogueEditor.h"

namespace zaxmat {

class Output;

/// Prints what the edit \a result of the catalogue in the file \a path came to: every change, and how many there were.
void PrintEdits(const CommitResult& result, const QString& path, Output& output);

} // namespace zaxmat

#endif
