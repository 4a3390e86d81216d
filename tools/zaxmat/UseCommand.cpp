#include "UseCommand.h"

#include "Complaints.h"
#include "DocumentFile.h"
#include "DocumentObjects.h"
#include "DocumentTree.h"
#include "FileLock.h"
#include "Output.h"
#include "Placement.h"
#include "Properties.h"
#include "Records.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatContainer.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"

#include <QJsonObject>

#include <memory>

namespace zaxmat {

namespace {

/// Adds a note for each value that the user expects from \a record and that is the default of the new \a feature.
void NoteDefaults(const ZAXMatDefinition& record, const ZAXFeatObject& feature, Output& output)
{
    const QMetaObject* const type = feature.metaObject();
    QList<QByteArray> names = QByteArray(type->classInfo(type->indexOfClassInfo("inputProps")).value()).split(' ');
    // That one was chosen on the command line.
    names.removeAll(ZAXMatMaterial::Property_thickness);
    for (const QByteArray& name : std::as_const(names)) {
        const QMetaProperty property = FindProperty(type, name);
        const QString value =
            property.isWritable() ? ValueText(property, property.read(&feature), output.GetUnit()) : QString();
        if (!value.isEmpty() && IsMissing(record.GetValue(name)))
            output.AddNote(Text::tr("%1: %2: the catalogue gives none, %3 is the default.")
                               .arg(Quoted(feature.GetLabel()), PropertyLabel(type, name), Quoted(value)));
    }
}

/// Adds what the user might not expect of \a placement.
void AddNotes(const MaterialChoice& choice, const Placement& placement, Output& output)
{
    if (placement.material.isNew)
        NoteDefaults(choice.material, *placement.material.feature, output);
    for (qsizetype i = 0; i < placement.stockForms.size(); ++i) {
        if (placement.stockForms[i].isNew)
            NoteDefaults(choice.stockForms[i], *placement.stockForms[i].feature, output);
    }
    if (choice.stockForms.isEmpty() && choice.hasStockForms)
        output.AddNote(Text::tr("The catalogue marks no stock form of %1 as active. Name some with --packaging.")
                           .arg(Quoted(MaterialTitle(choice.material, output.GetUnit()))));
}

Cell HowCell(bool isNew)
{
    return isNew ? Cell(Text::tr("created"), QLatin1String("created"), Emphasis::Added)
                 : Cell(Text::tr("found"), QLatin1String("found"));
}

template <typename Feature>
void AddRow(const QString& kind, const Placed<Feature>& placed, Table& table)
{
    const Feature& feature = *placed.feature;
    table.AddRow({kind,
                  {QString(), static_cast<qint64>(feature.GetId())},
                  {QString(), QString::fromLatin1(feature.metaObject()->className())},
                  {QString(), ObjectPath(feature)},
                  feature.GetLabel(),
                  HowCell(placed.isNew),
                  QString::fromLatin1(feature.GetRemoteKey())});
}

Table PlacementTable(const Placement& placement)
{
    constexpr auto left = Table::Alignment::Left;
    Table table({{Text::tr("Feature")},
                 {QString(), left, QLatin1String("id")},
                 {QString(), left, QLatin1String("class")},
                 {QString(), left, QLatin1String("path")},
                 {Text::tr("Name"), left, QLatin1String("label")},
                 {Text::tr("In the document"), left, QLatin1String("outcome")},
                 {Text::tr("Catalogue key"), left, QLatin1String("key")}});
    AddRow(Text::tr("Material"), placement.material, table);
    for (const auto& stockForm : placement.stockForms)
        AddRow(Text::tr("Stock form"), stockForm, table);
    return table;
}

QString PropertyTable(const ZAXMatMaterial& material, const Output& output)
{
    Table table({{Text::tr("Property of the material")}, {Text::tr("Value")}});
    const QMetaObject& type = ZAXMatMaterial::staticMetaObject;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        if (property.isWritable())
            table.AddRow({PropertyLabel(&type, property.name()),
                          ValueText(property, property.read(&material), output.GetUnit())});
    }
    return table.ToText(output.IsColoured());
}

/// Prints \a text below an empty line.
void PrintBlock(const QString& text, Output& output)
{
    output.Print(QString());
    output.Print(text);
}

/// Prints what was done to the \a document, new unless it \a isOpened.
void PrintDone(const Placement& placement, const ZAXHostDocument& document, const UseOptions& options, bool isOpened,
               Output& output)
{
    const QString path = QuotedPath(options.document);
    const Table table = PlacementTable(placement);
    if (output.GetFormat() == Format::Json) {
        output.PrintJson(QJsonObject{{QLatin1String("document"), options.document},
                                     {QLatin1String("isNew"), !isOpened},
                                     {QLatin1String("isSaved"), placement.HasNew()},
                                     {QLatin1String("objects"), table.ToJson()}});
        return;
    }
    output.Print(isOpened ? Text::tr("Document %1").arg(path) : Text::tr("Document %1, new").arg(path));
    output.Print(QString());
    output.Print(table);
    PrintBlock(PropertyTable(*placement.material.feature, output), output);
    PrintBlock(DocumentTree(*document.GetContainer(), output.GetUnit()), output);
    PrintBlock(placement.HasNew() ? Text::tr("Document %1 saved; reopened, it is identical.").arg(path)
                                  : Text::tr("Document %1 holds all this already; nothing was written.").arg(path),
               output);
}

} // namespace

ExitCode RunUse(const UseOptions& options, Output& output)
{
    const ClassDefaults defaults;
    const MaterialChoice choice = ChooseMaterial(Catalogue(options.catalogue), options.request, output.GetUnit());

    const auto creation = LockCreation(options.document, output);
    ZAXHostDocument document;
    const bool isOpened = OpenDocumentForChange(document, options.document, ZAXHostDocument::RefuseDamage, output);
    Complaints complaints;
    const Placement placement = Place(choice, document, complaints);
    complaints.AddInvalidValues(*placement.material.feature);
    complaints.Raise(options.document);

    ZAXHostDocument reopened;
    if (placement.HasNew())
        SaveDocument(document, options.document, reopened);

    AddNotes(choice, placement, output);
    const QList<ZAXHostProblem> problems = document.GetProblems();
    for (const ZAXHostProblem& problem : problems)
        output.AddNote(problem.message);
    PrintDone(placement, placement.HasNew() ? reopened : document, options, isOpened, output);
    return ExitCode::Done;
}

void AddUseCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(
        program, QLatin1String("use"), Text::tr("Takes a material of a catalogue, with stock forms, into a document."));
    const auto options = std::make_shared<UseOptions>();
    AddText(*command, QLatin1String("MATERIAL"), QString(), Text::tr("The name, key or type of the material."),
            options->request.material)
        .Required();
    AddText(*command, QLatin1String("--document"), Text::tr("FILE"),
            Text::tr("The document; a file that does not exist is made."), options->document)
        .Required();
    AddText(*command, QLatin1String("--thickness"), Text::tr("MM"),
            Text::tr("The thickness, where several materials have the name or type: 2, \"2 mm\", \"0.5 in\"."),
            options->request.thickness);
    AddTexts(
        *command, QLatin1String("--packaging"), Text::tr("NAME"),
        Text::tr("The names or keys of the stock forms to take; write MATERIAL before them. Default: the one that the "
                 "catalogue marks active."),
        options->request.stockForms);
    AddCatalogueOptions(*command, options->catalogue);
    SetFooter(*command, Text::tr("What the document has already is found, not made again."));
    AddExample(*command, QLatin1String("zaxmat use --document job.zaxdoc S235JR --thickness 2 "
                                       "--packaging \"Sheet 1250 x 2500\" --catalogue examples/catalogue"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunUse(*options, output); }; });
}

} // namespace zaxmat
