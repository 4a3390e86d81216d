#include "ZAXMatPackagingExtension.h"

#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtensionPrivate.h"

const char ZAXMatPackagingExtension::Property_isExtensionEnabled[] = "isExtensionEnabled";

ZAXMatPackagingExtension::ZAXMatPackagingExtension(ZAXMatPackaging* packaging)
    : ZAXFeatObject(ZAXMatFeatures::ContainerFor(
                        packaging, QLatin1String("A packaging extension needs a packaging as its parent.")),
                    packaging),
      d_ptr(std::make_unique<ZAXMatPackagingExtensionPrivate>(this))
{
}

ZAXMatPackagingExtension::ZAXMatPackagingExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container), d_ptr(std::make_unique<ZAXMatPackagingExtensionPrivate>(this))
{
}

ZAXMatPackagingExtension::~ZAXMatPackagingExtension() = default;

bool ZAXMatPackagingExtension::IsExtensionEnabled() const
{
    Q_D(const ZAXMatPackagingExtension);
    return d->isExtensionEnabled.GetValue();
}

void ZAXMatPackagingExtension::SetExtensionEnabled(bool enabled)
{
    Q_D(ZAXMatPackagingExtension);
    d->isExtensionEnabled.Apply(enabled);
}

void ZAXMatPackagingExtension::Save(ZAXGeoStream& stream) const
{
    Q_D(const ZAXMatPackagingExtension);
    ZAXFeatObject::Save(stream);
    stream << d->isExtensionEnabled;
}

void ZAXMatPackagingExtension::Load(ZAXGeoStream& stream)
{
    Q_D(ZAXMatPackagingExtension);
    ZAXFeatObject::Load(stream);
    stream >> d->isExtensionEnabled;
}
