#include "ZAXMatTestFeatures.h"

#include "ZAXMatRoot.h"

ZAXTestAssistGas::ZAXTestAssistGas(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatMaterialExtension(container, reference),
      m_pressure(this, staticMetaObject.indexOfProperty("pressure"), 10.0, true)
{
}

ZAXTestAssistGas::ZAXTestAssistGas(ZAXFeatObject* parent)
    : ZAXMatMaterialExtension(qobject_cast<ZAXMatMaterial*>(parent)),
      m_pressure(this, staticMetaObject.indexOfProperty("pressure"), 10.0, true)
{
}

double ZAXTestAssistGas::GetPressure() const
{
    return m_pressure.GetValue();
}

void ZAXTestAssistGas::SetPressure(double pressure)
{
    m_pressure.Apply(pressure);
}

void ZAXTestAssistGas::Save(ZAXGeoStream& stream) const
{
    ZAXMatMaterialExtension::Save(stream);
    stream << m_pressure;
}

void ZAXTestAssistGas::Load(ZAXGeoStream& stream)
{
    ZAXMatMaterialExtension::Load(stream);
    stream >> m_pressure;
}

QString ZAXTestAssistGas::GetExtensionLabel() const
{
    return QLatin1String("Assist gas");
}

ZAXTestPiercing::ZAXTestPiercing(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatMaterialExtension(container, reference)
{
}

ZAXTestPiercing::ZAXTestPiercing(ZAXFeatObject* parent) : ZAXMatMaterialExtension(qobject_cast<ZAXMatMaterial*>(parent))
{
}

QString ZAXTestPiercing::GetExtensionLabel() const
{
    return QLatin1String("Piercing");
}

ZAXTestTrim::ZAXTestTrim(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatPackagingExtension(container, reference),
      m_margin(this, staticMetaObject.indexOfProperty("margin"), 5.0, true)
{
}

ZAXTestTrim::ZAXTestTrim(ZAXFeatObject* parent)
    : ZAXMatPackagingExtension(qobject_cast<ZAXMatPackaging*>(parent)),
      m_margin(this, staticMetaObject.indexOfProperty("margin"), 5.0, true)
{
}

double ZAXTestTrim::GetMargin() const
{
    return m_margin.GetValue();
}

void ZAXTestTrim::SetMargin(double margin)
{
    m_margin.Apply(margin);
}

void ZAXTestTrim::Save(ZAXGeoStream& stream) const
{
    ZAXMatPackagingExtension::Save(stream);
    stream << m_margin;
}

void ZAXTestTrim::Load(ZAXGeoStream& stream)
{
    ZAXMatPackagingExtension::Load(stream);
    stream >> m_margin;
}

QString ZAXTestTrim::GetExtensionLabel() const
{
    return QLatin1String("Trim");
}

ZAXTestGrain::ZAXTestGrain(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatPackagingExtension(container, reference)
{
}

ZAXTestGrain::ZAXTestGrain(ZAXFeatObject* parent) : ZAXMatPackagingExtension(qobject_cast<ZAXMatPackaging*>(parent)) {}

QString ZAXTestGrain::GetExtensionLabel() const
{
    return QLatin1String("Grain direction");
}

ZAXTestCoatedMaterial::ZAXTestCoatedMaterial(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatMaterial(container, reference)
{
}

ZAXTestCoatedMaterial::ZAXTestCoatedMaterial(ZAXMatRoot* root) : ZAXMatMaterial(root) {}

ZAXTestDependent::ZAXTestDependent(ZAXFeatContainer* container)
    : ZAXFeatObject(container, nullptr), m_target(this, true)
{
}

void ZAXTestDependent::PointAt(ZAXFeatObject* feature)
{
    m_target.SetPointedObject(feature, false);
}
