#ifndef ZAXMATMATERIALPRIVATE_H
#define ZAXMATMATERIALPRIVATE_H

// Private: the data of ZAXMatMaterial.

#include "ZAXFeatObjectListProperty.h"
#include "ZAXFeatValueProperty.h"
#include "ZAXGeoGeometryRef.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"

#include <QCoreApplication>

#include <optional>

class ZAXMatMaterialPrivate
{
    Q_DECLARE_TR_FUNCTIONS(ZAXMatMaterialPrivate)

public:
    explicit ZAXMatMaterialPrivate(ZAXMatMaterial* material);

    ZAXFeatValueProperty<QString> materialId;
    ZAXFeatValueProperty<bool> isMaterialIdCustomized;
    ZAXFeatValueProperty<QString> materialType;
    ZAXFeatValueProperty<double> thickness;
    ZAXFeatValueProperty<QString> category;
    ZAXFeatValueProperty<double> density;
    ZAXFeatValueProperty<QString> comment;
    ZAXFeatValueProperty<QByteArray> providerId;
    ZAXFeatValueProperty<QByteArray> remoteKey;
    ZAXFeatValueProperty<QColor> nestingColor;
    ZAXFeatObjectListProperty<ZAXMatMaterialExtension> materialExtensions;

    /// The active packaging as a document before version 5 names it, from Load() until EndStateLoad().
    std::optional<ZAXGeoGeometryRef> oldActivePackaging;
};

#endif
