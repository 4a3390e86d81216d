#include "ShowCommand.h"

#include "Failure.h"
#include "Output.h"
#include "Properties.h"
#include "Records.h"
#include "Table.h"
#include "Text.h"

#include "ZAXMatPackaging.h"

#include <CLI/CLI.hpp>

namespace zaxmat {

namespace {

/// Prints \a title, the key and all defined properties of \a record.
void PrintRecord(const QString& title, const ZAXMatDefinition& record, Output& output)
{
    Table table({{}, {}});
    table.AddRow({Text::tr("Key"), QString::fromLatin1(record.GetKey())});
    const QList<QByteArray> extensions = ExtensionsOf(record);
    for (const QByteArray& extension : extensions) {
        const QMetaObject* const type = ClassOf(record, extension);
        const QString prefix = extension.isEmpty() ? QString() : QString::fromUtf8(extension) + u'.';
        const QList<QByteArray> properties = PropertiesOf(record, extension);
        for (const QByteArray& property : properties)
            table.AddRow({prefix + PropertyLabel(type, property), RecordText(record, property, extension)});
    }
    output.Print(Printable(title));
    output.Print(table.ToText());
}

void PrintStockForms(const QList<ZAXMatDefinition>& stockForms, Output& output)
{
    constexpr auto right = Table::Alignment::Right;
    const auto label = [](const char* property) { return PropertyLabel(&ZAXMatPackaging::staticMetaObject, property); };
    Table table({{Text::tr("Stock form")},
                 {label(ZAXMatPackaging::Property_form)},
                 {label(ZAXMatPackaging::Property_length), right},
                 {label(ZAXMatPackaging::Property_width), right},
                 {label(ZAXMatPackaging::Property_cost), right},
                 {Text::tr("Active")},
                 {label(ZAXMatPackaging::Property_comment)},
                 {Text::tr("Key")}});
    for (const ZAXMatDefinition& stockForm : stockForms) {
        table.AddRow({stockForm.GetName(), RecordText(stockForm, ZAXMatPackaging::Property_form),
                      RecordText(stockForm, ZAXMatPackaging::Property_length),
                      RecordText(stockForm, ZAXMatPackaging::Property_width),
                      RecordText(stockForm, ZAXMatPackaging::Property_cost),
                      RecordText(stockForm, ZAXMatPackaging::Property_isActive),
                      RecordText(stockForm, ZAXMatPackaging::Property_comment),
                      QString::fromLatin1(stockForm.GetKey())});
    }
    output.Print(QString());
    output.Print(stockForms.isEmpty() ? Text::tr("No stock forms.") : table.ToText());
}

void PrintMaterials(const QList<ZAXMatDefinition>& materials, const Catalogue& catalogue, Output& output)
{
    bool isFirst = true;
    for (const ZAXMatDefinition& material : materials) {
        if (!std::exchange(isFirst, false))
            output.Print(QString());
        PrintRecord(MaterialTitle(material), material, output);
        PrintStockForms(catalogue.GetStockForms(material.GetKey()), output);
    }
}

/// Prints the stock forms of all materials that \a text stands for. False when there are none.
bool PrintMatchingStockForms(const Catalogue& catalogue, const QString& text, Output& output)
{
    bool isFirst = true;
    const QList<ZAXMatDefinition> materials = catalogue.GetMaterials();
    for (const ZAXMatDefinition& material : materials) {
        const auto stockForms = FindStockForms(catalogue.GetStockForms(material.GetKey()), text);
        for (const ZAXMatDefinition& stockForm : stockForms) {
            if (!std::exchange(isFirst, false))
                output.Print(QString());
            PrintRecord(Text::tr("%1 of %2").arg(stockForm.GetName(), MaterialTitle(material)), stockForm, output);
        }
    }
    return !isFirst;
}

} // namespace

ExitCode RunShow(const ShowOptions& options, Output& output)
{
    const Catalogue catalogue(options.catalogue);
    const auto materials = FindMaterials(catalogue, options.record);
    if (!materials.isEmpty())
        PrintMaterials(materials, catalogue, output);
    else if (!PrintMatchingStockForms(catalogue, options.record, output))
        throw Failure(ExitCode::WrongUsage, UnknownMaterialText(catalogue, options.record));
    return ExitCode::Done;
}

void AddShowCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        program.add_subcommand("show", Utf8(Text::tr("Shows a material with its stock forms, or a stock form.")));
    const auto options = std::make_shared<ShowOptions>();
    AddText(*command, QLatin1String("NAME|KEY"), QString(),
            Text::tr("The name, key or type of a material, or the name or key of a stock form. All that match are "
                     "shown."),
            options->record)
        ->required();
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat show S235JR --catalogue examples/catalogue"));
    command->callback([options, &chosen] { chosen = [options](Output& output) { return RunShow(*options, output); }; });
}

} // namespace zaxmat
