#include "DocumentSetCommand.h"

#include "Complaints.h"
#include "DocumentObjects.h"
#include "ObjectChanges.h"
#include "ObjectSettings.h"
#include "Table.h"
#include "Text.h"

#include "ZAXHostTransaction.h"

#include <memory>

namespace zaxmat {

ExitCode RunDocumentSet(const DocumentSetOptions& options, Output& output)
{
    const ClassDefaults defaults;
    OpenedDocument document(options.document, OpenedDocument::Purpose::Change, output);
    document.Report(output);
    ZAXFeatObject* const object = FindObject(document.Get(), options.object);
    const ObjectSnapshot before(*object, output.GetUnit());

    ZAXHostTransaction transaction(document.Get().GetUndo(), Text::tr("Set"));
    Require(transaction.GetResult());
    SetObjectValues(*object, options.settings);
    Complaints complaints;
    complaints.AddInvalidValues(*object);
    complaints.Raise(options.document.file);
    Require(transaction.Commit());

    const Table changes = before.CompareWith(*object);
    if (!changes.IsEmpty() || output.GetFormat() != Format::Table) {
        output.Print(changes);
        output.Print(QString());
    }
    document.Save(output);
    return document.GetExitCode();
}

void AddDocumentSetCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("set"), Text::tr("Changes values of an object of a document."));
    const auto options = std::make_shared<DocumentSetOptions>();
    AddChangedDocumentArgument(*command, options->document);
    AddObjectArgument(*command, options->object);
    AddTexts(
        *command, QLatin1String("PROPERTY=VALUE"), QString(),
        Text::tr("What the object gets: \"thickness=0.5 in\", \"label=Offcut\", or \"Class.property=value\" for an "
                 "extension. All of them or none."),
        options->settings)
        .Required();
    AddExample(*command, QLatin1String("zaxmat document set job.zaxdoc S235JR density=7.87 \"comment=As delivered\""));
    AddExample(*command,
               QLatin1String("zaxmat document set job.zaxdoc \"Sheet 1250 x 2500\" \"width=48 in\" isActive=yes"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunDocumentSet(*options, output); }; });
}

} // namespace zaxmat
