#ifndef ZAXMAT_COPYCOMMAND_H
#define ZAXMAT_COPYCOMMAND_H

#include "RecordChoice.h"

namespace zaxmat {

struct CopyOptions
{
    CatalogueOptions catalogue;
    RecordRequest request;
    /// The name of the copy.
    QString name;
    /// "property=value", each as ParseSetting() reads it: what the copy has other than the original.
    QStringList settings;
};

/// Adds a copy of a material with its stock forms, or of a stock form, to the catalogue, and prints the new key.
/// \throws Failure; nothing is written then.
ExitCode RunCopy(const CopyOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddCopyCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
