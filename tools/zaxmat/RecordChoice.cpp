#include "RecordChoice.h"

#include "Catalogue.h"
#include "Failure.h"
#include "Records.h"
#include "Text.h"

namespace zaxmat {

namespace {

Failure Ambiguous(const QString& text, const QString& lines)
{
    return {ExitCode::WrongUsage,
            Text::tr("Several records are called %1. Choose one by its key:\n%2").arg(Quoted(text), lines)};
}

/// The stock forms with their materials for a message, one per line.
QString PlacedLines(const QList<ZAXMatDefinition>& stockForms, const Catalogue& catalogue, LengthUnit unit)
{
    QList<ZAXMatDefinition> titled = stockForms;
    for (ZAXMatDefinition& stockForm : titled) {
        const ZAXMatDefinition material = catalogue.GetMaterial(stockForm.GetMaterialKey());
        stockForm.SetName(Text::tr("%1 of %2").arg(stockForm.GetName(), MaterialTitle(material, unit)));
    }
    return StockFormLines(titled);
}

ZAXMatDefinition ChooseStockForm(const Catalogue& catalogue, const QList<ZAXMatDefinition>& found, const QString& text,
                                 LengthUnit unit)
{
    if (found.size() > 1)
        throw Ambiguous(text, PlacedLines(found, catalogue, unit));
    return found.constFirst();
}

} // namespace

ZAXMatDefinition ChooseMaterialRecord(const Catalogue& catalogue, const QString& text, LengthUnit unit)
{
    const auto materials = FindMaterials(catalogue, text);
    if (materials.isEmpty())
        throw Failure(ExitCode::WrongUsage, UnknownMaterialText(catalogue, text, unit));
    if (materials.size() > 1)
        throw Ambiguous(text, MaterialLines(materials, unit));
    return materials.constFirst();
}

ZAXMatDefinition ChooseRecord(const Catalogue& catalogue, const RecordRequest& request, LengthUnit unit)
{
    if (!request.material.isEmpty()) {
        const ZAXMatDefinition material = ChooseMaterialRecord(catalogue, request.material, unit);
        const auto stockForms = catalogue.GetStockForms(material.GetKey());
        const auto found = FindStockForms(stockForms, request.record);
        if (found.isEmpty()) {
            throw Failure(ExitCode::WrongUsage, Text::tr("%1 has no stock form %2.\n%3")
                                                    .arg(Quoted(MaterialTitle(material, unit)), Quoted(request.record),
                                                         stockForms.isEmpty() ? Text::tr("It has none at all.")
                                                                              : StockFormLines(stockForms)));
        }
        return ChooseStockForm(catalogue, found, request.record, unit);
    }
    if (!FindMaterials(catalogue, request.record).isEmpty())
        return ChooseMaterialRecord(catalogue, request.record, unit);
    const auto stockForms = FindStockForms(catalogue, request.record);
    if (stockForms.isEmpty())
        throw Failure(ExitCode::WrongUsage, UnknownMaterialText(catalogue, request.record, unit));
    return ChooseStockForm(catalogue, stockForms, request.record, unit);
}

void AddRecordArgument(CLI::App& command, RecordRequest& target)
{
    AddText(command, QLatin1String("NAME|KEY"), QString(),
            Text::tr("The name, key or type of a material, or the name or key of a stock form."), target.record)
        .Required();
    AddText(
        command, QLatin1String("--material"), Text::tr("MATERIAL"),
        Text::tr("The name, key or type of the material whose stock form is meant, where several materials have one "
                 "of that name."),
        target.material);
}

} // namespace zaxmat
