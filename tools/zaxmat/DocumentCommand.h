#ifndef ZAXMAT_DOCUMENTCOMMAND_H
#define ZAXMAT_DOCUMENTCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

/// Declares the commands for the objects of a document to \a program, one level below it; when one of them is given,
/// \a chosen becomes its action.
void AddDocumentCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
