#ifndef ZAXPROBEFILESYSTEM_H
#define ZAXPROBEFILESYSTEM_H

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

/// Gives up the rights of the superuser as long as it lives, for whom no folder is read-only. Nothing happens to any
/// other user. A temporary folder is made and left within its life.
class ZAXProbeOrdinaryUser
{
public:
    ZAXProbeOrdinaryUser() : m_isDropped(geteuid() == 0 && setresuid(nobody, nobody, 0) == 0) {}
    ~ZAXProbeOrdinaryUser() { m_isDropped = m_isDropped && setresuid(0, 0, 0) != 0; }
    Q_DISABLE_COPY_MOVE(ZAXProbeOrdinaryUser)

private:
    static constexpr uid_t nobody = 65534;

    bool m_isDropped;
};

/// Lets files grow to \a bytes only, as long as it lives: writing more fails as on a full disk.
class ZAXProbeFullDisk
{
public:
    explicit ZAXProbeFullDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~ZAXProbeFullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY_MOVE(ZAXProbeFullDisk)

private:
    rlimit m_before;
    void (*m_handler)(int);
};

/// A temporary folder with a name that is not easy.
class ZAXProbeFolder
{
public:
    ZAXProbeFolder() : m_folder(QDir::tempPath() + u"/zax ø XXXXXX"_qs) {}

    QString Path() const { return m_folder.path(); }
    QString PathOf(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QStringList Entries() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    QByteArray Read(const char* name) const
    {
        QFile file(PathOf(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    bool Write(const char* name, const QByteArray& bytes) const
    {
        QFile file(PathOf(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }
    /// Whether files may be made in the folder.
    bool SetWritable(bool isWritable) const
    {
        const auto readable = QFile::ReadOwner | QFile::ExeOwner;
        return QFile::setPermissions(Path(), isWritable ? readable | QFile::WriteOwner : readable);
    }

private:
    QTemporaryDir m_folder;
};

#endif
