#ifndef ZAXHOSTRESULT_H
#define ZAXHOSTRESULT_H

#include <QString>

/// How an operation of the host ended: done, or a message for the user that says what went wrong, and where.
class [[nodiscard]] ZAXHostResult
{
public:
    static ZAXHostResult Done() { return {}; }
    /// \a message must not be empty.
    static ZAXHostResult Failed(const QString& message)
    {
        ZAXHostResult result;
        result.m_message = message;
        return result;
    }

    explicit operator bool() const { return m_message.isEmpty(); }
    /// Empty when the operation is done.
    QString GetMessage() const { return m_message; }

private:
    QString m_message;
};

#endif
