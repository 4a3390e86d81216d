#ifndef ZAXMAT_CAUTIOUSFILESYSTEM_H
#define ZAXMAT_CAUTIOUSFILESYSTEM_H

#include "ZAXHostFileSystem.h"

#include <QByteArray>

#include <functional>
#include <optional>

namespace zaxmat {

/// Replaces a file only as long as it holds what it is expected to hold. Not everybody who writes the file knows of
/// its lock, so the two files are exchanged, and exchanged back when it was not the expected one that came out.
class CautiousFileSystem : public ZAXHostFileSystem
{
public:
    /// Replaces a file that holds \a expected, or none when that is empty, by one that holds \a bytes.
    /// \a beforeReplacing is called just before, for tests in which somebody else writes meanwhile.
    CautiousFileSystem(const std::optional<QByteArray>& expected, const QByteArray& bytes,
                       std::function<void()> beforeReplacing = {});

    /// Fails with ESTALE when the file \a to holds something else: then it does so still.
    int Rename(const QByteArray& from, const QByteArray& to) override;

    /// Whether Rename() found something else.
    bool HasFoundChange() const { return m_hasFoundChange; }

private:
    int Refuse();
    int RenameToNothing(const QByteArray& from, const QByteArray& to);
    /// For file systems that cannot exchange files.
    int CompareAndRename(const QByteArray& from, const QByteArray& to);

    std::optional<QByteArray> m_expected;
    QByteArray m_bytes;
    std::function<void()> m_beforeReplacing;
    bool m_hasFoundChange = false;
};

} // namespace zaxmat

#endif
