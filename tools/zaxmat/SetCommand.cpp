#include "SetCommand.h"

#include "CatalogueEditor.h"
#include "EditReport.h"
#include "Text.h"
#include "Values.h"

#include <memory>

namespace zaxmat {

ExitCode RunSet(const SetOptions& options, Output& output)
{
    CatalogueEditor editor(options.catalogue, output);
    ZAXMatDefinition record = ChooseRecord(editor.GetCatalogue(), options.request, output.GetUnit());
    ApplySettings(options.settings, record);
    editor.SetRecord(record);
    PrintEdits(editor.Commit(), editor.GetCatalogue(), output);
    return ExitCode::Done;
}

void AddSetCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("set"),
                                             Text::tr("Changes values of a material or a stock form of a catalogue."));
    const auto options = std::make_shared<SetOptions>();
    AddRecordArgument(*command, options->request);
    AddTexts(
        *command, QLatin1String("PROPERTY=VALUE"), QString(),
        Text::tr("What the record gets: \"thickness=0.5 in\", \"Extension.property=value\"; \"comment=\" takes the "
                 "comment away. All of them or none."),
        options->settings)
        .Required();
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat set CuSn8 density=8.83 \"comment=CW453K\""));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunSet(*options, output); }; });
}

} // namespace zaxmat
