#include "JobDocument.h"

#include "ZAXFeatContainer.h"
#include "ZAXHostDocument.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"
#include "ZAXSysStartup.h"

namespace {

template <typename Feature>
Feature* Make(ZAXHostDocument& document, ZAXFeatObject* parent, const QString& label)
{
    auto* const feature =
        qobject_cast<Feature*>(document.GetContainer()->CreateInstance(Feature::staticMetaObject.className(), parent));
    feature->SetLabel(label);
    return feature;
}

ZAXMatMaterial* MakeSteel(ZAXHostDocument& document, ZAXFeatObject* root, double thickness)
{
    auto* const steel = Make<ZAXMatMaterial>(document, root, "Steel");
    steel->SetMaterialType("S235JR");
    steel->SetThickness(thickness);
    steel->SetDensity(7.85);
    steel->SetNestingColor(QColor("#123456"));
    return steel;
}

void MakeSheet(ZAXHostDocument& document, ZAXFeatObject* steel, const QString& label, double length, bool isActive)
{
    auto* const sheet = Make<ZAXMatPackaging>(document, steel, label);
    sheet->SetLength(length);
    sheet->SetWidth(1000);
    sheet->SetCost(31.4);
    sheet->SetActive(isActive);
}

} // namespace

ForeignExtension::ForeignExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXMatMaterialExtension(container, reference)
{
}

ForeignExtension::ForeignExtension(ZAXFeatObject* parent)
    : ZAXMatMaterialExtension(qobject_cast<ZAXMatMaterial*>(parent))
{
}

QString ForeignExtension::GetExtensionLabel() const
{
    return "Foreign";
}

JobDocument::JobDocument(const Workshop& workshop) : m_path(workshop.Path("job ø 1.zaxdoc"))
{
    ZAXSysStartup::Start();
    ZAXGeoContainer::RegisterType(&ForeignExtension::staticMetaObject);
    ZAXHostDocument document;
    ZAXFeatObject* const root = document.GetContainer()->CreateInstance("ZAXMatRoot", nullptr);
    ZAXMatMaterial* const steel = MakeSteel(document, root, 2);
    steel->SetProviderId("ZAXMatJsonFileProvider");
    steel->SetRemoteKey("steel-2");
    MakeSheet(document, steel, "Sheet large", 3000, true);
    steel->GetPackaging().constFirst()->SetRemoteKey("steel-2-large");
    MakeSheet(document, steel, "Sheet small", 2000, false);
    steel->GetExtension("ForeignExtension", true);
    MakeSteel(document, root, 3);
    if (const auto result = document.SaveAs(m_path); !result)
        qFatal("%s", qUtf8Printable(result.GetMessage()));
    ZAXGeoContainer::UnregisterType(&ForeignExtension::staticMetaObject);
}

void JobDocument::Damage(const QString& stockForm) const
{
    QByteArray text;
    for (const QChar character : stockForm)
        text.append(char(character.unicode() >> 8)).append(char(character.unicode() & 0xff));
    QByteArray bytes = GetBytes();
    const qsizetype place = bytes.indexOf(text);
    bytes[place + 1] = char(bytes[place + 1] ^ 1);
    Workshop::Write(m_path, bytes);
}
