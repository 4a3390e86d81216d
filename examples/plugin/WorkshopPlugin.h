#ifndef WORKSHOPPLUGIN_H
#define WORKSHOPPLUGIN_H

#include "WorkshopGasExtension.h"
#include "WorkshopSheetExtension.h"

#include <ZAXMatExtensionPlugin.h>

/// Makes the extension types of this module known to catalogues.
class WorkshopPlugin : public ZAXMatExtensionPlugin
{
public:
    const QMetaObject* GetMaterialExtensionMetaObject() const override
    {
        return &WorkshopGasExtension::staticMetaObject;
    }
    const QMetaObject* GetPackagingExtensionMetaObject() const override
    {
        return &WorkshopSheetExtension::staticMetaObject;
    }
};

#endif
