#ifndef ZAXMAT_MANUALCOMMAND_H
#define ZAXMAT_MANUALCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

/// Declares the command that prints the manual page of \a program; when it is the one given, \a chosen becomes its
/// action.
void AddManualCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
