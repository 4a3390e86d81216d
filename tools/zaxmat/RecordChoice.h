#ifndef ZAXMAT_RECORDCHOICE_H
#define ZAXMAT_RECORDCHOICE_H

#include "CommandOptions.h"
#include "Output.h"

#include "ZAXMatDefinition.h"

#include <QString>

namespace zaxmat {

class Catalogue;

/// What the user says about the one record of a catalogue that is to be changed.
struct RecordRequest
{
    /// A material, as FindMaterials() reads it, or a stock form by key or name.
    QString record;
    /// The material, as FindMaterials() reads it, whose stock forms alone are looked at; all records if empty.
    QString material;
};

/// The one material that \a text stands for.
/// \throws Failure (WrongUsage) when there is none, or several.
ZAXMatDefinition ChooseMaterialRecord(const Catalogue& catalogue, const QString& text, LengthUnit unit);

/// The one record that \a request names.
/// \throws Failure (WrongUsage) when there is none, or several.
ZAXMatDefinition ChooseRecord(const Catalogue& catalogue, const RecordRequest& request, LengthUnit unit);

/// Declares the argument and the option of \a command that say which record is meant.
void AddRecordArgument(CLI::App& command, RecordRequest& target);

} // namespace zaxmat

#endif
