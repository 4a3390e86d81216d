#include "DocumentRemoveCommand.h"

#include "DocumentObjects.h"
#include "Failure.h"
#include "ObjectJson.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatObject.h"
#include "ZAXHostTransaction.h"

#include <QStringList>

#include <memory>

namespace zaxmat {

namespace {

QString PathLines(const QList<ZAXFeatObject*>& objects)
{
    QStringList lines;
    for (const ZAXFeatObject* const object : objects)
        lines.append(QLatin1String("  ") + Printable(ObjectAddress(*object) + u' ' + ObjectPath(*object)));
    return lines.join(u'\n');
}

/// \throws Failure (WrongUsage) unless \a object may be removed, with what is below it only if that \a isConfirmed.
void RequireRemovable(const ZAXFeatObject& object, bool isConfirmed)
{
    if (!object.IsUserDeletable() && object.GetAllDependents().isEmpty())
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 cannot be removed: every document keeps it.").arg(Quoted(ObjectPath(object))));
    if (!object.IsUserDeletable()) {
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 cannot be removed. These objects need it:\n%2")
                                                .arg(Quoted(ObjectPath(object)), PathLines(object.GetAllDependents())));
    }
    if (!isConfirmed && !object.GetChildren().isEmpty()) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("With %1 these objects would go. Say --yes to remove them too:\n%2")
                          .arg(Quoted(ObjectPath(object)), PathLines(object.GetAllChildren())));
    }
}

void AddRows(const ZAXFeatObject& object, Table& table)
{
    const QList<ZAXFeatObject*> below = object.GetAllChildren();
    for (const ZAXFeatObject* const gone :
         QList<const ZAXFeatObject*>{&object} + QList<const ZAXFeatObject*>(below.begin(), below.end())) {
        table.AddRow({{ObjectAddress(*gone), static_cast<qint64>(gone->GetId())},
                      {QString(), ClassName(*gone)},
                      {ObjectPath(*gone), Emphasis::Removed}});
    }
}

} // namespace

ExitCode RunDocumentRemove(const DocumentRemoveOptions& options, Output& output)
{
    OpenedDocument document(options.document, OpenedDocument::Purpose::Change, output);
    document.Report(output);
    QList<ZAXFeatObject*> objects;
    for (const QString& name : options.objects)
        objects.append(FindObject(document.Get(), name));
    Table table({{Text::tr("Number"), Table::Alignment::Right, QLatin1String("id")},
                 {QString(), Table::Alignment::Left, QLatin1String("class")},
                 {Text::tr("Removed"), Table::Alignment::Left, QLatin1String("path")}});
    ZAXHostTransaction transaction(document.Get().GetUndo(), Text::tr("Remove"));
    for (ZAXFeatObject* const object : std::as_const(objects)) {
        // One that went with another of them is not in the document any more.
        if (!AllObjects(document.Get()).contains(object))
            continue;
        RequireRemovable(*object, options.isConfirmed);
        AddRows(*object, table);
        object->Remove();
    }
    Require(transaction.Commit());
    output.Print(table);
    output.Print(QString());
    document.Save(output);
    return document.GetExitCode();
}

void AddDocumentRemoveCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("remove"), Text::tr("Removes objects of a document."));
    const auto options = std::make_shared<DocumentRemoveOptions>();
    AddChangedDocumentArgument(*command, options->document);
    AddTexts(*command, QLatin1String("OBJECT"), QString(),
             Text::tr("The objects; \"zaxmat document --help\" says how."), options->objects)
        .Required();
    AddFlag(*command, QLatin1String("--yes"), Text::tr("Removes what is below the objects too."), options->isConfirmed);
    AddExample(*command, QLatin1String("zaxmat document remove job.zaxdoc \"Offcut - 3 mm/Sheet 1250 x 2500\""));
    AddExample(*command, QLatin1String("zaxmat document remove job.zaxdoc \"Offcut - 3 mm\" --yes"));
    WhenChosen(*command, [options, &chosen] {
        chosen = [options](Output& output) { return RunDocumentRemove(*options, output); };
    });
}

} // namespace zaxmat
