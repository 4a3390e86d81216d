#include "DocumentTree.h"

#include "Properties.h"
#include "Text.h"

#include "ZAXFeatContainer.h"
#include "ZAXHostPlaceholder.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"
#include "ZAXSysDefinedValue.h"

#include <QStringList>

namespace zaxmat {

namespace {

QString Line(const ZAXMatMaterial& material, LengthUnit unit)
{
    return Text::tr("Material: %1 (%2, %3, %4)")
        .arg(material.GetMaterialId(), material.GetMaterialType(), LengthText(material.GetThickness(), unit),
             ZAXSysDensityValue(material.GetDensity()).ToString());
}

QString Line(const ZAXMatPackaging& stockForm, LengthUnit unit)
{
    QStringList facts{
        ZAXMatPackaging::GetFormLabel(stockForm.GetForm()),
        Text::tr("%1 x %2").arg(LengthText(stockForm.GetLength(), unit), LengthText(stockForm.GetWidth(), unit)),
        Text::tr("cost %1").arg(NumberText(stockForm.GetCost()))};
    if (stockForm.IsActive())
        facts.append(Text::tr("active"));
    return Text::tr("Stock form: %1 (%2)").arg(stockForm.GetLabel(), facts.join(QLatin1String(", ")));
}

void AddLines(const QList<ZAXFeatObject*>& features, int depth, LengthUnit unit, QStringList& lines)
{
    for (const ZAXFeatObject* const feature : features) {
        lines.append(QString(qsizetype(2) * depth, u' ') + Printable(ObjectLine(*feature, unit)));
        AddLines(feature->GetChildren(), depth + 1, unit, lines);
    }
}

} // namespace

QString ObjectLine(const ZAXFeatObject& object, LengthUnit unit)
{
    if (const auto* const material = qobject_cast<const ZAXMatMaterial*>(&object))
        return Line(*material, unit);
    if (const auto* const stockForm = qobject_cast<const ZAXMatPackaging*>(&object))
        return Line(*stockForm, unit);
    if (const auto* const placeholder = qobject_cast<const ZAXHostPlaceholder*>(&object))
        return Text::tr("Not available: %1 (%2)")
            .arg(QString::fromUtf8(placeholder->GetClassName()), placeholder->GetReason());
    return object.GetLabel();
}

QString DocumentTree(const ZAXFeatContainer& container, LengthUnit unit)
{
    QStringList lines;
    AddLines(container.GetRoots(), 0, unit, lines);
    return lines.join(u'\n');
}

} // namespace zaxmat
