#include "CommandLine.h"

#include "ZAXSysStartup.h"

#include <QCoreApplication>
#include <QLoggingCategory>

/// The program behind its start, which loads it when there is something to do.
extern "C" Q_DECL_EXPORT int ZaxmatProgram(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zaxmat"));
    // The commands say themselves what is wrong with a catalogue, and which extension cannot be made. QT_LOGGING_RULES
    // brings the library's words back.
    QLoggingCategory::setFilterRules(QStringLiteral("zax.material.json=false\nzax.feature=false"));
    ZAXSysStartup::Start();
    return static_cast<int>(zaxmat::RunCommandLine(application.arguments().mid(1)));
}
