#include "CautiousFileSystem.h"

#include "FileContents.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>

namespace zaxmat {

namespace {

/// What the file holds; nothing when it cannot be read.
std::optional<QByteArray> ContentsOf(const QByteArray& path)
{
    const FileContents contents = ReadFileContents(QFile::decodeName(path));
    return contents.IsRead() ? std::optional(contents.bytes) : std::nullopt;
}

int RenameWith(unsigned int flags, const QByteArray& from, const QByteArray& to)
{
    return renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), flags);
}

bool IsUnsupported(int error)
{
    return error == EINVAL || error == ENOSYS;
}

} // namespace

CautiousFileSystem::CautiousFileSystem(const std::optional<QByteArray>& expected, const QByteArray& bytes,
                                       std::function<void()> beforeReplacing)
    : m_expected(expected), m_bytes(bytes), m_beforeReplacing(std::move(beforeReplacing))
{
}

int CautiousFileSystem::Rename(const QByteArray& from, const QByteArray& to)
{
    if (m_beforeReplacing)
        m_beforeReplacing();
    if (!m_expected)
        return RenameToNothing(from, to);
    // Before anything is touched: only what happens from here on has to be taken back.
    if (ContentsOf(to) != m_expected)
        return Refuse();
    if (RenameWith(RENAME_EXCHANGE, from, to) != 0) {
        if (IsUnsupported(errno))
            return CompareAndRename(from, to);
        return errno == ENOENT ? Refuse() : -1;
    }
    if (ContentsOf(from) == m_expected) {
        // One that stays is removed by the next saving.
        Remove(from);
        return 0;
    }
    // What comes out now is what was put in, unless somebody has replaced that too: theirs is the last word then.
    if (RenameWith(RENAME_EXCHANGE, from, to) == 0 && ContentsOf(from) != m_bytes)
        RenameWith(RENAME_EXCHANGE, from, to);
    return Refuse();
}

int CautiousFileSystem::Refuse()
{
    m_hasFoundChange = true;
    errno = ESTALE;
    return -1;
}

int CautiousFileSystem::RenameToNothing(const QByteArray& from, const QByteArray& to)
{
    if (RenameWith(RENAME_NOREPLACE, from, to) == 0)
        return 0;
    if (IsUnsupported(errno))
        return CompareAndRename(from, to);
    return errno == EEXIST ? Refuse() : -1;
}

int CautiousFileSystem::CompareAndRename(const QByteArray& from, const QByteArray& to)
{
    return ContentsOf(to) == m_expected ? ZAXHostFileSystem::Rename(from, to) : Refuse();
}

} // namespace zaxmat
