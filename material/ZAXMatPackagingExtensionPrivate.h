#ifndef ZAXMATPACKAGINGEXTENSIONPRIVATE_H
#define ZAXMATPACKAGINGEXTENSIONPRIVATE_H

// Private: the data of ZAXMatPackagingExtension.

#include "ZAXMatExtensions.h"
#include "ZAXMatPackagingExtension.h"

class ZAXMatPackagingExtensionPrivate : public ZAXMatExtensionPrivate<ZAXMatPackagingExtension>
{
public:
    using ZAXMatExtensionPrivate::ZAXMatExtensionPrivate;
};

#endif
