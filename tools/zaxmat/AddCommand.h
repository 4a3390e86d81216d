#ifndef ZAXMAT_ADDCOMMAND_H
#define ZAXMAT_ADDCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

struct AddOptions
{
    CatalogueOptions catalogue;
    QString name;
    /// The material that the new record is a stock form of, as FindMaterials() reads it; a new material if empty.
    QString material;
    /// "property=value", each as ParseSetting() reads it.
    QStringList settings;
};

/// Adds a material, or a stock form of a material, to the catalogue, whose file is made if it is missing, and prints
/// its key.
/// \throws Failure; nothing is written then.
ExitCode RunAdd(const AddOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddAddCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
