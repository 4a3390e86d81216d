#ifndef ZAXMAT_CHECKCOMMAND_H
#define ZAXMAT_CHECKCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

struct CheckOptions
{
    CatalogueOptions catalogue;
    /// Mend what can be mended without losing anything, after keeping a copy of the file.
    bool isFixing = false;
};

/// Prints what is wrong with the catalogue. InvalidValues when something is, and was not mended.
/// \throws Failure when the file cannot be read, or mended.
ExitCode RunCheck(const CheckOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddCheckCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
