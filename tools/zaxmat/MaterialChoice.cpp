#include "MaterialChoice.h"

#include "Catalogue.h"
#include "Failure.h"
#include "Properties.h"
#include "Records.h"
#include "Text.h"
#include "Values.h"

#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"
#include "ZAXSysDefinedValue.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace zaxmat {

namespace {

std::optional<double> WantedThickness(const MaterialRequest& request)
{
    if (request.thickness.isEmpty())
        return std::nullopt;
    const auto thickness = ZAXSysValue::FromString(ZAXSysQuantity::Length, request.thickness);
    if (const QString why = AmbiguityOf(request.thickness); !why.isEmpty())
        throw Failure(ExitCode::WrongUsage, Text::tr("--thickness: %1 %2").arg(Quoted(request.thickness), why));
    if (!thickness) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("--thickness: %1 is no length. Give a number of millimetres, or a number with its "
                               "unit: 2, \"2 mm\", \"0.5 in\".")
                          .arg(Quoted(request.thickness)));
    }
    return thickness;
}

/// The one material that \a request names.
ZAXMatDefinition ChooseRecord(const Catalogue& catalogue, const MaterialRequest& request,
                              std::optional<double> thickness, LengthUnit unit)
{
    const auto candidates = FindMaterials(catalogue, request.material);
    if (candidates.isEmpty())
        throw Failure(ExitCode::WrongUsage, UnknownMaterialText(catalogue, request.material, unit));
    QList<ZAXMatDefinition> fitting;
    std::ranges::copy_if(candidates, std::back_inserter(fitting), [&](const ZAXMatDefinition& material) {
        const auto own = ThicknessOf(material);
        return !thickness || !own || IsSameThickness(*own, *thickness);
    });
    if (fitting.isEmpty()) {
        throw Failure(ExitCode::WrongUsage, Text::tr("There is no %1 with a thickness of %2, but:\n%3")
                                                .arg(Quoted(request.material), LengthText(*thickness, unit),
                                                     MaterialLines(candidates, unit)));
    }
    if (fitting.size() > 1) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("Several materials are called %1. Choose one with --thickness or by its key:\n%2")
                          .arg(Quoted(request.material), MaterialLines(fitting, unit)));
    }
    return fitting.constFirst();
}

/// The thickness that \a material is to have in the document.
double ChooseThickness(const ZAXMatDefinition& material, std::optional<double> wanted)
{
    const QVariant value = material.GetValue(ZAXMatMaterial::Property_thickness);
    const auto own = ThicknessOf(material);
    if (!own && !IsMissing(value))
        throw Failure(ExitCode::InvalidValues, Text::tr("The catalogue's thickness of %1 is %2, which is no length.")
                                                   .arg(Quoted(material.GetName()), Quoted(value.toString())));
    if (!own && !wanted) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("The catalogue gives no thickness for %1. Say it with --thickness.")
                          .arg(Quoted(material.GetName())));
    }
    return own ? *own : *wanted;
}

/// The one of \a stockForms that \a name stands for.
ZAXMatDefinition ChooseStockForm(const QList<ZAXMatDefinition>& stockForms, const QString& name,
                                 const ZAXMatDefinition& material, LengthUnit unit)
{
    const auto found = FindStockForms(stockForms, name);
    if (found.isEmpty() && stockForms.isEmpty())
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 has no stock forms in the catalogue.").arg(Quoted(MaterialTitle(material, unit))));
    if (found.isEmpty()) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 has no stock form %2, but:\n%3")
                          .arg(Quoted(MaterialTitle(material, unit)), Quoted(name), StockFormLines(stockForms)));
    }
    if (found.size() > 1) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("Several stock forms are called %1 in %2. Choose one by its key:\n%3")
                          .arg(Quoted(name), Quoted(MaterialTitle(material, unit)), StockFormLines(found)));
    }
    return found.constFirst();
}

QList<ZAXMatDefinition> ChooseStockForms(const Catalogue& catalogue, const ZAXMatDefinition& material,
                                         const QStringList& names, LengthUnit unit)
{
    const QList<ZAXMatDefinition> stockForms = catalogue.GetStockForms(material.GetKey());
    QList<ZAXMatDefinition> chosen;
    if (names.isEmpty())
        std::ranges::copy_if(stockForms, std::back_inserter(chosen), [](const ZAXMatDefinition& stockForm) {
            return stockForm.GetValue(ZAXMatPackaging::Property_isActive).toBool();
        });
    for (const QString& name : names) {
        const ZAXMatDefinition stockForm = ChooseStockForm(stockForms, name, material, unit);
        if (!std::ranges::count(chosen, stockForm.GetKey(), &ZAXMatDefinition::GetKey))
            chosen.append(stockForm);
    }
    return chosen;
}

} // namespace

MaterialChoice ChooseMaterial(const Catalogue& catalogue, const MaterialRequest& request, LengthUnit unit)
{
    const auto thickness = WantedThickness(request);
    MaterialChoice choice;
    choice.providerId = catalogue.GetProviderId();
    choice.material = ChooseRecord(catalogue, request, thickness, unit);
    choice.thickness = ChooseThickness(choice.material, thickness);
    choice.stockForms = ChooseStockForms(catalogue, choice.material, request.stockForms, unit);
    choice.hasStockForms = catalogue.CountStockForms(choice.material.GetKey()) > 0;
    return choice;
}

} // namespace zaxmat
