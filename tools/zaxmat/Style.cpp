#include "Style.h"

#include <QByteArray>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace zaxmat {

namespace {

/// The terminal's code for \a emphasis.
QLatin1String CodeOf(Emphasis emphasis)
{
    switch (emphasis) {
    case Emphasis::None:
        break;
    case Emphasis::Heading:
        return QLatin1String("1");
    case Emphasis::Added:
        return QLatin1String("32");
    case Emphasis::Changed:
        return QLatin1String("33");
    case Emphasis::Removed:
    case Emphasis::Error:
        return QLatin1String("31");
    }
    return {};
}

} // namespace

bool IsTerminal(std::FILE* stream)
{
#ifdef Q_OS_UNIX
    return isatty(fileno(stream)) == 1;
#else
    Q_UNUSED(stream);
    return false;
#endif
}

bool IsColoured(std::FILE* stream)
{
    return IsTerminal(stream) && qgetenv("TERM") != "dumb" && qEnvironmentVariableIsEmpty("NO_COLOR");
}

QString Emphasized(const QString& text, Emphasis emphasis)
{
    const QLatin1String code = CodeOf(emphasis);
    return code.isEmpty() || text.isEmpty()
               ? text
               : QLatin1String("\x1b[") + code + QLatin1Char('m') + text + QLatin1String("\x1b[0m");
}

} // namespace zaxmat
