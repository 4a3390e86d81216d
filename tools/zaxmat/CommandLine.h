#ifndef ZAXMAT_COMMANDLINE_H
#define ZAXMAT_COMMANDLINE_H

#include "ExitCode.h"

#include <QStringList>

namespace zaxmat {

/// Does what \a arguments, without the name of the program, ask for: results go to the standard output, messages to
/// the standard error.
ExitCode RunCommandLine(const QStringList& arguments);

} // namespace zaxmat

#endif
