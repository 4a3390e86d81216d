#ifndef ZAXMATFILETIME_H
#define ZAXMATFILETIME_H

// Private to the library: not installed, and free to change.

#include <QByteArray>
#include <QString>

#include <optional>

class QFileDevice;

/// Asks for the modification time of one file again and again, at the price of one call to the system.
class ZAXMatFileTime
{
public:
    /// Milliseconds since 1970, as fine as QFileInfo tells it; null when there is no such file, and for 1970 itself.
    using Time = std::optional<qint64>;

    explicit ZAXMatFileTime(const QString& path);

    Time Get() const;
    /// The time of \a file, which was opened under the path.
    Time GetOpen(const QFileDevice& file) const;

private:
    const QString m_path;
    /// What the system calls the file; null when only Qt knows what the path stands for.
    const QByteArray m_systemPath;
};

#endif
