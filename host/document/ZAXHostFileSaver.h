#ifndef ZAXHOSTFILESAVER_H
#define ZAXHOSTFILESAVER_H

#include "ZAXHostExport.h"
#include "ZAXHostFileSystem.h"
#include "ZAXHostResult.h"

#include <QString>

/// Puts new bytes in the place of a file so that at every instant the old file or the new one is there, whole.
namespace ZAXHostFileSaver {

/// The file that \a path means in the end, behind symbolic links; it need not exist.
ZAXHOST_EXPORT QString TargetOf(const QString& path);

/// Saves \a bytes as the file \a path: writes a new file beside it, `.<name>.<process>.saving`, syncs it, gives it
/// the permissions of the old one, puts it in the old one's place, syncs the folder and reads the file back. Of a
/// symbolic link, the file it leads to is replaced. First removes what killed savings left behind.
/// Refused for what is no file, and for a file that nobody may write.
/// A failure before the replacement leaves the old file; whatever comes back, nothing is left beside it.
ZAXHOST_EXPORT ZAXHostResult Save(const QString& path, const QByteArray& bytes, ZAXHostFileSystem& system);
ZAXHOST_EXPORT ZAXHostResult Save(const QString& path, const QByteArray& bytes);

} // namespace ZAXHostFileSaver

#endif
