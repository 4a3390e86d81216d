#ifndef ZAXMAT_REMOVECOMMAND_H
#define ZAXMAT_REMOVECOMMAND_H

#include "RecordChoice.h"

namespace zaxmat {

struct RemoveOptions
{
    CatalogueOptions catalogue;
    RecordRequest request;
    /// Whether a material may be removed with its stock forms.
    bool isConfirmed = false;
};

/// Removes a material with its stock forms, or a stock form, from the catalogue.
/// \throws Failure; nothing is written then.
ExitCode RunRemove(const RemoveOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddRemoveCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
