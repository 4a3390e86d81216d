#ifndef ZAXHOSTDOCUMENTLOCK_H
#define ZAXHOSTDOCUMENTLOCK_H

#include "ZAXHostExport.h"
#include "ZAXHostResult.h"

#include <QString>

#include <memory>

class QLockFile;

/// Says beside a document, in the file `<name>.lock`, who has it open for writing. A lock that a process of this host
/// left when it died is taken over.
class ZAXHOST_EXPORT ZAXHostDocumentLock
{
public:
    ZAXHostDocumentLock();
    /// Gives the lock back.
    ~ZAXHostDocumentLock();
    ZAXHostDocumentLock(const ZAXHostDocumentLock&) = delete;
    ZAXHostDocumentLock& operator=(const ZAXHostDocumentLock&) = delete;

    /// Locks the document \a path, and gives a lock held before back. Fails, with a message that names the user, the
    /// host and the process, when somebody else has it, and when no lock can be made beside it.
    ZAXHostResult Lock(const QString& path);
    void Unlock();
    bool IsLocked() const;

private:
    std::unique_ptr<QLockFile> m_file;
};

#endif
