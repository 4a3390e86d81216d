#ifndef ZAXMAT_EXPORTCOMMAND_H
#define ZAXMAT_EXPORTCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

struct ExportOptions
{
    CatalogueOptions catalogue;
    /// The file to write.
    QString file;
};

/// Writes all materials and stock forms into a CSV file, from which RunImport() makes the same catalogue again.
/// \throws Failure
ExitCode RunExport(const ExportOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddExportCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
