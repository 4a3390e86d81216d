#include "FuzzInput.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXSysStartup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHashSeed>
#include <QTemporaryDir>
#include <QtGlobal>

#include <memory>

namespace {

std::unique_ptr<QTemporaryDir>& Folder()
{
    static std::unique_ptr<QTemporaryDir> folder;
    return folder;
}

} // namespace

QString FuzzFolder()
{
    return Folder()->path();
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // The same input takes the same way every time.
    QHashSeed::setDeterministicGlobalSeed();
    const QLatin1String memory("/dev/shm");
    Folder() = std::make_unique<QTemporaryDir>((QFileInfo(memory).isWritable() ? QString(memory) : QDir::tempPath()) +
                                               QString::fromUtf8("/zax ø XXXXXX"));
    // No input reaches the user's home, and none is reported.
    qputenv("HOME", QFile::encodeName(FuzzFolder()));
    qunsetenv("XDG_CONFIG_HOME");
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtFatalMsg)
            Require(false, qPrintable(text));
    });
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    ZAXSysStartup::Start();
    return 0;
}
