#include "ZAXHostFileSystem.h"

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

ZAXHostFileSystem::~ZAXHostFileSystem() = default;

int ZAXHostFileSystem::Create(const QByteArray& path, unsigned int mode)
{
    return open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
}

qint64 ZAXHostFileSystem::Write(int file, const char* bytes, qint64 size)
{
    return write(file, bytes, static_cast<size_t>(size));
}

int ZAXHostFileSystem::SetMode(int file, unsigned int mode)
{
    return fchmod(file, mode);
}

int ZAXHostFileSystem::Sync(int file)
{
    return fsync(file);
}

int ZAXHostFileSystem::Close(int file)
{
    return close(file);
}

int ZAXHostFileSystem::Rename(const QByteArray& from, const QByteArray& to)
{
    return std::rename(from.constData(), to.constData());
}

int ZAXHostFileSystem::Remove(const QByteArray& path)
{
    return unlink(path.constData());
}

int ZAXHostFileSystem::SyncFolder(const QByteArray& path)
{
    const int folder = open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return folder;
    const int result = fsync(folder);
    close(folder);
    return result;
}
