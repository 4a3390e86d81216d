#include "ZAXProbeModules.h"

#include "ZAXFeatContainer.h"

#include <cstring>
#include <stdexcept>

int ZAXProbeData::calls = 0;
const char* ZAXProbeData::failAt = "";

ZAXProbeData::ZAXProbeData(ZAXFeatObject* feature) : text(feature, -1, QString(), true), link(feature, false)
{
    Run("making");
}

ZAXProbeData::~ZAXProbeData()
{
    ++calls;
}

void ZAXProbeData::Run(const char* where)
{
    ++calls;
    if (std::strcmp(where, failAt) == 0)
        throw std::runtime_error("The probe fails at " + std::string(where) + '.');
}

void ZAXProbeData::Save(ZAXGeoStream& stream) const
{
    Run("Save");
    stream << text << link;
}

void ZAXProbeData::Load(ZAXGeoStream& stream)
{
    stream >> text >> link;
    Run("Load");
}

ZAXProbeGas::ZAXProbeGas(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatMaterialExtension(container, reference)
{
}

ZAXProbeGas::ZAXProbeGas(ZAXFeatObject* parent) : ZAXMatMaterialExtension(qobject_cast<ZAXMatMaterial*>(parent)) {}

void ZAXProbeGas::Save(ZAXGeoStream& stream) const
{
    ZAXMatMaterialExtension::Save(stream);
    data.Save(stream);
}

void ZAXProbeGas::Load(ZAXGeoStream& stream)
{
    ZAXMatMaterialExtension::Load(stream);
    data.Load(stream);
}

void ZAXProbeGas::EndStateLoad()
{
    ZAXMatMaterialExtension::EndStateLoad();
    ZAXProbeData::Run("EndStateLoad");
}

QString ZAXProbeGas::GetExtensionLabel() const
{
    ZAXProbeData::Run("GetExtensionLabel");
    return QLatin1String("Gas");
}

ZAXProbeGrain::ZAXProbeGrain(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatPackagingExtension(container, reference)
{
}

ZAXProbeGrain::ZAXProbeGrain(ZAXFeatObject* parent) : ZAXMatPackagingExtension(qobject_cast<ZAXMatPackaging*>(parent))
{
}

void ZAXProbeGrain::Save(ZAXGeoStream& stream) const
{
    ZAXMatPackagingExtension::Save(stream);
    data.Save(stream);
}

void ZAXProbeGrain::Load(ZAXGeoStream& stream)
{
    ZAXMatPackagingExtension::Load(stream);
    data.Load(stream);
}

QString ZAXProbeGrain::GetExtensionLabel() const
{
    ZAXProbeData::Run("GetExtensionLabel");
    return QLatin1String("Grain");
}

ZAXProbePart::ZAXProbePart(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatFolder(container, reference)
{
}

ZAXProbePart::ZAXProbePart(ZAXFeatObject* parent) : ZAXFeatFolder(parent) {}

ZAXProbePart::ZAXProbePart(ZAXFeatContainer* container) : ZAXFeatFolder(container) {}

void ZAXProbePart::Save(ZAXGeoStream& stream) const
{
    ZAXFeatFolder::Save(stream);
    data.Save(stream);
    stream << links;
}

void ZAXProbePart::Load(ZAXGeoStream& stream)
{
    ZAXFeatFolder::Load(stream);
    data.Load(stream);
    stream >> links;
}

void ZAXProbePart::EndStateLoad()
{
    ZAXFeatFolder::EndStateLoad();
    ZAXProbeData::Run("EndStateLoad");
}

void ZAXProbePart::PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated)
{
    ZAXFeatFolder::PostDuplicate(source, duplicated);
    // Has every part that it points at point back at it.
    const auto pointed = links.GetObjects();
    for (ZAXFeatObject* feature : pointed) {
        if (auto* const part = qobject_cast<ZAXProbePart*>(feature); part && part->data.text.GetValue() == u"back")
            part->links.Add(this, false);
    }
    ZAXProbeData::Run("PostDuplicate");
}
