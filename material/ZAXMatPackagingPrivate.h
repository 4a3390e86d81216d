#ifndef ZAXMATPACKAGINGPRIVATE_H
#define ZAXMATPACKAGINGPRIVATE_H

// Private: the data of ZAXMatPackaging.

#include "ZAXFeatObjectListProperty.h"
#include "ZAXFeatValueProperty.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"

class ZAXMatPackagingPrivate
{
public:
    explicit ZAXMatPackagingPrivate(ZAXMatPackaging* packaging);
    /// For a new packaging, as opposed to one that is re-created.
    void RequestInitialization();

    ZAXFeatValueProperty<double> length;
    ZAXFeatValueProperty<double> width;
    ZAXFeatValueProperty<ZAXMatPackaging::Form> form;
    ZAXFeatValueProperty<double> cost;
    ZAXFeatValueProperty<QString> comment;
    ZAXFeatValueProperty<QByteArray> remoteKey;
    ZAXFeatValueProperty<bool> isActive;
    ZAXFeatObjectListProperty<ZAXMatPackagingExtension> packagingExtensions;
};

#endif
