#include "BashCompletion.h"

#include "CommandTree.h"

#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"

#include <CLI/CLI.hpp>

#include <QMetaProperty>
#include <QRegularExpression>

namespace zaxmat {

namespace {

/// "property=" for all that a record or an object can be given.
QStringList PropertyWords()
{
    QStringList words;
    for (const QMetaObject* const type : {&ZAXMatMaterial::staticMetaObject, &ZAXMatPackaging::staticMetaObject}) {
        for (int i = type->propertyOffset(); i < type->propertyCount(); ++i) {
            const QString word = QString::fromLatin1(type->property(i).name()) + u'=';
            if (type->property(i).isWritable() && !words.contains(word))
                words.append(word);
        }
    }
    return words;
}

/// What is to be completed where \a option takes a text: "files", "folders", "properties", "words a b"; empty for what
/// the script does not know.
QString KindOf(const CLI::Option& option)
{
    static const QRegularExpression choice(QLatin1String("^[a-z]+(\\|[a-z]+)*$"));
    const QString value = ValueNameOf(option);
    if (value.startsWith(QLatin1String("FILE")))
        return QLatin1String("files");
    if (value.startsWith(QLatin1String("DIR")))
        return QLatin1String("folders");
    if (value.contains(u'=') || value.contains(QLatin1String("property")))
        return QLatin1String("properties");
    return choice.match(value).hasMatch() ? QLatin1String("words ") + QString(value).replace(u'|', u' ') : QString();
}

/// The words behind "zaxmat" that lead to \a command, each behind a space.
QString KeyOf(const CLI::App& command)
{
    QString key;
    for (const QString& name : PathOf(command).mid(1))
        key += u' ' + name;
    return key;
}

QString Quote(const QString& text)
{
    return u'\'' + QString(text).replace(u'\'', QLatin1String("'\\''")) + u'\'';
}

/// The branches that say what \a command and all below it take.
void AddCommands(const CLI::App& command, QString& script)
{
    QStringList commands;
    QStringList options;
    QStringList places;
    for (const CLI::App* const below : CommandsOf(command))
        commands.append(QString::fromStdString(below->get_name()));
    for (const CLI::Option* const option : OptionsOf(command))
        options.append(NamesOf(*option));
    for (const CLI::Option* const argument : ArgumentsOf(command))
        places.append(Quote(KindOf(*argument)));
    script += QLatin1String("        %1) commands=%2 options=%3 places=(%4) ;;\n")
                  .arg(Quote(KeyOf(command)), Quote(commands.join(u' ')), Quote(options.join(u' ')), places.join(u' '));
    for (const CLI::App* const below : CommandsOf(command))
        AddCommands(*below, script);
}

/// The branches for the options of \a command and all below it that take a text.
void AddOptions(const CLI::App& command, QString& script)
{
    for (const CLI::Option* const option : OptionsOf(command)) {
        const QStringList names = ValueNameOf(*option).isEmpty() ? QStringList() : NamesOf(*option);
        for (const QString& name : names)
            script += QLatin1String("        %1) kind=%2 ;;\n")
                          .arg(Quote(KeyOf(command) + u' ' + name), Quote(KindOf(*option)));
    }
    for (const CLI::App* const below : CommandsOf(command))
        AddOptions(*below, script);
}

const char* const scriptText = R"(# Completion of %NAME% for bash, made by "%NAME% completion bash".

_%NAME%_command() {
    case $1 in
%COMMANDS%        *) return 1 ;;
    esac
}

_%NAME%_value() {
    case $1 in
%OPTIONS%        *) return 1 ;;
    esac
}

_%NAME%() {
    local cur=${COMP_WORDS[COMP_CWORD]} command='' option='' place=0 kind='' i word
    local commands options places
    _%NAME%_command ''
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ $word == = ]]; then
            continue
        elif [[ $word == -* ]]; then
            option=''
            _%NAME%_value "$command $word" && option=$word
        elif [[ $option ]]; then
            option=''
        elif [[ " $commands " == *" $word "* ]]; then
            command+=" $word"
            _%NAME%_command "$command"
        else
            place=$((place + 1))
        fi
    done
    [[ $cur == = ]] && cur=''
    if [[ $option ]]; then
        _%NAME%_value "$command $option"
    elif [[ $cur == -* ]]; then
        kind="words $options"
    elif [[ $commands ]]; then
        kind="words $commands"
    elif ((${#places[@]})); then
        ((place < ${#places[@]})) || place=$((${#places[@]} - 1))
        kind=${places[place]}
    fi
    COMPREPLY=()
    case $kind in
        files) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
        folders) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- "$cur") ;;
        properties) compopt -o nospace 2>/dev/null; mapfile -t COMPREPLY < <(compgen -W '%PROPERTIES%' -- "$cur") ;;
        words*) mapfile -t COMPREPLY < <(compgen -W "${kind#words}" -- "$cur") ;;
    esac
}

complete -F _%NAME% %NAME%
)";

} // namespace

QString BashCompletion(const CLI::App& program)
{
    QString commands;
    AddCommands(program, commands);
    QString options;
    AddOptions(program, options);
    return QString::fromLatin1(scriptText)
        .replace(QLatin1String("%NAME%"), QString::fromStdString(program.get_name()))
        .replace(QLatin1String("%PROPERTIES%"), PropertyWords().join(u' '))
        .replace(QLatin1String("%COMMANDS%"), commands)
        .replace(QLatin1String("%OPTIONS%"), options);
}

} // namespace zaxmat
