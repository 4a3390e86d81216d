#ifndef ZAXMAT_FILELOCK_H
#define ZAXMAT_FILELOCK_H

#include <QByteArray>
#include <QString>

namespace zaxmat {

class Output;

/// Keeps other processes from changing a file, through a file `<name>.lock` beside it. The operating system gives the
/// lock back when its process ends, however it ends; the file that a killed one leaves goes with the next lock.
/// A QLockFile of that name respects it, and is respected.
class FileLock
{
public:
    /// How long to wait for others, in milliseconds.
    static constexpr qint64 patience = 60000;

    /// Locks the file \a path, waiting \a timeout milliseconds at most for each of the others that has the lock
    /// meanwhile. The progress line of \a output tells for whom.
    /// \throws Failure (FileFailure) that names who has the lock, and when no lock can be made.
    FileLock(const QString& path, const Output& output, qint64 timeout = patience);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    bool TryLock();

    QByteArray m_lockPath;
    int m_file = -1;
};

} // namespace zaxmat

#endif
