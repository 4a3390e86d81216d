#include "CommandTree.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>

namespace zaxmat {

namespace {

QString FromUtf8(const std::string& text)
{
    return QString::fromStdString(text);
}

QList<const CLI::Option*> OptionsWhere(const CLI::App& command, bool arePositional)
{
    const std::vector<const CLI::Option*> options =
        command.get_options([=](const CLI::Option* option) { return option->get_positional() == arePositional; });
    return {options.begin(), options.end()};
}

} // namespace

QList<const CLI::App*> CommandsOf(const CLI::App& command)
{
    const std::vector<const CLI::App*> commands = command.get_subcommands([](const CLI::App*) { return true; });
    return {commands.begin(), commands.end()};
}

QStringList PathOf(const CLI::App& command)
{
    const CLI::App* const parent = command.get_parent();
    return (parent ? PathOf(*parent) : QStringList()) << FromUtf8(command.get_name());
}

QList<const CLI::Option*> OptionsOf(const CLI::App& command)
{
    return OptionsWhere(command, false);
}

QList<const CLI::Option*> ArgumentsOf(const CLI::App& command)
{
    return OptionsWhere(command, true);
}

QStringList NamesOf(const CLI::Option& option)
{
    if (option.get_positional())
        return {FromUtf8(option.get_name(true))};
    QStringList names;
    for (const std::string& name : option.get_snames())
        names.append(u'-' + FromUtf8(name));
    for (const std::string& name : option.get_lnames())
        names.append(QLatin1String("--") + FromUtf8(name));
    return names;
}

QString ValueNameOf(const CLI::Option& option)
{
    if (option.get_positional())
        return FromUtf8(option.get_name(true));
    return option.get_items_expected_max() == 0 ? QString() : FromUtf8(option.get_type_name());
}

QString UsageOf(const CLI::App& command)
{
    QStringList words = PathOf(command);
    if (!OptionsOf(command).isEmpty())
        words.append(QLatin1String("[OPTIONS]"));
    const QList<const CLI::Option*> arguments = ArgumentsOf(command);
    for (const CLI::Option* const argument : arguments) {
        const QString name =
            ValueNameOf(*argument) + (argument->get_items_expected_max() > 1 ? QLatin1String("...") : QLatin1String());
        words.append(argument->get_required() ? name : u'[' + name + u']');
    }
    return words.join(u' ');
}

} // namespace zaxmat
