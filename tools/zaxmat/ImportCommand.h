#ifndef ZAXMAT_IMPORTCOMMAND_H
#define ZAXMAT_IMPORTCOMMAND_H

#include "CommandOptions.h"

#include <QStringList>

namespace zaxmat {

struct ImportOptions
{
    CatalogueOptions catalogue;
    /// The CSV file to read.
    QString file;
    /// The columns by which rows are matched with records; "key" if empty.
    QStringList match;
    /// Show what would be done, and write nothing.
    bool isDryRun = false;
    /// Import what can be imported when rows are rejected.
    bool isPartial = false;
};

/// Makes the rows of a CSV file, one for a material or stock form each, records of the catalogue: new ones, or new
/// values of those that are there. InvalidValues when rows are rejected; without isPartial nothing is written then.
/// \throws Failure
ExitCode RunImport(const ImportOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddImportCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
