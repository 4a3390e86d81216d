#include "DocumentDuplicateCommand.h"

#include "Complaints.h"
#include "DocumentObjects.h"
#include "DocumentTree.h"
#include "Failure.h"
#include "ObjectJson.h"
#include "ObjectSettings.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatObject.h"
#include "ZAXHostDuplicator.h"
#include "ZAXHostTransaction.h"

#include <memory>

namespace zaxmat {

namespace {

void AddRows(const ZAXFeatObject& object, int depth, LengthUnit unit, Table& table)
{
    table.AddRow(
        {{ObjectAddress(object), static_cast<qint64>(object.GetId())},
         {QString(), ClassName(object)},
         {QString(qsizetype(2) * depth, u' ') + ObjectLine(object, unit), ObjectPath(object), Emphasis::Added}});
    const QList<ZAXFeatObject*> children = object.GetChildren();
    for (const ZAXFeatObject* const child : children)
        AddRows(*child, depth + 1, unit, table);
}

} // namespace

ExitCode RunDocumentDuplicate(const DocumentDuplicateOptions& options, Output& output)
{
    const ClassDefaults defaults;
    OpenedDocument document(options.document, OpenedDocument::Purpose::Change, output);
    document.Report(output);
    ZAXFeatObject* const source = FindObject(document.Get(), options.object);
    if (!source->CanUserDuplicate())
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 cannot be duplicated.").arg(Quoted(ObjectPath(*source))));

    ZAXHostTransaction transaction(document.Get().GetUndo(), Text::tr("Duplicate"));
    Require(transaction.GetResult());
    ZAXFeatObject* const copy = ZAXHostDuplicator::Duplicate(source);
    SetObjectValues(*copy, options.settings);
    Complaints complaints;
    complaints.AddInvalidValues(*copy);
    complaints.Raise(options.document.file);
    Require(transaction.Commit());

    Table table({{Text::tr("Number"), Table::Alignment::Right, QLatin1String("id")},
                 {QString(), Table::Alignment::Left, QLatin1String("class")},
                 {Text::tr("Copy"), Table::Alignment::Left, QLatin1String("path")}});
    AddRows(*copy, 0, output.GetUnit(), table);
    output.Print(table);
    output.Print(QString());
    document.Save(output);
    return document.GetExitCode();
}

void AddDocumentDuplicateCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("duplicate"),
                                             Text::tr("Copies an object of a document, with all below it, behind it."));
    const auto options = std::make_shared<DocumentDuplicateOptions>();
    AddChangedDocumentArgument(*command, options->document);
    AddObjectArgument(*command, options->object);
    AddTexts(*command, QLatin1String("PROPERTY=VALUE"), QString(),
             Text::tr("What is to be different in the copy, as \"zaxmat document set\" takes it."), options->settings);
    SetFooter(*command, Text::tr("The copy of a material gets an ID of its own, and is no longer linked to the "
                                 "catalogue."));
    AddExample(*command, QLatin1String("zaxmat document duplicate job.zaxdoc S235JR thickness=3 label=Offcut"));
    WhenChosen(*command, [options, &chosen] {
        chosen = [options](Output& output) { return RunDocumentDuplicate(*options, output); };
    });
}

} // namespace zaxmat
