#include "FileContents.h"

#include "Text.h"

#include <QFile>
#include <QFileInfo>

namespace zaxmat {

FileContents ReadFileContents(const QString& path)
{
    if (QFileInfo(path).isDir())
        return {{}, Text::tr("it is no file")};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, file.errorString()};
    // What was read before a failure Qt gives without a word: only the next attempt tells of it.
    QByteArray bytes = file.readAll();
    for (QByteArray more = file.readAll(); !more.isEmpty(); more = file.readAll())
        bytes.append(more);
    if (file.error() != QFile::NoError)
        return {{}, file.errorString()};
    return {bytes, {}};
}

} // namespace zaxmat
