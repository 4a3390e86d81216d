#include "ZAXMatFileTime.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_LINUX
#include <sys/stat.h>
#endif

namespace {

ZAXMatFileTime::Time InMilliseconds(const QDateTime& time)
{
    return time.isValid() ? ZAXMatFileTime::Time(time.toMSecsSinceEpoch()) : std::nullopt;
}

#ifdef Q_OS_LINUX
/// What a call that asks for a file's status found, the way Qt tells it, which knows no time 0.
ZAXMatFileTime::Time InMilliseconds(int result, const struct stat& status)
{
    const qint64 time = qint64(status.st_mtim.tv_sec) * 1000 + status.st_mtim.tv_nsec / 1000000;
    return result == 0 && time != 0 ? ZAXMatFileTime::Time(time) : std::nullopt;
}
#endif

/// Null for what is left to Qt: resources (":/catalogue"), files below a search path ("stock:catalogue"), which begins
/// with two characters at least, and names that no system takes.
QByteArray SystemPath(const QString& path)
{
#ifdef Q_OS_LINUX
    const bool isOfQt = path.startsWith(u':') || path.indexOf(u':', 2) >= 0 || path.contains(QChar::Null);
    return isOfQt ? QByteArray() : QFile::encodeName(path);
#else
    Q_UNUSED(path);
    return {};
#endif
}

} // namespace

ZAXMatFileTime::ZAXMatFileTime(const QString& path) : m_path(path), m_systemPath(SystemPath(path)) {}

ZAXMatFileTime::Time ZAXMatFileTime::Get() const
{
#ifdef Q_OS_LINUX
    struct stat status = {};
    if (!m_systemPath.isNull())
        return InMilliseconds(::stat(m_systemPath.constData(), &status), status);
#endif
    return InMilliseconds(QFileInfo(m_path).fileTime(QFileDevice::FileModificationTime));
}

ZAXMatFileTime::Time ZAXMatFileTime::GetOpen(const QFileDevice& file) const
{
#ifdef Q_OS_LINUX
    struct stat status = {};
    if (!m_systemPath.isNull())
        return InMilliseconds(::fstat(file.handle(), &status), status);
#endif
    return InMilliseconds(file.fileTime(QFileDevice::FileModificationTime));
}
