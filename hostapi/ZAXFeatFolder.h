#ifndef ZAXFEATFOLDER_H
#define ZAXFEATFOLDER_H

#include "ZAXFeatObject.h"

/// A feature that groups others. A folder may stand anywhere and is looked through: it allows the children that its
/// own parent allows.
class ZAXFEATURE_EXPORT ZAXFeatFolder : public ZAXFeatObject
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Folder")
    Q_CLASSINFO("version", "1")

public:
    ZAXFeatFolder(ZAXFeatContainer* container, ZAXFeatObject* parent);
    Q_INVOKABLE ZAXFeatFolder(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXFeatFolder(ZAXFeatObject* parent);
    /// A folder at the top of \a container.
    Q_INVOKABLE explicit ZAXFeatFolder(ZAXFeatContainer* container);
    ~ZAXFeatFolder() override;

    bool IsChildAllowed(const QMetaObject* childType) const override;
};

#endif
