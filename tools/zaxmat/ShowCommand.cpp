#include "ShowCommand.h"

#include "Cells.h"
#include "Failure.h"
#include "Properties.h"
#include "RecordDifference.h"
#include "Records.h"
#include "Table.h"
#include "Text.h"

#include "ZAXMatPackaging.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace zaxmat {

namespace {

/// A stock form with its material.
struct PlacedStockForm
{
    ZAXMatDefinition record;
    ZAXMatDefinition material;
};

/// Prints \a title, the key and all defined properties of \a record.
void PrintRecord(const QString& title, const ZAXMatDefinition& record, Output& output)
{
    Table table({{}, {}});
    table.AddRow({Text::tr("Key"), KeyCell(record.GetKey())});
    const QList<QByteArray> extensions = ExtensionsOf(record);
    for (const QByteArray& extension : extensions) {
        const QMetaObject* const type = ClassOf(record, extension);
        const QString prefix = extension.isEmpty() ? QString() : QString::fromLatin1(extension) + u'.';
        const QList<QByteArray> properties = PropertiesOf(record, extension);
        for (const QByteArray& property : properties)
            table.AddRow(
                {prefix + PropertyLabel(type, property), RecordText(record, property, extension, output.GetUnit())});
    }
    output.PrintText(output.Emphasize(Printable(title), Emphasis::Heading));
    output.PrintText(table.ToText());
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
        const auto text = [&](const char* property) { return RecordText(stockForm, property, {}, output.GetUnit()); };
        table.AddRow({stockForm.GetName(), text(ZAXMatPackaging::Property_form), text(ZAXMatPackaging::Property_length),
                      text(ZAXMatPackaging::Property_width), text(ZAXMatPackaging::Property_cost),
                      text(ZAXMatPackaging::Property_isActive), text(ZAXMatPackaging::Property_comment),
                      KeyCell(stockForm.GetKey())});
    }
    output.PrintText(QString());
    output.PrintText(stockForms.isEmpty() ? Text::tr("No stock forms.") : table.ToText(output.IsColoured()));
}

/// The values of \a record as an object with a member per extension, the empty one for its own.
QJsonObject ValuesJson(const ZAXMatDefinition& record)
{
    QJsonObject values;
    const QList<QByteArray> extensions = ExtensionsOf(record);
    for (const QByteArray& extension : extensions) {
        QJsonObject table;
        const QList<QByteArray> properties = PropertiesOf(record, extension);
        for (const QByteArray& property : properties)
            table.insert(QString::fromLatin1(property), RecordJson(record, property, extension));
        values.insert(QString::fromLatin1(extension), table);
    }
    return values;
}

QJsonObject RecordObject(const ZAXMatDefinition& record)
{
    return {{QLatin1String("type"), TypeCell(record.GetType()).value},
            {QLatin1String("key"), KeyCell(record.GetKey()).value},
            {QLatin1String("name"), record.GetName()},
            {QLatin1String("properties"), ValuesJson(record)}};
}

QJsonObject MaterialObject(const ZAXMatDefinition& material, const Catalogue& catalogue)
{
    QJsonArray stockForms;
    const auto records = catalogue.GetStockForms(material.GetKey());
    std::ranges::transform(records, std::back_inserter(stockForms), RecordObject);
    QJsonObject object = RecordObject(material);
    object.insert(QLatin1String("stockForms"), stockForms);
    return object;
}

QJsonObject StockFormObject(const PlacedStockForm& stockForm)
{
    QJsonObject object = RecordObject(stockForm.record);
    object.insert(QLatin1String("materialKey"), KeyCell(stockForm.record.GetMaterialKey()).value);
    return object;
}

/// A row per value of the records.
Table ValueTable(const QList<ZAXMatDefinition>& records)
{
    constexpr auto left = Table::Alignment::Left;
    Table table({{{}, left, QLatin1String("type")},
                 {{}, left, QLatin1String("key")},
                 {{}, left, QLatin1String("name")},
                 {{}, left, QLatin1String("property")},
                 {{}, left, QLatin1String("value")}});
    for (const ZAXMatDefinition& record : records) {
        const QList<QByteArray> extensions = ExtensionsOf(record);
        for (const QByteArray& extension : extensions) {
            const QList<QByteArray> properties = PropertiesOf(record, extension);
            for (const QByteArray& property : properties) {
                table.AddRow({TypeCell(record.GetType()),
                              KeyCell(record.GetKey()),
                              record.GetName(),
                              FieldName(extension, property),
                              {QString(), RecordJson(record, property, extension)}});
            }
        }
    }
    return table;
}

void PrintMaterials(const QList<ZAXMatDefinition>& materials, const Catalogue& catalogue, Output& output)
{
    bool isFirst = true;
    for (const ZAXMatDefinition& material : materials) {
        if (!std::exchange(isFirst, false))
            output.PrintText(QString());
        PrintRecord(MaterialTitle(material, output.GetUnit()), material, output);
        PrintStockForms(catalogue.GetStockForms(material.GetKey()), output);
    }
}

void ShowMaterials(const QList<ZAXMatDefinition>& materials, const Catalogue& catalogue, Output& output)
{
    QJsonArray objects;
    QList<ZAXMatDefinition> records;
    switch (output.GetFormat()) {
    case Format::Table:
        return PrintMaterials(materials, catalogue, output);
    case Format::Json:
        for (const ZAXMatDefinition& material : materials)
            objects.append(MaterialObject(material, catalogue));
        return output.PrintJson(objects);
    case Format::Csv:
        for (const ZAXMatDefinition& material : materials)
            records << material << catalogue.GetStockForms(material.GetKey());
        return output.Print(ValueTable(records));
    }
}

QString StockFormTitle(const PlacedStockForm& stockForm, LengthUnit unit)
{
    const QString name = stockForm.record.GetName();
    return stockForm.material.IsValid() ? Text::tr("%1 of %2").arg(name, MaterialTitle(stockForm.material, unit))
                                        : name;
}

void ShowStockForms(const QList<PlacedStockForm>& stockForms, Output& output)
{
    QJsonArray objects;
    QList<ZAXMatDefinition> records;
    for (const PlacedStockForm& stockForm : stockForms) {
        if (output.GetFormat() == Format::Table) {
            if (!records.isEmpty())
                output.PrintText(QString());
            PrintRecord(StockFormTitle(stockForm, output.GetUnit()), stockForm.record, output);
        }
        objects.append(StockFormObject(stockForm));
        records.append(stockForm.record);
    }
    output.PrintJson(objects);
    if (output.GetFormat() == Format::Csv)
        output.Print(ValueTable(records));
}

/// The stock forms that \a text stands for, those of the first materials first. A key stands for one.
QList<PlacedStockForm> FindPlacedStockForms(const Catalogue& catalogue, const QString& text)
{
    QList<PlacedStockForm> found;
    const QList<ZAXMatDefinition> stockForms = FindStockForms(catalogue, text);
    for (const ZAXMatDefinition& stockForm : stockForms)
        found.append({stockForm, catalogue.GetMaterial(stockForm.GetMaterialKey())});
    return found;
}

} // namespace

ExitCode RunShow(const ShowOptions& options, Output& output)
{
    const Catalogue catalogue(options.catalogue);
    const auto materials = FindMaterials(catalogue, options.record);
    if (!materials.isEmpty()) {
        ShowMaterials(materials, catalogue, output);
        return ExitCode::Done;
    }
    const auto stockForms = FindPlacedStockForms(catalogue, options.record);
    if (stockForms.isEmpty())
        throw Failure(ExitCode::WrongUsage, UnknownMaterialText(catalogue, options.record, output.GetUnit()));
    ShowStockForms(stockForms, output);
    return ExitCode::Done;
}

void AddShowCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("show"),
                                             Text::tr("Shows a material with its stock forms, or a stock form."));
    const auto options = std::make_shared<ShowOptions>();
    AddText(*command, QLatin1String("NAME|KEY"), QString(),
            Text::tr("The name, key or type of a material, or the name or key of a stock form. All that match are "
                     "shown."),
            options->record)
        .Required();
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat show S235JR --catalogue examples/catalogue"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunShow(*options, output); }; });
}

} // namespace zaxmat
