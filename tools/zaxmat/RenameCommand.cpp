#include "RenameCommand.h"

#include "CatalogueEditor.h"
#include "EditReport.h"
#include "Text.h"

#include <memory>

namespace zaxmat {

ExitCode RunRename(const RenameOptions& options, Output& output)
{
    CatalogueEditor editor(options.catalogue, output);
    ZAXMatDefinition record = ChooseRecord(editor.GetCatalogue(), options.request, output.GetUnit());
    record.SetName(options.name);
    editor.SetRecord(record);
    PrintEdits(editor.Commit(), editor.GetCatalogue(), output);
    return ExitCode::Done;
}

void AddRenameCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("rename"), Text::tr("Gives a material or a stock form another name."));
    const auto options = std::make_shared<RenameOptions>();
    AddRecordArgument(*command, options->request);
    AddText(*command, QLatin1String("NEW-NAME"), QString(), Text::tr("The new name. The key stays."), options->name)
        .Required();
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat rename CuSn8 \"Tin bronze CuSn8\""));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunRename(*options, output); }; });
}

} // namespace zaxmat
