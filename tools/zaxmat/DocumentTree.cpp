#include "DocumentTree.h"

#include "Text.h"

#include "ZAXFeatContainer.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"

#include <QStringList>

namespace zaxmat {

namespace {

QString Line(const ZAXMatMaterial& material)
{
    return Text::tr("Material: %1 (%2, %3, %4)")
        .arg(material.GetMaterialId(), material.GetMaterialType(),
             ZAXSysLengthValue(material.GetThickness()).ToString(),
             ZAXSysDensityValue(material.GetDensity()).ToString());
}

QString Line(const ZAXMatPackaging& stockForm)
{
    QStringList facts{ZAXMatPackaging::GetFormLabel(stockForm.GetForm()),
                      Text::tr("%1 x %2").arg(ZAXSysLengthValue(stockForm.GetLength()).ToString(),
                                              ZAXSysLengthValue(stockForm.GetWidth()).ToString()),
                      Text::tr("cost %1").arg(NumberText(stockForm.GetCost()))};
    if (stockForm.IsActive())
        facts.append(Text::tr("active"));
    return Text::tr("Stock form: %1 (%2)").arg(stockForm.GetLabel(), facts.join(QLatin1String(", ")));
}

QString Line(const ZAXFeatObject& feature)
{
    if (const auto* const material = qobject_cast<const ZAXMatMaterial*>(&feature))
        return Line(*material);
    if (const auto* const stockForm = qobject_cast<const ZAXMatPackaging*>(&feature))
        return Line(*stockForm);
    return feature.GetLabel();
}

void AddLines(const QList<ZAXFeatObject*>& features, int depth, QStringList& lines)
{
    for (const ZAXFeatObject* const feature : features) {
        lines.append(QString(qsizetype(2) * depth, u' ') + Printable(Line(*feature)));
        AddLines(feature->GetChildren(), depth + 1, lines);
    }
}

} // namespace

QString DocumentTree(const ZAXFeatContainer& container)
{
    QStringList lines;
    AddLines(container.GetRoots(), 0, lines);
    return lines.join(u'\n');
}

} // namespace zaxmat
