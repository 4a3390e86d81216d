#include "FileReplacement.h"

#include "CatalogueFile.h"
#include "CautiousFileSystem.h"
#include "Failure.h"
#include "FileContents.h"
#include "Text.h"

#include "ZAXHostFileSaver.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace zaxmat {

namespace {

Failure Unwritable(const QString& path, const QString& why)
{
    return {ExitCode::FileFailure,
            Text::tr("%1 cannot be written: %2. The catalogue is as it was.").arg(QuotedPath(path), why)};
}

} // namespace

QString KeepCopy(const QString& path, const QByteArray& bytes, QLatin1String suffix)
{
    const auto nameOf = [&](int i) { return path + suffix + (i == 1 ? QString() : QString::number(i)); };
    int i = 1;
    while (QFileInfo::exists(nameOf(i)) || QFileInfo(nameOf(i)).isSymLink())
        ++i;
    QFile copy(nameOf(i));
    const auto failure = [&](const QString& why) {
        return Failure(ExitCode::FileFailure,
                       Text::tr("%1 is left as it is, since no copy of it can be kept as %2: %3.")
                           .arg(QuotedPath(path), QuotedPath(copy.fileName()), why));
    };
    if (!copy.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        throw failure(copy.errorString());
    copy.setPermissions(QFile::permissions(path));
    const bool isWritten = copy.write(bytes) == bytes.size() && copy.flush() && fsync(copy.handle()) == 0;
    const QString reason = copy.errorString();
    copy.close();
    if (!isWritten) {
        copy.remove();
        throw failure(reason);
    }
    const FileContents written = ReadFileContents(copy.fileName());
    if (!written.IsRead() || written.bytes != bytes)
        throw failure(Text::tr("it does not hold what was written"));
    return copy.fileName();
}

void ReplaceCatalogueFile(const QString& path, const QByteArray& before, const QByteArray& bytes,
                          const std::function<void()>& beforeReplacing)
{
    CautiousFileSystem system(before, bytes, beforeReplacing);
    const ZAXHostResult saved = ZAXHostFileSaver::Save(path, bytes, system);
    if (system.HasFoundChange())
        throw Failure(ExitCode::FileChanged,
                      Text::tr("Somebody else changed the catalogue %1 meanwhile. Nothing was written; try again.")
                          .arg(QuotedPath(path)));
    if (!saved)
        throw Unwritable(path, saved.GetMessage());
    if (ReadCatalogueFile(path) != bytes)
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The catalogue %1 does not hold what was written to it.").arg(QuotedPath(path)));
}

} // namespace zaxmat
