#include "UseCommand.h"

#include "DocumentFile.h"
#include "DocumentTree.h"
#include "Failure.h"
#include "Output.h"
#include "Properties.h"
#include "Records.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatContainer.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXMatRoot.h"
#include "ZAXSysException.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace zaxmat {

namespace {

/// What is to be taken from the catalogue.
struct Choice
{
    QByteArray providerId;
    ZAXMatDefinition material;
    /// In millimetres.
    double thickness = 0.0;
    QList<ZAXMatDefinition> stockForms;
};

/// A feature of the document that stands for a record, and how it came there.
template <typename Feature>
struct Placed
{
    Feature* feature = nullptr;
    bool isNew = false;
};

/// What stands in the document after all.
struct Placement
{
    Placed<ZAXMatMaterial> material;
    QList<Placed<ZAXMatPackaging>> stockForms;

    bool HasNew() const { return material.isNew || std::ranges::any_of(stockForms, &Placed<ZAXMatPackaging>::isNew); }
};

std::optional<double> WantedThickness(const UseOptions& options)
{
    if (options.thickness.isEmpty())
        return std::nullopt;
    const auto thickness = ZAXSysValue::FromString(ZAXSysQuantity::Length, options.thickness);
    if (!thickness)
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("--thickness: %1 is no length. Give a number of millimetres, or a number with its "
                               "unit: 2, \"2 mm\", \"0.5 in\".")
                          .arg(Quoted(options.thickness)));
    return thickness;
}

/// The one material that \a options name.
ZAXMatDefinition ChooseMaterial(const Catalogue& catalogue, const UseOptions& options, std::optional<double> thickness)
{
    const auto candidates = FindMaterials(catalogue, options.material);
    if (candidates.isEmpty())
        throw Failure(ExitCode::WrongUsage, UnknownMaterialText(catalogue, options.material));
    QList<ZAXMatDefinition> fitting;
    std::ranges::copy_if(candidates, std::back_inserter(fitting), [&](const ZAXMatDefinition& material) {
        const auto own = ThicknessOf(material);
        return !thickness || !own || IsSameThickness(*own, *thickness);
    });
    if (fitting.isEmpty())
        throw Failure(ExitCode::WrongUsage, Text::tr("There is no %1 with a thickness of %2, but:\n%3")
                                                .arg(Quoted(options.material), ZAXSysLengthValue(*thickness).ToString(),
                                                     MaterialLines(candidates)));
    if (fitting.size() > 1)
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("Several materials are called %1. Choose one with --thickness or by its key:\n%2")
                          .arg(Quoted(options.material), MaterialLines(fitting)));
    return fitting.constFirst();
}

/// The thickness that \a material is to have in the document.
double ChooseThickness(const ZAXMatDefinition& material, std::optional<double> wanted)
{
    const auto own = ThicknessOf(material);
    if (!own && !wanted)
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("The catalogue gives no thickness for %1. Say it with --thickness.")
                          .arg(Quoted(material.GetName())));
    return own ? *own : *wanted;
}

/// The one of \a stockForms that \a name stands for.
ZAXMatDefinition ChooseStockForm(const QList<ZAXMatDefinition>& stockForms, const QString& name,
                                 const ZAXMatDefinition& material)
{
    const auto found = FindStockForms(stockForms, name);
    if (found.isEmpty() && stockForms.isEmpty())
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 has no stock forms in the catalogue.").arg(Quoted(MaterialTitle(material))));
    if (found.isEmpty())
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 has no stock form %2, but:\n%3")
                          .arg(Quoted(MaterialTitle(material)), Quoted(name), StockFormLines(stockForms)));
    if (found.size() > 1)
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("Several stock forms are called %1 in %2. Choose one by its key:\n%3")
                          .arg(Quoted(name), Quoted(MaterialTitle(material)), StockFormLines(found)));
    return found.constFirst();
}

QList<ZAXMatDefinition> ChooseStockForms(const Catalogue& catalogue, const ZAXMatDefinition& material,
                                         const QStringList& names)
{
    const QList<ZAXMatDefinition> stockForms = catalogue.GetStockForms(material.GetKey());
    QList<ZAXMatDefinition> chosen;
    if (names.isEmpty())
        std::ranges::copy_if(stockForms, std::back_inserter(chosen), [](const ZAXMatDefinition& stockForm) {
            return stockForm.GetValue(ZAXMatPackaging::Property_isActive).toBool();
        });
    for (const QString& name : names) {
        const ZAXMatDefinition stockForm = ChooseStockForm(stockForms, name, material);
        if (!chosen.contains(stockForm))
            chosen.append(stockForm);
    }
    return chosen;
}

Choice Choose(const UseOptions& options)
{
    const auto thickness = WantedThickness(options);
    const Catalogue catalogue(options.catalogue);
    Choice choice;
    choice.providerId = catalogue.GetProviderId();
    choice.material = ChooseMaterial(catalogue, options, thickness);
    choice.thickness = ChooseThickness(choice.material, thickness);
    choice.stockForms = ChooseStockForms(catalogue, choice.material, options.stockForms);
    return choice;
}

/// What is wrong with values, one line each.
class Complaints
{
public:
    /// The value of \a property of \a feature is wrong, as \a text says.
    void Add(const ZAXFeatObject& feature, const QByteArray& property, const QString& text)
    {
        m_lines.append(QLatin1String("  ") + Text::tr("%1: %2: %3")
                                                 .arg(Quoted(feature.GetLabel()),
                                                      PropertyLabel(feature.metaObject(), property), Printable(text)));
    }

    /// \throws Failure (InvalidValues) if there is a complaint. The document's file \a path was not written then.
    void Raise(const QString& path) const
    {
        if (!m_lines.isEmpty())
            throw Failure(ExitCode::InvalidValues,
                          Text::tr("The document %1 is not saved. These values are invalid:\n%2")
                              .arg(QuotedPath(path), m_lines.join(u'\n')));
    }

private:
    QStringList m_lines;
};

/// Adds what the properties of \a feature cannot take of the values under \a extension, which belong to \a target.
void AddRefusedValues(const ZAXMatDefinition& record, const QByteArray& extension, const QObject& target,
                      const ZAXFeatObject& feature, Complaints& complaints)
{
    const QList<QByteArray> names = PropertiesOf(record, extension);
    for (const QByteArray& name : names) {
        const QMetaProperty property = FindProperty(target.metaObject(), name);
        const QVariant value = record.GetValue(name, extension);
        if (property.isWritable() && !IsMissing(value) && !IsAccepted(property, value))
            complaints.Add(feature, name,
                           Text::tr("The catalogue's value %1 cannot be taken.").arg(Quoted(value.toString())));
    }
}

/// Says which of the values that the user expects to come from the catalogue are the defaults of \a feature.
void NoteDefaults(const ZAXMatDefinition& record, const ZAXFeatObject& feature)
{
    const QMetaObject* const type = feature.metaObject();
    const QByteArray names = type->classInfo(type->indexOfClassInfo("inputProps")).value();
    for (const QByteArray& name : names.split(' ')) {
        const QMetaProperty property = FindProperty(type, name);
        const QString value = property.isWritable() ? ValueText(property, property.read(&feature)) : QString();
        if (!value.isEmpty() && IsMissing(record.GetValue(name)))
            PrintNote(Text::tr("%1: %2: the catalogue gives none, %3 is the default.")
                          .arg(Quoted(feature.GetLabel()), PropertyLabel(type, name), value));
    }
}

/// Writes \a record into the new \a feature.
template <typename Feature>
void WriteRecord(const ZAXMatDefinition& record, Feature& feature, Complaints& complaints)
{
    try {
        record.SaveToFeature(&feature);
    } catch (const ZAXSysException& exception) {
        throw Failure(ExitCode::InvalidValues, Text::tr("%1 of the catalogue cannot be taken over: %2.")
                                                   .arg(Quoted(record.GetName()), exception.GetMessage()));
    }
    const QList<QByteArray> extensions = ExtensionsOf(record);
    for (const QByteArray& extension : extensions) {
        const QObject* const target =
            extension.isEmpty() ? static_cast<QObject*>(&feature) : feature.GetExtension(extension, false);
        AddRefusedValues(record, extension, *target, feature, complaints);
    }
}

Placed<ZAXMatMaterial> PlaceMaterial(const Choice& choice, ZAXHostDocument& document, Complaints& complaints)
{
    ZAXMatRoot* const root = MaterialsRootOf(document);
    const QByteArray key = choice.material.GetKey();
    if (auto* const material = root->GetMaterial(choice.providerId, key, choice.thickness))
        return {material, false};
    auto* const material =
        qobject_cast<ZAXMatMaterial*>(CreateFeature(document, ZAXMatMaterial::staticMetaObject.className(), root));
    WriteRecord(choice.material, *material, complaints);
    if (!ThicknessOf(choice.material))
        material->SetThickness(choice.thickness);
    material->SetProviderId(choice.providerId);
    material->SetRemoteKey(key);
    // The record may hold an ID without a value, which is written behind or before the thickness as the hash will.
    material->UpdateMaterialId();
    NoteDefaults(choice.material, *material);
    return {material, true};
}

Placed<ZAXMatPackaging> PlaceStockForm(const ZAXMatDefinition& record, ZAXMatMaterial& material,
                                       ZAXHostDocument& document, Complaints& complaints)
{
    const QList<ZAXMatPackaging*> present = material.GetPackaging();
    const auto found = std::ranges::find(present, record.GetKey(), &ZAXMatPackaging::GetRemoteKey);
    if (found != present.end())
        return {*found, false};
    const bool isFirstActive = material.GetActivePackaging().isEmpty();
    auto* const stockForm = qobject_cast<ZAXMatPackaging*>(
        CreateFeature(document, ZAXMatPackaging::staticMetaObject.className(), &material));
    WriteRecord(record, *stockForm, complaints);
    stockForm->SetRemoteKey(record.GetKey());
    // A material without an active stock form would be given some default one by the application.
    if (isFirstActive)
        stockForm->SetActive(true);
    NoteDefaults(record, *stockForm);
    return {stockForm, true};
}

/// Sees to it that all of \a choice stands in \a document.
Placement Place(const Choice& choice, ZAXHostDocument& document, Complaints& complaints)
{
    Placement placement;
    placement.material = PlaceMaterial(choice, document, complaints);
    for (const ZAXMatDefinition& stockForm : choice.stockForms)
        placement.stockForms.append(PlaceStockForm(stockForm, *placement.material.feature, document, complaints));
    if (choice.stockForms.isEmpty())
        PrintNote(Text::tr("The catalogue marks no stock form of %1 as active. Name some with --packaging.")
                      .arg(Quoted(MaterialTitle(choice.material))));
    return placement;
}

/// Has \a feature check its values.
void Validate(ZAXFeatObject& feature, Complaints& complaints)
{
    if (feature.UpdateResult())
        return;
    const auto messages = feature.GetPropertyMessages();
    for (const ZAXFeatObject::PropertyMessage& message : messages) {
        if (message.status == ZAXFeatObject::Error)
            complaints.Add(feature, message.property, message.text);
    }
}

QString HowText(bool isNew)
{
    return isNew ? Text::tr("created") : Text::tr("found");
}

void PrintPlacement(const Placement& placement, Output& output)
{
    Table table(
        {{Text::tr("Feature")}, {Text::tr("Name")}, {Text::tr("In the document")}, {Text::tr("Catalogue key")}});
    const ZAXMatMaterial& material = *placement.material.feature;
    table.AddRow({Text::tr("Material"), material.GetLabel(), HowText(placement.material.isNew),
                  QString::fromUtf8(material.GetRemoteKey())});
    for (const auto& [stockForm, isNew] : placement.stockForms)
        table.AddRow({Text::tr("Stock form"), stockForm->GetLabel(), HowText(isNew),
                      QString::fromUtf8(stockForm->GetRemoteKey())});
    output.Print(table.ToText());
}

void PrintProperties(const ZAXMatMaterial& material, Output& output)
{
    Table table({{Text::tr("Property of the material")}, {Text::tr("Value")}});
    const QMetaObject& type = ZAXMatMaterial::staticMetaObject;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        if (property.isWritable())
            table.AddRow({PropertyLabel(&type, property.name()), ValueText(property, property.read(&material))});
    }
    output.Print(table.ToText());
}

} // namespace

ExitCode RunUse(const UseOptions& options, Output& output)
{
    const ClassDefaults defaults;
    const Choice choice = Choose(options);

    ZAXHostDocument document;
    const bool isOpened = OpenDocument(document, options.document);
    Complaints complaints;
    const Placement placement = Place(choice, document, complaints);
    ZAXMatMaterial* const material = placement.material.feature;
    Validate(*material, complaints);
    for (ZAXFeatObject* const feature : material->GetAllChildren())
        Validate(*feature, complaints);
    complaints.Raise(options.document);

    ZAXHostDocument reopened;
    if (placement.HasNew())
        SaveDocument(document, options.document, reopened);

    const QString path = QuotedPath(options.document);
    output.Print(isOpened ? Text::tr("Document %1").arg(path) : Text::tr("Document %1, new").arg(path));
    output.Print(QString());
    PrintPlacement(placement, output);
    output.Print(QString());
    PrintProperties(*material, output);
    output.Print(QString());
    output.Print(DocumentTree(*(placement.HasNew() ? reopened : document).GetContainer()));
    output.Print(QString());
    if (placement.HasNew())
        output.Print(Text::tr("Document %1 saved; reopened, it is identical.").arg(path));
    else
        output.Print(Text::tr("Document %1 holds all this already; nothing was written.").arg(path));
    return ExitCode::Done;
}

void AddUseCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = program.add_subcommand(
        "use", Utf8(Text::tr("Takes a material of a catalogue, with stock forms, into a document.")));
    const auto options = std::make_shared<UseOptions>();
    AddText(*command, QLatin1String("MATERIAL"), QString(), Text::tr("The name, key or type of the material."),
            options->material)
        ->required();
    AddText(*command, QLatin1String("--document"), Text::tr("FILE"),
            Text::tr("The document; a file that does not exist is made."), options->document)
        ->required();
    AddText(*command, QLatin1String("--thickness"), Text::tr("MM"),
            Text::tr("The thickness, where several materials have the name or type: 2, \"2 mm\", \"0.5 in\"."),
            options->thickness);
    AddTexts(
        *command, QLatin1String("--packaging"), Text::tr("NAME"),
        Text::tr("The names or keys of the stock forms to take; write MATERIAL before them. Default: the one that the "
                 "catalogue marks active."),
        options->stockForms);
    AddCatalogueOptions(*command, options->catalogue);
    command->footer(Utf8(Text::tr("What the document has already is found, not made again.\n\n"
                                  "Example:\n"
                                  "  zaxmat use --document job.zaxdoc S235JR --thickness 2 "
                                  "--packaging \"Sheet 1250 x 2500\"")));
    command->callback([options, &chosen] { chosen = [options](Output& output) { return RunUse(*options, output); }; });
}

} // namespace zaxmat
