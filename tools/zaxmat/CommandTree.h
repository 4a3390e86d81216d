#ifndef ZAXMAT_COMMANDTREE_H
#define ZAXMAT_COMMANDTREE_H

#include <QList>
#include <QString>
#include <QStringList>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zaxmat {

/// What the declaration of the program says about its commands, for the manual and the completion.

/// The commands below \a command, in the order of their declaration.
QList<const CLI::App*> CommandsOf(const CLI::App& command);
/// The names that lead to \a command, "zaxmat" first.
QStringList PathOf(const CLI::App& command);

/// The options of \a command that begin with dashes, in the order of their declaration.
QList<const CLI::Option*> OptionsOf(const CLI::App& command);
/// The other arguments of \a command, in their order.
QList<const CLI::Option*> ArgumentsOf(const CLI::App& command);

/// All names of \a option with their dashes, short ones first; the one name of an argument.
QStringList NamesOf(const CLI::Option& option);
/// What the help calls the text that \a option takes; empty for a switch. An argument has its own name.
QString ValueNameOf(const CLI::Option& option);

/// The usage of \a command in one line: "zaxmat use [OPTIONS] MATERIAL".
QString UsageOf(const CLI::App& command);

} // namespace zaxmat

#endif
