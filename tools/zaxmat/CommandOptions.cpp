#include "CommandOptions.h"

#include "Text.h"

#include <CLI/CLI.hpp>

namespace zaxmat {

namespace {

QString FromUtf8(const std::string& text)
{
    return QString::fromStdString(text);
}

/// An option that refuses empty texts.
CLI::Option* Described(CLI::Option* option, const QString& value)
{
    return option->type_name(Utf8(value))->check([](const std::string& text) {
        return text.empty() ? Utf8(Text::tr("must not be empty")) : std::string();
    });
}

} // namespace

std::string Utf8(const QString& text)
{
    return text.toStdString();
}

CLI::Option* AddText(CLI::App& command, const QString& name, const QString& value, const QString& description,
                     QString& target)
{
    const auto store = [&target](const std::string& text) { target = FromUtf8(text); };
    return Described(command.add_option_function<std::string>(Utf8(name), store, Utf8(description)), value);
}

CLI::Option* AddTexts(CLI::App& command, const QString& name, const QString& value, const QString& description,
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

void AddCatalogueOptions(CLI::App& command, CatalogueOptions& target)
{
    AddText(command, QLatin1String("--catalogue"), Text::tr("DIR"),
            Text::tr("The folder of the catalogue, which holds its materials.json. Default: %1.")
                .arg(QuotedPath(DefaultCatalogueDirectory())),
            target.directory)
        ->envname("ZAXMAT_CATALOGUE");
}

} // namespace zaxmat
