#include "CommandLine.h"

#include "AddCommand.h"
#include "CheckCommand.h"
#include "CommandOptions.h"
#include "CompletionCommand.h"
#include "CopyCommand.h"
#include "DiffCommand.h"
#include "DocumentCommand.h"
#include "ExportCommand.h"
#include "Failure.h"
#include "FindCommand.h"
#include "ImportCommand.h"
#include "ListCommand.h"
#include "ManualCommand.h"
#include "Output.h"
#include "RemoveCommand.h"
#include "RenameCommand.h"
#include "SetCommand.h"
#include "ShowCommand.h"
#include "Text.h"
#include "UseCommand.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace zaxmat {

namespace {

QString ExitCodesText()
{
    return Text::tr("Exit codes:\n"
                    "  0   done\n"
                    "  1   invalid values, or mistakes or differences found\n"
                    "  2   wrong usage: unknown, ambiguous, no number\n"
                    "  3   a file that cannot be read, understood or written\n"
                    "  4   somebody else changed the same record meanwhile; nothing was written\n"
                    "  70  a mistake of zaxmat itself, which its makers would like to hear of");
}

/// What a command line asks for.
struct Request
{
    Action action;
    OutputOptions output;
};

/// The program with all its commands. Once it has parsed a command line, \a request is what to do.
std::unique_ptr<CLI::App> MakeProgram(Request& request)
{
    auto program = std::make_unique<CLI::App>(
        Utf8(Text::tr("Catalogues of sheet materials, and the materials of documents.")), "zaxmat");
    program->set_help_flag("-h,--help", Utf8(Text::tr("Prints this help.")));
    program->set_version_flag("--version", "zaxmat " ZAXMAT_VERSION, Utf8(Text::tr("Prints the version.")));
    AddListCommand(*program, request.action);
    AddShowCommand(*program, request.action);
    AddFindCommand(*program, request.action);
    AddAddCommand(*program, request.action);
    AddSetCommand(*program, request.action);
    AddRenameCommand(*program, request.action);
    AddCopyCommand(*program, request.action);
    AddRemoveCommand(*program, request.action);
    AddImportCommand(*program, request.action);
    AddExportCommand(*program, request.action);
    AddCheckCommand(*program, request.action);
    AddDiffCommand(*program, request.action);
    AddUseCommand(*program, request.action);
    AddDocumentCommand(*program, request.action);
    AddCompletionCommand(*program, request.action);
    AddManualCommand(*program, request.action);
    AddOutputOptions(*program, request.output);
    program->footer(
        Utf8(Text::tr("\"zaxmat COMMAND --help\" explains a command.") + QLatin1String("\n\n") + ExitCodesText()));
    return program;
}

/// "zaxmat", with the command that was given.
QString InvocationOf(const CLI::App& program)
{
    const auto commands = program.get_subcommands();
    const QString name = QString::fromStdString(program.get_name());
    return commands.empty() ? name : name + u' ' + InvocationOf(*commands.back());
}

/// What \a arguments ask for.
Request Parse(const QStringList& arguments)
{
    const auto notRead = std::ranges::find_if(
        arguments, [](const QString& argument) { return argument.contains(QChar::ReplacementCharacter); });
    if (notRead != arguments.end())
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 is no UTF-8.").arg(Quoted(*notRead)));
    Request request;
    const auto program = MakeProgram(request);
    std::vector<std::string> reversed;
    std::ranges::transform(arguments, std::back_inserter(reversed), Utf8);
    std::ranges::reverse(reversed);
    try {
        program->parse(std::move(reversed));
    } catch (const CLI::Success& answer) {
        std::ostringstream text;
        program->exit(answer, text, text);
        // It is for people, whatever else was asked for.
        return {[text = QString::fromStdString(text.str())](Output& output) {
                    output.PrintText(text.trimmed());
                    return ExitCode::Done;
                },
                {}};
    } catch (const CLI::ParseError& error) {
        throw Failure(ExitCode::WrongUsage, Text::tr("%1\n\"%2 --help\" explains the usage.")
                                                .arg(QString::fromStdString(error.what()), InvocationOf(*program)));
    }
    if (!request.action)
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("A command is missing.\n\"%1 --help\" explains the usage.").arg(InvocationOf(*program)));
    return request;
}

} // namespace

ExitCode RunCommandLine(const QStringList& arguments)
{
    try {
        const Request request = Parse(arguments);
        Output output(request.output);
        const ExitCode code = request.action(output);
        QString reason;
        if (!output.Write(&reason))
            throw Failure(ExitCode::FileFailure,
                          Text::tr("The command is done, but its results cannot be written: %1.").arg(reason));
        return code;
    } catch (const Failure& failure) {
        PrintError(failure.GetMessage());
        return failure.GetCode();
    } catch (const std::exception& exception) {
        PrintError(Text::tr("This should not happen: %1").arg(QString::fromUtf8(exception.what())));
        return ExitCode::InternalError;
    }
}

} // namespace zaxmat
