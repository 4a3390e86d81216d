#include "ListCommand.h"

#include "Cells.h"
#include "Properties.h"
#include "Records.h"
#include "Table.h"
#include "Text.h"

#include "ZAXMatMaterial.h"

#include <array>
#include <memory>
#include <numeric>

namespace zaxmat {

namespace {

constexpr std::array shownProperties{ZAXMatMaterial::Property_materialType, ZAXMatMaterial::Property_category,
                                     ZAXMatMaterial::Property_thickness, ZAXMatMaterial::Property_density};

Table MaterialTable(const QList<CatalogueRecord>& materials, const Catalogue& catalogue, LengthUnit unit)
{
    constexpr auto left = Table::Alignment::Left;
    constexpr auto right = Table::Alignment::Right;
    Table table({{Text::tr("Name"), left, QLatin1String("name")},
                 {Text::tr("Type"), left, QLatin1String(ZAXMatMaterial::Property_materialType)},
                 {Text::tr("Category"), left, QLatin1String(ZAXMatMaterial::Property_category)},
                 {Text::tr("Thickness"), right, QLatin1String(ZAXMatMaterial::Property_thickness)},
                 {Text::tr("Density"), right, QLatin1String(ZAXMatMaterial::Property_density)},
                 {Text::tr("Stock forms"), right, QLatin1String("stockForms")},
                 {{}, left, QLatin1String("key")}});
    QList<QMetaProperty> properties;
    for (const char* const name : shownProperties)
        properties.append(FindProperty(&ZAXMatMaterial::staticMetaObject, name));
    for (const CatalogueRecord& material : materials) {
        const QByteArray key = material.GetKey();
        const QJsonObject values = material.GetValues();
        QList<Cell> cells{material.GetName()};
        cells.reserve(properties.size() + 3);
        for (qsizetype i = 0; i < properties.size(); ++i)
            cells.append(ValueCell(properties[i], values.value(QLatin1String(shownProperties[i])), unit));
        cells.append(CountCell(catalogue.CountStockForms(key)));
        cells.append(KeyCell(key));
        table.AddRow(cells);
    }
    return table;
}

} // namespace

ExitCode RunList(const ListOptions& options, Output& output)
{
    const Catalogue catalogue(options.catalogue);
    QList<CatalogueRecord> materials = catalogue.ReadMaterials();
    SortRecords(materials);
    const auto count = [&](qsizetype sum, const CatalogueRecord& material) {
        return sum + catalogue.CountStockForms(material.GetKey());
    };
    const qsizetype stockForms = std::accumulate(materials.cbegin(), materials.cend(), qsizetype(0), count);
    output.Print(MaterialTable(materials, catalogue, output.GetUnit()));
    output.Print(QString());
    output.Print(
        Text::tr("Catalogue %1: materials: %2, stock forms: %3")
            .arg(QuotedPath(catalogue.GetFilePath()), QString::number(materials.size()), QString::number(stockForms)));
    return ExitCode::Done;
}

void AddListCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("list"), Text::tr("Lists the materials of a catalogue."));
    const auto options = std::make_shared<ListOptions>();
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat list --catalogue examples/catalogue"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunList(*options, output); }; });
}

} // namespace zaxmat
