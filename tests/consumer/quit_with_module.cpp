#include <ZAXMatProvider.h>

#include <QLibrary>

/// Quits while a module and its provider are still there, as an application does that closes no modules. The catalogue
/// is used by the module first.
int main()
{
    QLibrary module(QString::fromUtf8(ZAX_WORKSHOP_MODULE));
    if (!module.load())
        qFatal("%s", qPrintable(module.errorString()));
    return ZAXMatProvider::GetProviders().size() == 1 ? 0 : 1;
}
