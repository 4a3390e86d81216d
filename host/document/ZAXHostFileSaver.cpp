#include "ZAXHostFileSaver.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr auto asideSuffix = ".saving";

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostFileSaver", text);
}

QString LastError()
{
    return qt_error_string(errno);
}

QString AsidePrefix(const QFileInfo& target)
{
    return u'.' + target.fileName() + u'.';
}

bool IsRunning(const QString& process)
{
    bool ok = false;
    const int id = process.toInt(&ok);
    return !ok || id <= 0 || kill(id, 0) == 0 || errno == EPERM;
}

/// Removes the files aside that savings of processes left which are no longer there.
void RemoveLeftovers(const QFileInfo& target, ZAXHostFileSystem& system)
{
    const QString prefix = AsidePrefix(target);
    const QString suffix = QLatin1String(asideSuffix);
    const auto entries = target.absoluteDir().entryList(QDir::Files | QDir::Hidden);
    for (const QString& name : entries) {
        if (!name.startsWith(prefix) || !name.endsWith(suffix) || name.size() <= prefix.size() + suffix.size())
            continue;
        const QString process = name.sliced(prefix.size(), name.size() - prefix.size() - suffix.size());
        if (process == QString::number(getpid()) || !IsRunning(process))
            system.Remove(QFile::encodeName(target.absoluteDir().filePath(name)));
    }
}

unsigned int ModeOf(const QByteArray& path)
{
    struct stat status = {};
    return stat(path.constData(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

/// Writes all of \a bytes; a call may write less than it is given.
bool WriteAll(int file, const QByteArray& bytes, ZAXHostFileSystem& system)
{
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 count = system.Write(file, bytes.constData() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            errno = count == 0 ? ENOSPC : errno;
            return false;
        }
        written += count;
    }
    return true;
}

/// Writes the new file \a aside; on a failure it is gone again.
ZAXHostResult WriteAside(const QByteArray& aside, unsigned int mode, const QByteArray& bytes, ZAXHostFileSystem& system)
{
    // Nobody may read it meanwhile who may not read the old one.
    const int file = system.Create(aside, mode != 0 ? mode & 0666U : 0666U);
    if (file < 0)
        return ZAXHostResult::Failed(Tr("a file beside it cannot be made: %1").arg(LastError()));
    ZAXHostResult result = ZAXHostResult::Done();
    const auto check = [&](bool isDone, const char* what) {
        if (result && !isDone)
            result = ZAXHostResult::Failed(Tr(what).arg(LastError()));
        return bool(result);
    };
    if (check(WriteAll(file, bytes, system), QT_TRANSLATE_NOOP("ZAXHostFileSaver", "it cannot be written: %1")) &&
        mode != 0)
        check(system.SetMode(file, mode) == 0,
              QT_TRANSLATE_NOOP("ZAXHostFileSaver", "its permissions cannot be kept: %1"));
    if (result)
        check(system.Sync(file) == 0, QT_TRANSLATE_NOOP("ZAXHostFileSaver", "it cannot be written: %1"));
    check(system.Close(file) == 0, QT_TRANSLATE_NOOP("ZAXHostFileSaver", "it cannot be written: %1"));
    if (!result)
        system.Remove(aside);
    return result;
}

/// Why the file must not be replaced; empty if it may.
QString WhyProtected(const QFileInfo& target, const QByteArray& file, unsigned int mode)
{
    if (!target.exists())
        return {};
    if (target.isDir())
        return Tr("it is a folder");
    if (!target.isFile())
        return Tr("it is no file");
    // Who may do anything must still ask before writing what is marked as read-only.
    if ((mode & 0222U) == 0)
        errno = EACCES;
    else if (access(file.constData(), W_OK) == 0)
        return {};
    return Tr("it must not be written: %1").arg(LastError());
}

} // namespace

QString ZAXHostFileSaver::TargetOf(const QString& path)
{
    const QFileInfo file(path);
    const QString canonical = file.canonicalFilePath();
    if (!canonical.isEmpty())
        return canonical;
    // A file that is not there yet in a folder that is.
    const QFileInfo target(file.isSymLink() ? file.symLinkTarget() : file.absoluteFilePath());
    const QString folder = QFileInfo(target.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? target.absoluteFilePath() : QDir(folder).filePath(target.fileName());
}

ZAXHostResult ZAXHostFileSaver::Save(const QString& path, const QByteArray& bytes, ZAXHostFileSystem& system)
{
    const QFileInfo target(TargetOf(path));
    const QByteArray file = QFile::encodeName(target.absoluteFilePath());
    const unsigned int mode = ModeOf(file);
    if (const QString why = WhyProtected(target, file, mode); !why.isEmpty())
        return ZAXHostResult::Failed(why);
    RemoveLeftovers(target, system);
    const QByteArray aside = QFile::encodeName(
        target.absoluteDir().filePath(AsidePrefix(target) + QString::number(getpid()) + QLatin1String(asideSuffix)));
    if (const auto result = WriteAside(aside, mode, bytes, system); !result)
        return result;
    if (system.Rename(aside, file) != 0) {
        const QString why = LastError();
        system.Remove(aside);
        return ZAXHostResult::Failed(Tr("it cannot be replaced: %1").arg(why));
    }
    if (system.SyncFolder(QFile::encodeName(target.absolutePath())) != 0)
        return ZAXHostResult::Failed(
            Tr("the new file is in its place, but may not outlast a power failure: %1").arg(LastError()));
    QFile written(target.absoluteFilePath());
    if (!written.open(QIODevice::ReadOnly) || written.readAll() != bytes)
        return ZAXHostResult::Failed(Tr("what was written does not read back"));
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostFileSaver::Save(const QString& path, const QByteArray& bytes)
{
    ZAXHostFileSystem system;
    return Save(path, bytes, system);
}
