#ifndef ZAXMAT_DIFFCOMMAND_H
#define ZAXMAT_DIFFCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

struct DiffOptions
{
    /// The catalogues to compare: folders, or files in the format of a materials.json.
    QString before;
    QString after;
};

/// Prints what differs between the two catalogues, record by record and field by field. InvalidValues when something
/// does.
/// \throws Failure when one of them cannot be read.
ExitCode RunDiff(const DiffOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddDiffCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
