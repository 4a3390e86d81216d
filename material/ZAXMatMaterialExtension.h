#ifndef ZAXMATMATERIALEXTENSION_H
#define ZAXMATMATERIALEXTENSION_H

#include "ZAXFeatObject.h"
#include "ZAXMatGlobal.h"

#include <QString>

#include <memory>

class ZAXMatMaterial;
class ZAXMatMaterialExtensionPrivate;

/// Base of the features with which other modules hang properties of their own on a material, announced by an extension
/// plug-in and found by class name (ZAXMatMaterial::GetExtension()).
///
/// A concrete extension has an invokable constructor (ZAXFeatObject*) and another (ZAXGeoContainer*,
/// ZAXGeoGeometryRef), and is registered with ZAXGeoContainer::RegisterType(). The properties that it declares after
/// those of this class are what catalogues can store for it. If it saves fields, its Save() and Load() call those of
/// this class first.
class ZAXMATERIAL_EXPORT ZAXMatMaterialExtension : public ZAXFeatObject
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(ZAXMatMaterialExtension)

    Q_CLASSINFO("defaultLabel", "Material Extension")
    Q_CLASSINFO("inputProps", "connection isExtensionEnabled")
    Q_CLASSINFO("outputProps", "")
    Q_CLASSINFO("visProps", "")
    Q_CLASSINFO("contextualActions", "")
    Q_CLASSINFO("editAction", "")
    Q_CLASSINFO("allowedParents", "ZAXMatMaterial")
    Q_CLASSINFO("PropertyLabel_isExtensionEnabled", "Enabled")

    Q_PROPERTY(bool isExtensionEnabled READ IsExtensionEnabled WRITE SetExtensionEnabled NOTIFY ExtensionEnabledChanged)

public:
    /// The name of the property.
    static const char Property_isExtensionEnabled[];

    ~ZAXMatMaterialExtension() override;

    /// Whether what the extension adds to its material is in force. False at first.
    bool IsExtensionEnabled() const;
    /// Emits ExtensionEnabledChanged() on a change. The next new extension starts disabled all the same.
    void SetExtensionEnabled(bool enabled);

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;

    /// The name under which the user sees what the extension adds, in the user's language: one for the whole class,
    /// whatever the label of this feature. Never empty.
    virtual QString GetExtensionLabel() const = 0;

Q_SIGNALS:
    void ExtensionEnabledChanged(bool state);

protected:
    /// A new extension, the last child of \a material.
    /// \throws ZAXSysException "A material extension needs a material as its parent." for null.
    explicit ZAXMatMaterialExtension(ZAXMatMaterial* material);
    /// The extension that \a reference refers to, re-created in \a container by the host before Load().
    ZAXMatMaterialExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);

private:
    std::unique_ptr<ZAXMatMaterialExtensionPrivate> d_ptr;
};

#endif
