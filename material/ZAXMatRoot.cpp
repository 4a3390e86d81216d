#include "ZAXMatRoot.h"

#include "ZAXMatFeatures.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatRootPrivate.h"

#include <algorithm>
#include <cmath>

const char ZAXMatRoot::Property_materials[] = "materials";

namespace {

bool IsOfThickness(const ZAXMatMaterial* material, double thickness)
{
    return std::abs(material->GetThickness() - thickness) < 0.001;
}

/// The first material below \a root, in the host's order, that \a isWanted accepts; null when there is none.
template <typename Predicate>
ZAXMatMaterial* FindMaterial(const ZAXMatRoot* root, Predicate isWanted)
{
    const auto materials = root->GetAllChildrenOfType(&ZAXMatMaterial::staticMetaObject);
    const auto found = std::ranges::find_if(
        materials, [&](ZAXFeatObject* feature) { return isWanted(static_cast<const ZAXMatMaterial*>(feature)); });
    return found == materials.end() ? nullptr : static_cast<ZAXMatMaterial*>(*found);
}

} // namespace

ZAXMatRootPrivate::ZAXMatRootPrivate(ZAXMatRoot* root) : q_ptr(root)
{
    QObject::connect(root, &ZAXFeatObject::ChildRemoved, root, [root](ZAXFeatObject* child) {
        if (auto* const material = qobject_cast<ZAXMatMaterial*>(child))
            emit root->MaterialRemoved(material);
    });
    QObject::connect(root, &ZAXFeatObject::ChildAdded, root, [root](ZAXFeatObject* child) {
        if (auto* const material = qobject_cast<ZAXMatMaterial*>(child))
            emit root->MaterialAdded(material);
    });
}

ZAXMatRoot::ZAXMatRoot(ZAXFeatContainer* container)
    : ZAXFeatRoot(container), d_ptr(std::make_unique<ZAXMatRootPrivate>(this))
{
}

ZAXMatRoot::ZAXMatRoot(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatRoot(reference, container), d_ptr(std::make_unique<ZAXMatRootPrivate>(this))
{
}

ZAXMatRoot::~ZAXMatRoot() = default;

void ZAXMatRoot::_constructor_checker()
{
    ZAXMatRoot(static_cast<ZAXGeoContainer*>(nullptr), ZAXGeoGeometryRef());
}

QList<ZAXMatMaterial*> ZAXMatRoot::GetMaterials() const
{
    return ZAXMatFeatures::Only<ZAXMatMaterial>(GetChildren());
}

ZAXMatMaterial* ZAXMatRoot::GetMaterial(const QByteArray& providerId, const QByteArray& remoteKey,
                                        double thickness) const
{
    return FindMaterial(this, [&](const ZAXMatMaterial* material) {
        return IsOfThickness(material, thickness) && material->GetRemoteKey() == remoteKey &&
               material->GetProviderId() == providerId;
    });
}

ZAXMatMaterial* ZAXMatRoot::GetMaterial(const QString& materialType, double thickness) const
{
    return FindMaterial(this, [&](const ZAXMatMaterial* material) {
        return IsOfThickness(material, thickness) && material->GetMaterialType() == materialType;
    });
}

bool ZAXMatRoot::IsChildAllowed(const QMetaObject* childType) const
{
    static const QList<QByteArray> allowed{"ZAXMatMaterial"};
    return IsValidParent(metaObject(), childType, allowed);
}
