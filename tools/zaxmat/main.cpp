#include "CommandLine.h"

#include "ZAXSysStartup.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

/// Whoever starts the program may have closed a standard stream. The next file opened would take its place, and a
/// document would receive what is meant for the terminal.
void KeepStandardStreamsApart()
{
#ifdef Q_OS_UNIX
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Opened the wrong way round, so that using it fails as using the closed stream would.
        if (fcntl(stream, F_GETFD) == -1)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
#endif
}

} // namespace

int main(int argc, char* argv[])
{
    KeepStandardStreamsApart();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zaxmat"));
    // The commands say themselves what is wrong with a catalogue. QT_LOGGING_RULES brings the library's words back.
    QLoggingCategory::setFilterRules(QStringLiteral("zax.material.json=false"));
    ZAXSysStartup::Start();
    return static_cast<int>(zaxmat::RunCommandLine(application.arguments().mid(1)));
}
