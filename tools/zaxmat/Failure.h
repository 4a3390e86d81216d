#ifndef ZAXMAT_FAILURE_H
#define ZAXMAT_FAILURE_H

#include "ExitCode.h"

#include <QString>

#include <stdexcept>

namespace zaxmat {

/// Ends a command that cannot do what was asked. Thrown by value; whoever runs the command prints the message.
class Failure : public std::runtime_error
{
public:
    /// \a message tells the user what is wrong, where, and what to do about it; it may have several lines.
    Failure(ExitCode code, const QString& message) : std::runtime_error(message.toStdString()), m_code(code) {}

    ExitCode GetCode() const { return m_code; }
    QString GetMessage() const { return QString::fromUtf8(what()); }

private:
    ExitCode m_code;
};

} // namespace zaxmat

#endif
