#ifndef ZAXMAT_BASHCOMPLETION_H
#define ZAXMAT_BASHCOMPLETION_H

#include <QString>

namespace CLI {
class App;
} // namespace CLI

namespace zaxmat {

/// A script for bash that completes the command lines of \a program: commands, options, their words, files and
/// folders, and the names of properties.
QString BashCompletion(const CLI::App& program);

} // namespace zaxmat

#endif
