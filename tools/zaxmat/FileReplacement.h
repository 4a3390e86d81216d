#ifndef ZAXMAT_FILEREPLACEMENT_H
#define ZAXMAT_FILEREPLACEMENT_H

#include <QByteArray>
#include <QString>

#include <functional>

namespace zaxmat {

/// A new file beside \a path that holds \a bytes, what \a path holds: with the \a suffix ".bak" it is
/// "materials.json.bak" or, where that is taken, "materials.json.bak2" and so on. Its bytes are on the disk, and were
/// read back. \throws Failure (FileFailure) when it cannot be written.
QString KeepCopy(const QString& path, const QByteArray& bytes, QLatin1String suffix);

/// Makes \a bytes the contents of the file \a path, which holds \a before: it is replaced as a whole, and read back.
/// Its permissions stay. \throws Failure when it holds something else by now (FileChanged), or cannot be written
/// (FileFailure). \a beforeReplacing is called just before it is replaced, for tests in which somebody else writes.
void ReplaceCatalogueFile(const QString& path, const QByteArray& before, const QByteArray& bytes,
                          const std::function<void()>& beforeReplacing = {});

} // namespace zaxmat

#endif
