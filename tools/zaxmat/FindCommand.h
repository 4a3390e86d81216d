#ifndef ZAXMAT_FINDCOMMAND_H
#define ZAXMAT_FINDCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

struct FindOptions
{
    CatalogueOptions catalogue;
    /// "property=value", each as a Criterion reads it.
    QStringList criteria;
    /// The extension that the records found must hold values of; any record if empty.
    QString extension;
};

/// Prints the records of the catalogue that meet all criteria.
/// \throws Failure; nothing is written then.
ExitCode RunFind(const FindOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddFindCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
