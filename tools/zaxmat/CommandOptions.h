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

// The headers of the command-line library take a compiler longer than all else in a command, so commands declare
// themselves by what is here.

/// A text of the program as the command-line library takes it.
std::string Utf8(const QString& text);

/// An option or an argument that was declared to a command, and what else there is to say of it.
class DeclaredOption
{
public:
    explicit DeclaredOption(CLI::Option* option);

    /// The command is refused without it.
    const DeclaredOption& Required() const;
    /// The command is refused with both of them.
    const DeclaredOption& Excludes(const DeclaredOption& other) const;
    /// \a refusal says of each text that is given why it is refused, or nothing.
    const DeclaredOption& Checked(const std::function<QString(const QString& text)>& refusal) const;
    /// Its texts come in one, with \a separator between them.
    const DeclaredOption& SeparatedBy(QChar separator) const;
    /// The heading in the help under which it stands.
    const DeclaredOption& InGroup(const QString& heading) const;
    /// The variable of the environment that has its text where the command line does not.
    const DeclaredOption& FromEnvironment(const QString& variable) const;

private:
    CLI::Option* m_option;
};

/// Declares a command of \a program, which goes on owning it.
CLI::App* DeclareCommand(CLI::App& program, const QString& name, const QString& description);

/// Has \a choose called once the command line was read and is one of \a command.
void WhenChosen(CLI::App& command, const std::function<void()>& choose);

/// Ends the help of \a command with \a text. Examples come behind it.
void SetFooter(CLI::App& command, const QString& text);

/// Declares an option or, for a \a name without dashes, an argument of \a command that takes one text, which must not
/// be empty. \a target, which must live until the command line is parsed, gets the text; without the option it is left
/// alone. \a value names the text in the help.
DeclaredOption AddText(CLI::App& command, const QString& name, const QString& value, const QString& description,
                       QString& target);
/// The same for one or more texts, given behind one another or with the option repeated.
DeclaredOption AddTexts(CLI::App& command, const QString& name, const QString& value, const QString& description,
                        QStringList& target);

/// Adds a complete command line, from "zaxmat" on, to the examples that end the help of \a command, below what its
/// footer says already. The examples of all commands work as they stand, one after the other, in a folder that holds
/// examples/catalogue, which ZAXMAT_CATALOGUE names, a document job.zaxdoc with a material and a stock form of it, and
/// its materials as prices.csv.
void AddExample(CLI::App& command, const QString& commandLine);

/// Declares a switch of \a command that sets \a target.
DeclaredOption AddFlag(CLI::App& command, const QString& name, const QString& description, bool& target);

/// Declares to \a command, and to all commands below it, how they are told what to print.
void AddOutputOptions(CLI::App& command, OutputOptions& target);

/// Declares how \a command is told which catalogue it works on.
void AddCatalogueOptions(CLI::App& command, CatalogueOptions& target);

} // namespace zaxmat

#endif
