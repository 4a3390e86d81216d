#ifndef ZAXMATROOT_H
#define ZAXMATROOT_H

#include "ZAXFeatRoot.h"
#include "ZAXMatGlobal.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

class ZAXMatMaterial;
class ZAXMatRootPrivate;

/// The one feature at the top of a document under which all its materials live. Announces their coming and going, and
/// finds the material that stands for a catalogue record or for a type and thickness. Stores no fields of its own.
class ZAXMATERIAL_EXPORT ZAXMatRoot : public ZAXFeatRoot
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(ZAXMatRoot)
    Q_MOC_INCLUDE("ZAXMatMaterial.h")

    Q_CLASSINFO("PropertyLabel_materials", "Materials")
    Q_CLASSINFO("defaultLabel", "Materials Root")
    Q_CLASSINFO("inputProps", "materials")
    Q_CLASSINFO("outputProps", "")
    Q_CLASSINFO("visProps", "")
    Q_CLASSINFO("contextualActions", "")
    Q_CLASSINFO("editAction", "")
    Q_CLASSINFO("allowedParents", "")
    Q_CLASSINFO("compatibleRoots", "ZAXNestRoot")
    Q_CLASSINFO("version", "1")

    Q_PROPERTY(QList<ZAXMatMaterial*> materials READ GetMaterials)

public:
    /// The name of the property.
    static const char Property_materials[];

    /// A new materials root at the top of \a container.
    Q_INVOKABLE explicit ZAXMatRoot(ZAXFeatContainer* container);
    /// The materials root that \a reference refers to, re-created in \a container by the host before Load().
    Q_INVOKABLE ZAXMatRoot(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    ~ZAXMatRoot() override;

    /// The direct children that are materials, in child order. Materials in folders are not listed.
    QList<ZAXMatMaterial*> GetMaterials() const;

    /// The first material, folders included, that came from the catalogue record \a remoteKey of the provider
    /// \a providerId and is less than 0.001 mm thicker or thinner than \a thickness. Ids and keys are compared byte by
    /// byte; null and empty are the same. Null when there is none.
    ZAXMatMaterial* GetMaterial(const QByteArray& providerId, const QByteArray& remoteKey, double thickness) const;
    /// The first material, folders included, of type \a materialType that is less than 0.001 mm thicker or thinner
    /// than \a thickness. Case counts, and the type is compared as ZAXMatMaterial::GetMaterialType() gives it. Null
    /// when there is none.
    ZAXMatMaterial* GetMaterial(const QString& materialType, double thickness) const;

    /// Admits materials.
    bool IsChildAllowed(const QMetaObject* childType) const override;

Q_SIGNALS:
    /// A material became a direct child.
    void MaterialAdded(ZAXMatMaterial* material);
    /// A material is no longer a direct child.
    void MaterialRemoved(ZAXMatMaterial* material);

private:
    /// Never called: it proves at build time that the host can re-create the class from a stream.
    void _constructor_checker();

    std::unique_ptr<ZAXMatRootPrivate> d_ptr;
};

#endif
