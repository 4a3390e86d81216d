#ifndef ZAXMAT_RENAMECOMMAND_H
#define ZAXMAT_RENAMECOMMAND_H

#include "RecordChoice.h"

namespace zaxmat {

struct RenameOptions
{
    CatalogueOptions catalogue;
    RecordRequest request;
    QString name;
};

/// Gives a record of the catalogue another name. Its key stays.
/// \throws Failure; nothing is written then.
ExitCode RunRename(const RenameOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddRenameCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
