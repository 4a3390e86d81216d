#include "WorkshopSheetExtension.h"

#include <ZAXMatPackaging.h>

WorkshopSheetExtension::WorkshopSheetExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatPackagingExtension(container, reference)
{
}

WorkshopSheetExtension::WorkshopSheetExtension(ZAXFeatObject* parent)
    : ZAXMatPackagingExtension(qobject_cast<ZAXMatPackaging*>(parent))
{
    m_grainDirection.RequestInitialization();
    m_trimMargin.RequestInitialization();
}

WorkshopSheetExtension::GrainDirection WorkshopSheetExtension::GetGrainDirection() const
{
    return m_grainDirection.GetValue();
}

void WorkshopSheetExtension::SetGrainDirection(GrainDirection direction)
{
    m_grainDirection.Apply(direction);
}

double WorkshopSheetExtension::GetTrimMargin() const
{
    return m_trimMargin.GetValue();
}

void WorkshopSheetExtension::SetTrimMargin(double margin)
{
    m_trimMargin.Apply(margin);
}

void WorkshopSheetExtension::Save(ZAXGeoStream& stream) const
{
    ZAXMatPackagingExtension::Save(stream);
    stream << m_grainDirection << m_trimMargin;
}

void WorkshopSheetExtension::Load(ZAXGeoStream& stream)
{
    ZAXMatPackagingExtension::Load(stream);
    stream >> m_grainDirection >> m_trimMargin;
}

bool WorkshopSheetExtension::UpdateResult()
{
    const bool ok = ZAXMatPackagingExtension::UpdateResult();
    if (!IsExtensionEnabled() || GetTrimMargin() >= 0.0)
        return ok;
    SetPropertyMessage(Property_trimMargin, Error, tr("The trim margin cannot be negative."));
    return false;
}

QString WorkshopSheetExtension::GetExtensionLabel() const
{
    return tr("Grain and trimming");
}
