#include "ZAXHostDocumentLock.h"

#include "ZAXHostFileSaver.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostDocumentLock", text);
}

/// Whether a process died when it had made the lock, but not yet written who it is.
bool IsAbandoned(const QLockFile& file, const QString& lockPath)
{
    constexpr int writingTakes = 10;
    qint64 process = 0;
    QString host;
    QString application;
    return file.error() == QLockFile::LockFailedError && !file.getLockInfo(&process, &host, &application) &&
           QFileInfo(lockPath).lastModified().secsTo(QDateTime::currentDateTime()) > writingTakes;
}

} // namespace

ZAXHostDocumentLock::ZAXHostDocumentLock() = default;

ZAXHostDocumentLock::~ZAXHostDocumentLock() = default;

ZAXHostResult ZAXHostDocumentLock::Lock(const QString& path)
{
    Unlock();
    const QString lockPath = ZAXHostFileSaver::TargetOf(path) + QLatin1String(".lock");
    auto file = std::make_unique<QLockFile>(lockPath);
    // Only the death of its process makes a lock stale, never its age: a planner may be at lunch.
    file->setStaleLockTime(0);
    if (file->tryLock(0) || (IsAbandoned(*file, lockPath) && file->removeStaleLockFile() && file->tryLock(0))) {
        m_file = std::move(file);
        return ZAXHostResult::Done();
    }
    if (file->error() != QLockFile::LockFailedError)
        return ZAXHostResult::Failed(
            Tr("No lock can be made beside %1: the folder takes no new file, or the disk is full.")
                .arg(QDir::toNativeSeparators(path)));
    qint64 process = 0;
    QString host;
    QString application;
    file->getLockInfo(&process, &host, &application);
    return ZAXHostResult::Failed(Tr("The document %1 is opened by %2 on %3 (process %4, %5).")
                                     .arg(QDir::toNativeSeparators(path), QFileInfo(lockPath).owner(), host,
                                          QString::number(process), application));
}

void ZAXHostDocumentLock::Unlock()
{
    m_file.reset();
}

bool ZAXHostDocumentLock::IsLocked() const
{
    return m_file && m_file->isLocked();
}
