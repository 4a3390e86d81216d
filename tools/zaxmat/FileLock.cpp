#include "FileLock.h"

#include "Failure.h"
#include "Progress.h"
#include "Text.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QSysInfo>
#include <QThread>

#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zaxmat {

namespace {

/// What QLockFile writes into its files: the process, its program, its host.
QByteArray OwnerText()
{
    return QByteArray::number(qint64(getpid())) + '\n' + QCoreApplication::applicationName().toUtf8() + '\n' +
           QSysInfo::machineHostName().toUtf8() + '\n';
}

/// Who has the lock, as far as it says so.
QString HolderText(const QByteArray& lockPath)
{
    QFile file(QFile::decodeName(lockPath));
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.read(4096) : QByteArray();
    const QList<QByteArray> lines = text.split('\n');
    if (lines.size() < 3 || lines[0].isEmpty())
        return Text::tr("another program");
    return Text::tr("process %1 (%2) on %3")
        .arg(Printable(QString::fromUtf8(lines[0])), Printable(QString::fromUtf8(lines[1])),
             Printable(QString::fromUtf8(lines[2])));
}

/// Whether \a file is still the one that \a path names.
bool IsInPlace(int file, const QByteArray& path)
{
    struct stat own = {};
    struct stat present = {};
    return fstat(file, &own) == 0 && stat(path.constData(), &present) == 0 && own.st_dev == present.st_dev &&
           own.st_ino == present.st_ino;
}

Failure CannotLock(const QByteArray& lockPath, int error)
{
    return {ExitCode::FileFailure, Text::tr("The lock %1 cannot be made: %2. Nothing was written.")
                                       .arg(QuotedPath(QFile::decodeName(lockPath)), qt_error_string(error))};
}

} // namespace

FileLock::FileLock(const QString& path, const Output& output, qint64 timeout)
    : m_lockPath(QFile::encodeName(path) + ".lock")
{
    QDeadlineTimer deadline(timeout);
    QString holder;
    std::optional<Progress> waiting;
    while (!TryLock()) {
        // Many may wait, and each gets its turn as long as those before it come to an end.
        if (const QString current = HolderText(m_lockPath); current != holder) {
            holder = current;
            waiting.reset();
            waiting.emplace(output, Text::tr("waiting for %1").arg(holder));
            deadline.setRemainingTime(timeout);
        }
        if (deadline.hasExpired()) {
            throw Failure(ExitCode::FileFailure,
                          Text::tr("%1 is locked by %2, which has not given it back for %3 seconds. Nothing was "
                                   "written.")
                              .arg(QuotedPath(path), holder, QString::number(timeout / 1000)));
        }
        // Not all that wait at the same time.
        QThread::usleep(1000 + QRandomGenerator::global()->bounded(9000));
    }
}

FileLock::~FileLock()
{
    // While the lock is held, or a process that waits would lock what nobody looks at any more.
    unlink(m_lockPath.constData());
    close(m_file);
}

bool FileLock::TryLock()
{
    m_file = open(m_lockPath.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    const int error = errno;
    // A file that a process of somebody else left behind can be locked, though not be written.
    if (m_file < 0 && error == EACCES)
        m_file = open(m_lockPath.constData(), O_RDONLY | O_CLOEXEC);
    if (m_file < 0)
        throw CannotLock(m_lockPath, error);
    // Somebody who gave the lock back may have removed the file since it was opened.
    if (flock(m_file, LOCK_EX | LOCK_NB) != 0 || !IsInPlace(m_file, m_lockPath)) {
        close(m_file);
        return false;
    }
    const QByteArray owner = OwnerText();
    // Only a help for those who wait.
    if (ftruncate(m_file, 0) != 0 || write(m_file, owner.constData(), owner.size()) != owner.size())
        errno = 0;
    return true;
}

} // namespace zaxmat
