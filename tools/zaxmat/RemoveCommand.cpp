#include "RemoveCommand.h"

#include "CatalogueEditor.h"
#include "EditReport.h"
#include "Failure.h"
#include "Records.h"
#include "Text.h"

#include <memory>

namespace zaxmat {

ExitCode RunRemove(const RemoveOptions& options, Output& output)
{
    CatalogueEditor editor(options.catalogue, output);
    const ZAXMatDefinition record = ChooseRecord(editor.GetCatalogue(), options.request, output.GetUnit());
    const auto stockForms = record.GetType() == ZAXMatDefinition::Material
                                ? editor.GetCatalogue().GetStockForms(record.GetKey())
                                : QList<ZAXMatDefinition>();
    if (!stockForms.isEmpty() && !options.isConfirmed) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("With %1 these stock forms would go. Say --yes to remove them too:\n%2")
                          .arg(Quoted(MaterialTitle(record, output.GetUnit())), StockFormLines(stockForms)));
    }
    editor.RemoveRecord(record.GetType(), record.GetKey());
    for (const ZAXMatDefinition& stockForm : stockForms)
        editor.RemoveRecord(stockForm.GetType(), stockForm.GetKey());
    PrintEdits(editor.Commit(), editor.GetCatalogue(), output);
    return ExitCode::Done;
}

void AddRemoveCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("remove"),
                                             Text::tr("Removes a material with its stock forms, or a stock form."));
    const auto options = std::make_shared<RemoveOptions>();
    AddRecordArgument(*command, options->request);
    AddFlag(*command, QLatin1String("--yes"), Text::tr("Removes a material that has stock forms, too."),
            options->isConfirmed);
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat remove CuSn6 --yes"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunRemove(*options, output); }; });
}

} // namespace zaxmat
