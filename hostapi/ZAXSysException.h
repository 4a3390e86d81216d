#ifndef ZAXSYSEXCEPTION_H
#define ZAXSYSEXCEPTION_H

#include "ZAXSysExport.h"

#include <QException>
#include <QString>

#include <memory>

class ZAXSysExceptionPrivate;

/// A request that cannot be honoured: a programming error or an inconsistent state. Thrown by value; caught as
/// itself, as QException or as std::exception. Copies share the message, so copying never throws.
class ZAXSYSTEM_EXPORT ZAXSysException : public QException
{
public:
    explicit ZAXSysException(const QString& message);
    ZAXSysException(const ZAXSysException& other) noexcept;
    ZAXSysException& operator=(const ZAXSysException& other) noexcept;
    ~ZAXSysException() noexcept override;

    /// The message exactly as given to the constructor.
    QString GetMessage() const;

    /// The message in UTF-8; valid as long as this exception or a copy of it lives.
    const char* what() const noexcept override;

    void raise() const override;
    /// A copy on the heap that the caller owns.
    ZAXSysException* clone() const override;

private:
    std::shared_ptr<const ZAXSysExceptionPrivate> d_ptr;
};

#endif
