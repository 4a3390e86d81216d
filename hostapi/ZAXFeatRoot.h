#ifndef ZAXFEATROOT_H
#define ZAXFEATROOT_H

#include "ZAXFeatFolder.h"

/// A feature at the top of a document's tree. The user can neither move nor delete it.
class ZAXFEATURE_EXPORT ZAXFeatRoot : public ZAXFeatFolder
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Root")
    Q_CLASSINFO("allowedParents", "")
    Q_CLASSINFO("version", "1")

public:
    explicit ZAXFeatRoot(ZAXFeatContainer* container);
    ZAXFeatRoot(const ZAXGeoGeometryRef& reference, ZAXGeoContainer* container);
    ~ZAXFeatRoot() override;

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    void EndStateLoad() override;
    /// Allows folders and whatever does not forbid a root as its parent.
    bool IsChildAllowed(const QMetaObject* childType) const override;
    bool IsUserDeletable() const override;
    MoveActions GetAllowedMoveActions() const override;
    bool CanUserDuplicate() const override;

    /// The folder that takes what names no other place: the first plain folder under the root, else the root itself.
    virtual ZAXFeatFolder* GetFallbackDefaultFolder();
};

#endif
