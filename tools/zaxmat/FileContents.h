#ifndef FILECONTENTS_H
#define FILECONTENTS_H

#include <QByteArray>
#include <QString>

namespace zaxmat {

/// What a file holds, or why it cannot be read.
struct FileContents
{
    QByteArray bytes;
    /// Null when the file was read to its end; the reason in the user's language otherwise, and nothing in \c bytes.
    QString failure;

    bool IsRead() const { return failure.isNull(); }
};

/// Reads the file \a path to its end. A folder is no file.
FileContents ReadFileContents(const QString& path);

} // namespace zaxmat

#endif
