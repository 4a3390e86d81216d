#ifndef ZAXMAT_COMMANDOPTIONS_H
#define ZAXMAT_COMMANDOPTIONS_H

#include "Catalogue.h"
#include "ExitCode.h"
#include "Output.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zaxmat {

/// What is to be done: a command with its options. \throws Failure when it cannot be done.
using Action = std::function<ExitCode(Output&)>;

/// A text of the program as the command-line library takes it.
std::string Utf8(const QString& text);

/// Declares an option or, for a \a name without dashes, an argument of \a command that takes one text, which must not
/// be empty. \a target, which must live until the command line is parsed, gets the text; without the option it is left
/// alone. \a value names the text in the help.
CLI::Option* AddText(CLI::App& command, const QString& name, const QString& value, const QString& description,
                     QString& target);
/// The same for one or more texts, given behind one another or with the option repeated.
CLI::Option* AddTexts(CLI::App& command, const QString& name, const QString& value, const QString& description,
                      QStringList& target);

/// Adds a complete command line, from "zaxmat" on, to the examples that end the help of \a command, below what its
/// footer says already. The examples of all commands work as they stand, one after the other, in a folder that holds
/// examples/catalogue, which ZAXMAT_CATALOGUE names, a document job.zaxdoc with a material and a stock form of it, and
/// its materials as prices.csv.
void AddExample(CLI::App& command, const QString& commandLine);

/// Declares a switch of \a command that sets \a target.
CLI::Option* AddFlag(CLI::App& command, const QString& name, const QString& description, bool& target);

/// Declares to \a command, and to all commands below it, how they are told what to print.
void AddOutputOptions(CLI::App& command, OutputOptions& target);

/// Declares how \a command is told which catalogue it works on.
void AddCatalogueOptions(CLI::App& command, CatalogueOptions& target);

} // namespace zaxmat

#endif
