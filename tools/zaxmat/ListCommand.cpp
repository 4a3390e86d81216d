#include "ListCommand.h"

#include "Output.h"
#include "Properties.h"
#include "Table.h"
#include "Text.h"

#include "ZAXMatMaterial.h"

#include <CLI/CLI.hpp>

namespace zaxmat {

ExitCode RunList(const ListOptions& options, Output& output)
{
    const Catalogue catalogue(options.catalogue);
    constexpr auto right = Table::Alignment::Right;
    Table table({{Text::tr("Name")},
                 {Text::tr("Type")},
                 {Text::tr("Category")},
                 {Text::tr("Thickness"), right},
                 {Text::tr("Density"), right},
                 {Text::tr("Stock forms"), right}});
    qsizetype stockForms = 0;
    const QList<ZAXMatDefinition> materials = catalogue.GetMaterials();
    for (const ZAXMatDefinition& material : materials) {
        const qsizetype count = catalogue.CountStockForms(material.GetKey());
        stockForms += count;
        table.AddRow({material.GetName(), RecordText(material, ZAXMatMaterial::Property_materialType),
                      RecordText(material, ZAXMatMaterial::Property_category),
                      RecordText(material, ZAXMatMaterial::Property_thickness),
                      RecordText(material, ZAXMatMaterial::Property_density), QString::number(count)});
    }
    output.Print(table.ToText());
    output.Print(QString());
    output.Print(
        Text::tr("Catalogue %1: materials: %2, stock forms: %3")
            .arg(QuotedPath(catalogue.GetFilePath()), QString::number(materials.size()), QString::number(stockForms)));
    return ExitCode::Done;
}

void AddListCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = program.add_subcommand("list", Utf8(Text::tr("Lists the materials of a catalogue.")));
    const auto options = std::make_shared<ListOptions>();
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat list --catalogue examples/catalogue"));
    command->callback([options, &chosen] { chosen = [options](Output& output) { return RunList(*options, output); }; });
}

} // namespace zaxmat
