#include "AddCommand.h"

#include "CatalogueEditor.h"
#include "EditReport.h"
#include "RecordChoice.h"
#include "Schema.h"
#include "Text.h"
#include "Values.h"

#include <memory>

namespace zaxmat {

namespace {

ZAXMatDefinition NewRecord(const AddOptions& options, const Catalogue& catalogue, LengthUnit unit)
{
    const Schema schema;
    return options.material.isEmpty()
               ? schema.NewMaterial(options.name)
               : schema.NewStockForm(options.name, ChooseMaterialRecord(catalogue, options.material, unit).GetKey());
}

} // namespace

ExitCode RunAdd(const AddOptions& options, Output& output)
{
    CatalogueEditor editor(options.catalogue, output, CatalogueEditor::MissingFile::Create);
    ZAXMatDefinition record = NewRecord(options, editor.GetCatalogue(), output.GetUnit());
    ApplySettings(options.settings, record);
    editor.SetRecord(record);
    const CommitResult result = editor.Commit();
    if (editor.IsNew())
        output.AddNote(Text::tr("the catalogue %1 is new.").arg(QuotedPath(editor.GetCatalogue().GetFilePath())));
    PrintEdits(result, editor.GetCatalogue(), output);
    return ExitCode::Done;
}

void AddAddCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(
        program, QLatin1String("add"), Text::tr("Adds a material, or a stock form of a material, to a catalogue."));
    const auto options = std::make_shared<AddOptions>();
    AddText(*command, QLatin1String("NAME"), QString(), Text::tr("The name of the new record."), options->name)
        .Required();
    AddTexts(*command, QLatin1String("PROPERTY=VALUE"), QString(),
             Text::tr("What the record has: \"thickness=0.5 in\", \"Extension.property=value\"."), options->settings);
    AddText(*command, QLatin1String("--material"), Text::tr("MATERIAL"),
            Text::tr("The name, key or type of the material that the new record is a stock form of. Without it, a "
                     "material is added."),
            options->material);
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat add \"Bronze CuSn8\" materialType=CuSn8 thickness=2 category=Metal "
                                       "density=8.8"));
    AddExample(*command, QLatin1String("zaxmat add \"Sheet 600 x 1000\" --material CuSn8 length=1000 width=600 "
                                       "cost=210.5 isActive=yes"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunAdd(*options, output); }; });
}

} // namespace zaxmat
