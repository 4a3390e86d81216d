#ifndef ZAXMAT_USECOMMAND_H
#define ZAXMAT_USECOMMAND_H

#include "CommandOptions.h"
#include "MaterialChoice.h"

namespace zaxmat {

struct UseOptions
{
    CatalogueOptions catalogue;
    /// The document's file, which need not exist.
    QString document;
    MaterialRequest request;
};

/// Takes a material of a catalogue and stock forms of it into a document, as far as they are not in it, saves the
/// document and reopens it to compare. Prints what was done. Whenever this fails, or returns anything but Done, the
/// document's file is what it was.
/// \throws Failure
ExitCode RunUse(const UseOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddUseCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
