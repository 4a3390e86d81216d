#ifndef ZAXMAT_SHOWCOMMAND_H
#define ZAXMAT_SHOWCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

struct ShowOptions
{
    CatalogueOptions catalogue;
    /// A material, as FindMaterials() reads it, or a stock form by key or name.
    QString record;
};

/// Prints what the catalogue holds about the materials with their stock forms, or about the stock forms, that the
/// options name.
/// \throws Failure
ExitCode RunShow(const ShowOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddShowCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
