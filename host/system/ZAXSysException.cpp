#include "ZAXSysException.h"

#include <QByteArray>

class ZAXSysExceptionPrivate
{
public:
    QString message;
    QByteArray utf8;
};

ZAXSysException::ZAXSysException(const QString& message)
    : d_ptr(std::make_shared<const ZAXSysExceptionPrivate>(ZAXSysExceptionPrivate{message, message.toUtf8()}))
{
}

ZAXSysException::ZAXSysException(const ZAXSysException& other) noexcept = default;

ZAXSysException& ZAXSysException::operator=(const ZAXSysException& other) noexcept = default;

ZAXSysException::~ZAXSysException() noexcept = default;

QString ZAXSysException::GetMessage() const
{
    return d_ptr->message;
}

const char* ZAXSysException::what() const noexcept
{
    return d_ptr->utf8.constData();
}

void ZAXSysException::raise() const
{
    throw *this;
}

ZAXSysException* ZAXSysException::clone() const
{
    return new ZAXSysException(*this);
}
