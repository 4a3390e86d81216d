#include "UseCommand.h"

#include "Complaints.h"
#include "DocumentFile.h"
#include "DocumentTree.h"
#include "Output.h"
#include "Placement.h"
#include "Properties.h"
#include "Records.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatContainer.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"

#include <CLI/CLI.hpp>

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
        const QString value = property.isWritable() ? ValueText(property, property.read(&feature)) : QString();
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
    if (choice.stockForms.isEmpty())
        output.AddNote(Text::tr("The catalogue marks no stock form of %1 as active. Name some with --packaging.")
                           .arg(Quoted(MaterialTitle(choice.material))));
}

QString HowText(bool isNew)
{
    return isNew ? Text::tr("created") : Text::tr("found");
}

QString PlacementTable(const Placement& placement)
{
    Table table(
        {{Text::tr("Feature")}, {Text::tr("Name")}, {Text::tr("In the document")}, {Text::tr("Catalogue key")}});
    const ZAXMatMaterial& material = *placement.material.feature;
    table.AddRow({Text::tr("Material"), material.GetLabel(), HowText(placement.material.isNew),
                  QString::fromUtf8(material.GetRemoteKey())});
    for (const auto& [stockForm, isNew] : placement.stockForms)
        table.AddRow({Text::tr("Stock form"), stockForm->GetLabel(), HowText(isNew),
                      QString::fromUtf8(stockForm->GetRemoteKey())});
    return table.ToText();
}

QString PropertyTable(const ZAXMatMaterial& material)
{
    Table table({{Text::tr("Property of the material")}, {Text::tr("Value")}});
    const QMetaObject& type = ZAXMatMaterial::staticMetaObject;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        if (property.isWritable())
            table.AddRow({PropertyLabel(&type, property.name()), ValueText(property, property.read(&material))});
    }
    return table.ToText();
}

/// Prints \a text below an empty line.
void PrintBlock(const QString& text, Output& output)
{
    output.Print(QString());
    output.Print(text);
}

} // namespace

ExitCode RunUse(const UseOptions& options, Output& output)
{
    const ClassDefaults defaults;
    const MaterialChoice choice = ChooseMaterial(Catalogue(options.catalogue), options.request);

    ZAXHostDocument document;
    const bool isOpened = OpenDocument(document, options.document);
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
    const QString path = QuotedPath(options.document);
    output.Print(isOpened ? Text::tr("Document %1").arg(path) : Text::tr("Document %1, new").arg(path));
    PrintBlock(PlacementTable(placement), output);
    PrintBlock(PropertyTable(*placement.material.feature), output);
    PrintBlock(DocumentTree(*(placement.HasNew() ? reopened : document).GetContainer(), output.GetUnit()), output);
    PrintBlock(placement.HasNew() ? Text::tr("Document %1 saved; reopened, it is identical.").arg(path)
                                  : Text::tr("Document %1 holds all this already; nothing was written.").arg(path),
               output);
    return ExitCode::Done;
}

void AddUseCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = program.add_subcommand(
        "use", Utf8(Text::tr("Takes a material of a catalogue, with stock forms, into a document.")));
    const auto options = std::make_shared<UseOptions>();
    AddText(*command, QLatin1String("MATERIAL"), QString(), Text::tr("The name, key or type of the material."),
            options->request.material)
        ->required();
    AddText(*command, QLatin1String("--document"), Text::tr("FILE"),
            Text::tr("The document; a file that does not exist is made."), options->document)
        ->required();
    AddText(*command, QLatin1String("--thickness"), Text::tr("MM"),
            Text::tr("The thickness, where several materials have the name or type: 2, \"2 mm\", \"0.5 in\"."),
            options->request.thickness);
    AddTexts(
        *command, QLatin1String("--packaging"), Text::tr("NAME"),
        Text::tr("The names or keys of the stock forms to take; write MATERIAL before them. Default: the one that the "
                 "catalogue marks active."),
        options->request.stockForms);
    AddCatalogueOptions(*command, options->catalogue);
    command->footer(Utf8(Text::tr("What the document has already is found, not made again.")));
    AddExample(*command, QLatin1String("zaxmat use --document job.zaxdoc S235JR --thickness 2 "
                                       "--packaging \"Sheet 1250 x 2500\" --catalogue examples/catalogue"));
    command->callback([options, &chosen] { chosen = [options](Output& output) { return RunUse(*options, output); }; });
}

} // namespace zaxmat
