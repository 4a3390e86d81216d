#include "CopyCommand.h"

#include "CatalogueEditor.h"
#include "EditReport.h"
#include "Schema.h"
#include "Text.h"
#include "Values.h"

#include <memory>

namespace zaxmat {

namespace {

/// \a original under a new key.
ZAXMatDefinition CopyOf(const ZAXMatDefinition& original, const Schema& schema)
{
    ZAXMatDefinition copy = original;
    copy.SetKey(schema.NewRecord(original.GetType(), QString()).GetKey());
    return copy;
}

} // namespace

ExitCode RunCopy(const CopyOptions& options, Output& output)
{
    CatalogueEditor editor(options.catalogue, output);
    const Schema schema;
    const ZAXMatDefinition original = ChooseRecord(editor.GetCatalogue(), options.request, output.GetUnit());
    ZAXMatDefinition copy = CopyOf(original, schema);
    copy.SetName(options.name);
    ApplySettings(options.settings, copy);
    editor.SetRecord(copy);
    if (original.GetType() == ZAXMatDefinition::Material) {
        const auto stockForms = editor.GetCatalogue().GetStockForms(original.GetKey());
        for (const ZAXMatDefinition& stockForm : stockForms) {
            ZAXMatDefinition copied = CopyOf(stockForm, schema);
            copied.SetMaterialKey(copy.GetKey());
            editor.SetRecord(copied);
        }
    }
    PrintEdits(editor.Commit(), editor.GetCatalogue(), output);
    return ExitCode::Done;
}

void AddCopyCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("copy"),
                                             Text::tr("Copies a material with its stock forms, or a stock form."));
    const auto options = std::make_shared<CopyOptions>();
    AddRecordArgument(*command, options->request);
    AddText(*command, QLatin1String("NEW-NAME"), QString(),
            Text::tr("The name of the copy, which gets a key of its own."), options->name)
        .Required();
    AddTexts(*command, QLatin1String("PROPERTY=VALUE"), QString(),
             Text::tr("What the copy has other than the original: thickness=3."), options->settings);
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat copy CuSn8 \"Bronze CuSn6\" materialType=CuSn6"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunCopy(*options, output); }; });
}

} // namespace zaxmat
