#include "ManualPage.h"

#include "CommandTree.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <QDir>

#include <algorithm>

namespace zaxmat {

namespace {

/// \a text as roff prints it, which is not taken for a request where it starts a line. The user's home, in which
/// defaults lie, is the reader's then.
QString Escaped(const QString& text)
{
    QString escaped = text;
    if (QDir::homePath() != QDir::rootPath())
        escaped.replace(QDir::homePath(), QLatin1String("~"));
    escaped.replace(u'\\', QLatin1String("\\e"))
        .replace(u'-', QLatin1String("\\-"))
        .replace(u'"', QLatin1String("\\(dq"))
        .replace(u'~', QLatin1String("\\(ti"))
        .replace(u'^', QLatin1String("\\(ha"))
        .replace(u'`', QLatin1String("\\(ga"));
    return escaped.startsWith(u'.') || escaped.startsWith(u'\'') ? QLatin1String("\\&") + escaped : escaped;
}

QString Macro(const char* name, const QString& text)
{
    return QLatin1Char('.') + QLatin1String(name) + QLatin1String(" \"") + Escaped(text) + QLatin1String("\"\n");
}

/// The end of a help: indented lines stand as they are, a line that ends with ':' is a heading made by the macro
/// \a heading, and empty lines part paragraphs.
QString Footer(const std::string& footer, const char* heading)
{
    QString roff;
    bool isVerbatim = false;
    const QStringList lines = QString::fromStdString(footer).split(u'\n');
    for (const QString& line : lines) {
        if (isVerbatim != line.startsWith(QLatin1String("  ")))
            roff +=
                std::exchange(isVerbatim, !isVerbatim) ? QLatin1String(".fi\n.RE\n") : QLatin1String(".RS 4\n.nf\n");
        if (isVerbatim)
            roff += Escaped(line.mid(2)) + u'\n';
        else if (line.endsWith(u':'))
            roff += Macro(heading, line.chopped(1));
        else
            roff += line.isEmpty() ? QLatin1String(".PP\n") : Escaped(line) + u'\n';
    }
    return isVerbatim ? roff + QLatin1String(".fi\n.RE\n") : roff;
}

QString Described(const CLI::Option& option)
{
    QStringList names = NamesOf(option);
    std::ranges::transform(names, names.begin(), [](const QString& name) {
        return QLatin1String("\\fB") + Escaped(name) + QLatin1String("\\fR");
    });
    QString line = names.join(QLatin1String(", "));
    if (!option.get_positional() && !ValueNameOf(option).isEmpty())
        line += QLatin1String(" \\fI") + Escaped(ValueNameOf(option)) + QLatin1String("\\fR");
    return QLatin1String(".TP\n") + line + u'\n' + Escaped(QString::fromStdString(option.get_description())) + u'\n';
}

/// The options of \a command that the program as a whole does not have.
QList<const CLI::Option*> OwnOptionsOf(const CLI::App& command, const CLI::App& program)
{
    QList<const CLI::Option*> own;
    const QList<const CLI::Option*> options = OptionsOf(command);
    std::ranges::copy_if(options, std::back_inserter(own), [&](const CLI::Option* option) {
        return !program.get_option_no_throw(NamesOf(*option).constLast().toStdString());
    });
    return own;
}

/// The section of \a command, and of those below it.
QString Section(const CLI::App& command, const CLI::App& program)
{
    QString roff = Macro("SS", UsageOf(command)) + Escaped(QString::fromStdString(command.get_description())) + u'\n';
    const QList<const CLI::Option*> options = ArgumentsOf(command) + OwnOptionsOf(command, program);
    for (const CLI::Option* const option : options)
        roff += Described(*option);
    roff += QLatin1String(".PP\n") + Footer(command.get_footer(), "PP\n.B");
    const QList<const CLI::App*> commands = CommandsOf(command);
    for (const CLI::App* const below : commands)
        roff += Section(*below, program);
    return roff;
}

/// The variables that stand for options of \a command and those below it, each once.
void AddVariables(const CLI::App& command, QStringList& names, QString& roff)
{
    const QList<const CLI::Option*> options = OptionsOf(command);
    for (const CLI::Option* const option : options) {
        const QString name = QString::fromStdString(option->get_envname());
        if (name.isEmpty() || names.contains(name))
            continue;
        names.append(name);
        roff += QLatin1String(".TP\n\\fB") + Escaped(name) + QLatin1String("\\fR\n") +
                Escaped(Text::tr("Stands for %1 where that is not given.").arg(NamesOf(*option).constLast())) + u'\n';
    }
    const QList<const CLI::App*> commands = CommandsOf(command);
    for (const CLI::App* const below : commands)
        AddVariables(*below, names, roff);
}

} // namespace

QString ManualPage(const CLI::App& program)
{
    const QString name = QString::fromStdString(program.get_name());
    const QString description = QString::fromStdString(program.get_description());
    QString roff = QLatin1String(".TH ") + name.toUpper() + QLatin1String(" 1 \"\" \"") +
                   QLatin1String("zaxmat " ZAXMAT_VERSION) + QLatin1String("\"\n");
    roff += Macro("SH", Text::tr("NAME")) + Escaped(name) + QLatin1String(" \\- ") + Escaped(description) + u'\n';
    roff += Macro("SH", Text::tr("SYNOPSIS")) + Macro("B", name + QLatin1String(" COMMAND [OPTIONS] [ARGUMENTS]"));
    roff += Macro("SH", Text::tr("OPTIONS"));
    const QList<const CLI::Option*> options = OptionsOf(program);
    for (const CLI::Option* const option : options)
        roff += Described(*option);
    roff += Macro("SH", Text::tr("COMMANDS"));
    const QList<const CLI::App*> commands = CommandsOf(program);
    for (const CLI::App* const command : commands)
        roff += Section(*command, program);
    QStringList variables;
    roff += Macro("SH", Text::tr("ENVIRONMENT"));
    AddVariables(program, variables, roff);
    roff += QLatin1String(".TP\n\\fBNO_COLOR\\fR\n") +
            Escaped(Text::tr("Set and not empty: no colours, on a terminal either.")) + u'\n';
    return roff + Macro("SH", Text::tr("NOTES")) + Footer(program.get_footer(), "SH");
}

} // namespace zaxmat
