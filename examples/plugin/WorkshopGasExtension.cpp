#include "WorkshopGasExtension.h"

#include <ZAXMatMaterial.h>

WorkshopGasExtension::WorkshopGasExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatMaterialExtension(container, reference)
{
}

WorkshopGasExtension::WorkshopGasExtension(ZAXFeatObject* parent)
    : ZAXMatMaterialExtension(qobject_cast<ZAXMatMaterial*>(parent))
{
    m_assistGas.RequestInitialization();
}

QString WorkshopGasExtension::GetAssistGas() const
{
    return m_assistGas.GetValue();
}

void WorkshopGasExtension::SetAssistGas(const QString& gas)
{
    m_assistGas.Apply(gas);
}

double WorkshopGasExtension::GetGasPressure() const
{
    return m_gasPressure.GetValue();
}

void WorkshopGasExtension::SetGasPressure(double pressure)
{
    m_gasPressure.Apply(pressure);
}

double WorkshopGasExtension::GetPiercingTime() const
{
    return m_piercingTime.GetValue();
}

void WorkshopGasExtension::SetPiercingTime(double time)
{
    m_piercingTime.Apply(time);
}

// A field added later comes last, together with a higher "version" in the header. Load() then reads it only if
// stream.GetVersion(&staticMetaObject) says that it is there.
void WorkshopGasExtension::Save(ZAXGeoStream& stream) const
{
    ZAXMatMaterialExtension::Save(stream);
    stream << m_assistGas << m_gasPressure << m_piercingTime;
}

void WorkshopGasExtension::Load(ZAXGeoStream& stream)
{
    ZAXMatMaterialExtension::Load(stream);
    stream >> m_assistGas >> m_gasPressure >> m_piercingTime;
}

bool WorkshopGasExtension::UpdateResult()
{
    bool ok = ZAXMatMaterialExtension::UpdateResult();
    if (!IsExtensionEnabled())
        return ok;
    const auto require = [this, &ok](bool valid, const char* property, const QString& text) {
        if (!valid)
            SetPropertyMessage(property, Error, text);
        ok &= valid;
    };
    require(!GetAssistGas().isEmpty(), Property_assistGas, tr("The assist gas cannot be empty."));
    require(GetGasPressure() >= 0.0, Property_gasPressure, tr("The gas pressure cannot be negative."));
    require(GetPiercingTime() >= 0.0, Property_piercingTime, tr("The piercing time cannot be negative."));
    return ok;
}

QString WorkshopGasExtension::GetExtensionLabel() const
{
    return tr("Assist gas");
}
