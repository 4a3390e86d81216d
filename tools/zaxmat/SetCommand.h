#ifndef ZAXMAT_SETCOMMAND_H
#define ZAXMAT_SETCOMMAND_H

#include "RecordChoice.h"

namespace zaxmat {

struct SetOptions
{
    CatalogueOptions catalogue;
    RecordRequest request;
    /// "property=value", each as ParseSetting() reads it.
    QStringList settings;
};

/// Gives a record of the catalogue new values, and prints what changed.
/// \throws Failure; nothing is written then.
ExitCode RunSet(const SetOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddSetCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
