#include "Records.h"

#include "Catalogue.h"
#include "Properties.h"
#include "Table.h"
#include "Text.h"

#include "ZAXMatMaterial.h"
#include "ZAXSysDefinedValue.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace zaxmat {

namespace {

template <typename Predicate>
QList<ZAXMatDefinition> Matching(const QList<ZAXMatDefinition>& records, Predicate isWanted)
{
    QList<ZAXMatDefinition> found;
    std::ranges::copy_if(records, std::back_inserter(found), isWanted);
    return found;
}

/// The records that \a text is the key of, else those that it is the name of.
QList<ZAXMatDefinition> FindByKeyOrName(const QList<ZAXMatDefinition>& records, const QString& text)
{
    const QByteArray key = text.toUtf8();
    const auto byKey = Matching(records, [&](const auto& record) { return record.GetKey() == key; });
    return !byKey.isEmpty() ? byKey : Matching(records, [&](const auto& record) { return record.GetName() == text; });
}

QString TypeOf(const ZAXMatDefinition& material)
{
    return material.GetValue(ZAXMatMaterial::Property_materialType).toString();
}

} // namespace

void SortRecords(QList<ZAXMatDefinition>& records)
{
    std::ranges::sort(records, [](const ZAXMatDefinition& a, const ZAXMatDefinition& b) {
        if (const int order = a.GetName().compare(b.GetName(), Qt::CaseInsensitive); order != 0)
            return order < 0;
        if (const int order = a.GetName().compare(b.GetName()); order != 0)
            return order < 0;
        const auto thicknessA = ThicknessOf(a);
        const auto thicknessB = ThicknessOf(b);
        return thicknessA != thicknessB ? thicknessA < thicknessB : a.GetKey() < b.GetKey();
    });
}

std::optional<double> ThicknessOf(const ZAXMatDefinition& material)
{
    QVariant thickness = material.GetValue(ZAXMatMaterial::Property_thickness);
    if (IsMissing(thickness) || !thickness.convert(QMetaType::fromType<ZAXSysLengthValue>()))
        return std::nullopt;
    return thickness.value<ZAXSysLengthValue>().GetValue();
}

bool IsSameThickness(double a, double b)
{
    return std::abs(a - b) < 0.001;
}

QList<ZAXMatDefinition> FindMaterials(const Catalogue& catalogue, const QString& text)
{
    const QList<ZAXMatDefinition> materials = catalogue.GetMaterials();
    const auto found = FindByKeyOrName(materials, text);
    return !found.isEmpty() ? found : Matching(materials, [&](const auto& record) { return TypeOf(record) == text; });
}

QList<ZAXMatDefinition> FindStockForms(const QList<ZAXMatDefinition>& stockForms, const QString& text)
{
    return FindByKeyOrName(stockForms, text);
}

QString MaterialTitle(const ZAXMatDefinition& material)
{
    const auto thickness = ThicknessOf(material);
    if (!thickness)
        return material.GetName();
    return material.GetName() + QLatin1String(", ") + ZAXSysLengthValue(*thickness).ToString();
}

QString MaterialLines(const QList<ZAXMatDefinition>& materials)
{
    Table table({{}, {}});
    for (const ZAXMatDefinition& material : materials)
        table.AddRow({QLatin1String("  ") + MaterialTitle(material), QString::fromUtf8(material.GetKey())});
    return table.ToText();
}

QString StockFormLines(const QList<ZAXMatDefinition>& stockForms)
{
    Table table({{}, {}});
    for (const ZAXMatDefinition& stockForm : stockForms)
        table.AddRow({QLatin1String("  ") + stockForm.GetName(), QString::fromUtf8(stockForm.GetKey())});
    return table.ToText();
}

QString UnknownMaterialText(const Catalogue& catalogue, const QString& text)
{
    constexpr qsizetype mostShown = 10;
    const auto similar = Matching(catalogue.GetMaterials(), [&](const ZAXMatDefinition& material) {
        return material.GetName().contains(text, Qt::CaseInsensitive) ||
               TypeOf(material).contains(text, Qt::CaseInsensitive);
    });
    QStringList lines{Text::tr("The catalogue %1 has no %2.").arg(QuotedPath(catalogue.GetFilePath()), Quoted(text))};
    if (!similar.isEmpty())
        lines << Text::tr("Similar:") << MaterialLines(similar.first(std::min(similar.size(), mostShown)));
    if (similar.isEmpty() || similar.size() > mostShown)
        lines << Text::tr("\"zaxmat list\" shows all materials.");
    return lines.join(u'\n');
}

} // namespace zaxmat
