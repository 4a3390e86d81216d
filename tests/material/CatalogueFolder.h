#ifndef CATALOGUEFOLDER_H
#define CATALOGUEFOLDER_H

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

/// A fresh folder for a catalogue's file. Files are written with times of their own, one minute apart, so that no test
/// depends on how fine the file system's clock is.
class CatalogueFolder
{
public:
    CatalogueFolder()
    {
        // Open to other users too, for tests that run without the rights of the superuser.
        SetMode(Path(), 0777);
    }
    ~CatalogueFolder() { SetMode(Path(), 0777); }
    CatalogueFolder(const CatalogueFolder&) = delete;
    CatalogueFolder& operator=(const CatalogueFolder&) = delete;

    QString Path() const { return m_directory.path(); }
    QString FilePath() const { return m_directory.filePath(QLatin1String("materials.json")); }

    void Write(const QByteArray& text)
    {
        WriteTo(FilePath(), text);
        SetTime(m_nextTime);
        m_nextTime = m_nextTime.addSecs(60);
    }
    QByteArray Read() const { return ReadFrom(FilePath()); }
    void Remove() const { QFile::remove(FilePath()); }

    QDateTime Time() const { return QFile(FilePath()).fileTime(QFileDevice::FileModificationTime); }
    void SetTime(const QDateTime& time) const
    {
        QFile file(FilePath());
        Q_UNUSED(file.open(QIODevice::ReadWrite));
        file.setFileTime(time, QFileDevice::FileModificationTime);
    }

    /// The names of all that the folder holds.
    QStringList Entries() const
    {
        return QDir(Path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    static void WriteTo(const QString& path, const QByteArray& text)
    {
        QFile file(path);
        Q_UNUSED(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    static QByteArray ReadFrom(const QString& path)
    {
        QFile file(path);
        Q_UNUSED(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    static void SetMode(const QString& path, int mode)
    {
        Q_UNUSED(::chmod(QFile::encodeName(path).constData(), static_cast<mode_t>(mode)));
    }
    static int Mode(const QString& path)
    {
        struct stat status
        {
        };
        Q_UNUSED(::stat(QFile::encodeName(path).constData(), &status));
        return static_cast<int>(status.st_mode & 07777);
    }
    /// Tells one file from another that took its place.
    static quint64 Inode(const QString& path)
    {
        struct stat status
        {
        };
        Q_UNUSED(::stat(QFile::encodeName(path).constData(), &status));
        return status.st_ino;
    }

private:
    QTemporaryDir m_directory{QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX")};
    QDateTime m_nextTime{QDate(2020, 1, 1), QTime(12, 0)};
};

/// For as long as it lives the program has no rights but those of an ordinary user.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        if (m_user == 0)
            Q_UNUSED(::setresuid(nobody, nobody, 0));
    }
    ~OrdinaryUser() { Q_UNUSED(::setresuid(m_user, m_user, m_user)); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    const uid_t m_user = ::getuid();
};

/// For as long as it lives files take no more than the given number of bytes, as on a disk that is full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        const rlimit limit{bytes, m_limit.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_limit{};
};

/// For as long as it lives the program works in another directory.
class WorkingDirectory
{
public:
    explicit WorkingDirectory(const QString& path) { QDir::setCurrent(path); }
    ~WorkingDirectory() { QDir::setCurrent(m_before); }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    const QString m_before = QDir::currentPath();
};

#endif
