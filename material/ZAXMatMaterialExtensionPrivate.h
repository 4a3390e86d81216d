#ifndef ZAXMATMATERIALEXTENSIONPRIVATE_H
#define ZAXMATMATERIALEXTENSIONPRIVATE_H

// Private: the data of ZAXMatMaterialExtension.

#include "ZAXMatExtensions.h"
#include "ZAXMatMaterialExtension.h"

class ZAXMatMaterialExtensionPrivate : public ZAXMatExtensionPrivate<ZAXMatMaterialExtension>
{
public:
    using ZAXMatExtensionPrivate::ZAXMatExtensionPrivate;
};

#endif
