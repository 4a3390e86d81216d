#include "CommandOptions.h"

#include "Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace zaxmat {

namespace {

QString FromUtf8(const std::string& text)
{
    return QString::fromStdString(text);
}

// Texts stand apart from functions that return what lupdate has not read: it would not find their context there.

QString EmptyText()
{
    return Text::tr("must not be empty");
}

QString NoChoiceText(const QString& text, const QString& words)
{
    return Text::tr("%1 is none of %2").arg(Quoted(text), words);
}

/// An option that refuses empty texts.
DeclaredOption Described(CLI::Option* option, const QString& value)
{
    option->type_name(Utf8(value));
    return DeclaredOption(option).Checked([](const QString& text) { return text.isEmpty() ? EmptyText() : QString(); });
}

/// Declares an option that takes one of some words. \a target gets what the word stands for.
template <typename Choice>
DeclaredOption AddChoice(CLI::App& command, const QString& name, const QString& description, Choice& target,
                         const std::vector<std::pair<std::string, Choice>>& choices)
{
    std::string words;
    for (const auto& [word, choice] : choices)
        words += (words.empty() ? "" : "|") + word;
    const auto find = [choices](const std::string& text) -> std::optional<Choice> {
        const auto found = std::ranges::find(choices, text, &std::pair<std::string, Choice>::first);
        return found != choices.end() ? std::optional(found->second) : std::nullopt;
    };
    const auto store = [find, &target](const std::string& text) { target = find(text).value(); };
    const auto check = [find, words](const std::string& text) {
        return find(text) ? std::string() : Utf8(NoChoiceText(FromUtf8(text), FromUtf8(words)));
    };
    return DeclaredOption(
        command.add_option_function<std::string>(Utf8(name), store, Utf8(description))->type_name(words)->check(check));
}

} // namespace

std::string Utf8(const QString& text)
{
    return text.toStdString();
}

DeclaredOption::DeclaredOption(CLI::Option* option) : m_option(option) {}

const DeclaredOption& DeclaredOption::Required() const
{
    m_option->required();
    return *this;
}

const DeclaredOption& DeclaredOption::Excludes(const DeclaredOption& other) const
{
    m_option->excludes(other.m_option);
    return *this;
}

const DeclaredOption& DeclaredOption::Checked(const std::function<QString(const QString&)>& refusal) const
{
    m_option->check([refusal](const std::string& text) { return Utf8(refusal(FromUtf8(text))); });
    return *this;
}

const DeclaredOption& DeclaredOption::SeparatedBy(QChar separator) const
{
    m_option->delimiter(separator.toLatin1())->allow_extra_args(false);
    return *this;
}

const DeclaredOption& DeclaredOption::InGroup(const QString& heading) const
{
    m_option->group(Utf8(heading));
    return *this;
}

const DeclaredOption& DeclaredOption::FromEnvironment(const QString& variable) const
{
    m_option->envname(Utf8(variable));
    return *this;
}

CLI::App* DeclareCommand(CLI::App& program, const QString& name, const QString& description)
{
    return program.add_subcommand(Utf8(name), Utf8(description));
}

void WhenChosen(CLI::App& command, const std::function<void()>& choose)
{
    command.callback(choose);
}

void SetFooter(CLI::App& command, const QString& text)
{
    command.footer(Utf8(text));
}

DeclaredOption AddText(CLI::App& command, const QString& name, const QString& value, const QString& description,
                       QString& target)
{
    const auto store = [&target](const std::string& text) { target = FromUtf8(text); };
    return Described(command.add_option_function<std::string>(Utf8(name), store, Utf8(description)), value);
}

DeclaredOption AddTexts(CLI::App& command, const QString& name, const QString& value, const QString& description,
                        QStringList& target)
{
    const auto store = [&target](const std::vector<std::string>& texts) {
        target.clear();
        std::ranges::transform(texts, std::back_inserter(target), FromUtf8);
    };
    return Described(command.add_option_function<std::vector<std::string>>(Utf8(name), store, Utf8(description)),
                     value);
}

void AddExample(CLI::App& command, const QString& commandLine)
{
    const QString heading = Text::tr("Examples:");
    QString help = FromUtf8(command.get_footer());
    if (!help.split(u'\n').contains(heading))
        help += help.isEmpty() ? heading : QLatin1String("\n\n") + heading;
    command.footer(Utf8(help + QLatin1String("\n  ") + commandLine));
}

DeclaredOption AddFlag(CLI::App& command, const QString& name, const QString& description, bool& target)
{
    return DeclaredOption(command.add_flag_callback(
        Utf8(name), [&target] { target = true; }, Utf8(description)));
}

void AddOutputOptions(CLI::App& command, OutputOptions& target)
{
    const QString group = Text::tr("Output");
    AddChoice(command, QLatin1String("--format"), Text::tr("What results are printed as."), target.format,
              {{"table", Format::Table}, {"json", Format::Json}, {"csv", Format::Csv}})
        .InGroup(group);
    AddFlag(command, QLatin1String("-q,--quiet"), Text::tr("Prints the data asked for and errors, nothing else."),
            target.isQuiet)
        .InGroup(group);
    AddChoice(command, QLatin1String("--unit"),
              Text::tr("The unit that lengths are displayed in. JSON and CSV have millimetres."), target.unit,
              {{"mm", LengthUnit::Millimetre}, {"in", LengthUnit::Inch}})
        .InGroup(group);
    for (CLI::App* const below : command.get_subcommands({}))
        AddOutputOptions(*below, target);
}

void AddCatalogueOptions(CLI::App& command, CatalogueOptions& target)
{
    AddText(command, QLatin1String("--catalogue"), Text::tr("DIR"),
            Text::tr("The folder of the catalogue, which holds its materials.json. Default: %1.")
                .arg(QuotedPath(DefaultCatalogueDirectory())),
            target.directory)
        .FromEnvironment(QLatin1String("ZAXMAT_CATALOGUE"));
}

} // namespace zaxmat
