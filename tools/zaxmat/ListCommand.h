#ifndef ZAXMAT_LISTCOMMAND_H
#define ZAXMAT_LISTCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

struct ListOptions
{
    CatalogueOptions catalogue;
};

/// Prints the materials of a catalogue, one per line, and how many there are.
/// \throws Failure
ExitCode RunList(const ListOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddListCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
