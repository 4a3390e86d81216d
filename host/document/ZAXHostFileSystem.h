#ifndef ZAXHOSTFILESYSTEM_H
#define ZAXHOSTFILESYSTEM_H

#include "ZAXHostExport.h"

#include <QByteArray>

/// The operations of the operating system that a file is saved with. Each answers like the call it stands for: a
/// negative value for a failure, with the reason in errno. A test puts one in its place that fails.
class ZAXHOST_EXPORT ZAXHostFileSystem
{
public:
    virtual ~ZAXHostFileSystem();

    /// Makes a new file for writing; fails when there is one of that name.
    virtual int Create(const QByteArray& path, unsigned int mode);
    virtual qint64 Write(int file, const char* bytes, qint64 size);
    /// Sets the permissions, whatever the process masks.
    virtual int SetMode(int file, unsigned int mode);
    virtual int Sync(int file);
    virtual int Close(int file);
    virtual int Rename(const QByteArray& from, const QByteArray& to);
    virtual int Remove(const QByteArray& path);
    /// Has the operating system write down what stands in the folder.
    virtual int SyncFolder(const QByteArray& path);
};

#endif
