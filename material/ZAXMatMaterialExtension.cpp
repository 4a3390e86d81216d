#include "ZAXMatMaterialExtension.h"

#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtensionPrivate.h"

const char ZAXMatMaterialExtension::Property_isExtensionEnabled[] = "isExtensionEnabled";

ZAXMatMaterialExtension::ZAXMatMaterialExtension(ZAXMatMaterial* material)
    : ZAXFeatObject(
          ZAXMatFeatures::ContainerFor(material, QLatin1String("A material extension needs a material as its parent.")),
          material),
      d_ptr(std::make_unique<ZAXMatMaterialExtensionPrivate>(this))
{
}

ZAXMatMaterialExtension::ZAXMatMaterialExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container), d_ptr(std::make_unique<ZAXMatMaterialExtensionPrivate>(this))
{
}

ZAXMatMaterialExtension::~ZAXMatMaterialExtension() = default;

bool ZAXMatMaterialExtension::IsExtensionEnabled() const
{
    Q_D(const ZAXMatMaterialExtension);
    return d->isExtensionEnabled.GetValue();
}

void ZAXMatMaterialExtension::SetExtensionEnabled(bool enabled)
{
    Q_D(ZAXMatMaterialExtension);
    d->isExtensionEnabled.Apply(enabled);
}

void ZAXMatMaterialExtension::Save(ZAXGeoStream& stream) const
{
    Q_D(const ZAXMatMaterialExtension);
    ZAXFeatObject::Save(stream);
    stream << d->isExtensionEnabled;
}

void ZAXMatMaterialExtension::Load(ZAXGeoStream& stream)
{
    Q_D(ZAXMatMaterialExtension);
    ZAXFeatObject::Load(stream);
    stream >> d->isExtensionEnabled;
}
