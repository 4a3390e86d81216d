#ifndef ZAXMAT_COMPLETIONCOMMAND_H
#define ZAXMAT_COMPLETIONCOMMAND_H

#include "CommandOptions.h"

namespace zaxmat {

/// Declares the command that prints a script for a shell, which completes the command lines of \a program; when it is
/// the one given, \a chosen becomes its action.
void AddCompletionCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
