#include "DocumentTreeCommand.h"

#include "DocumentObjects.h"
#include "DocumentTree.h"
#include "ObjectJson.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatContainer.h"
#include "ZAXHostPlaceholder.h"

#include <QJsonArray>

#include <memory>

namespace zaxmat {

namespace {

void AddRows(const QList<ZAXFeatObject*>& objects, int depth, LengthUnit unit, Table& table)
{
    for (const ZAXFeatObject* const object : objects) {
        const Emphasis emphasis = qobject_cast<const ZAXHostPlaceholder*>(object) ? Emphasis::Changed : Emphasis::None;
        const ZAXFeatObject* const parent = object->GetParent();
        table.AddRow(
            {{ObjectAddress(*object), static_cast<qint64>(object->GetId())},
             {QString(), parent ? QJsonValue(static_cast<qint64>(parent->GetId())) : QJsonValue()},
             {QString(), ClassName(*object)},
             {QString(qsizetype(2) * depth, u' ') + ObjectLine(*object, unit), ObjectPath(*object), emphasis}});
        AddRows(object->GetChildren(), depth + 1, unit, table);
    }
}

void PrintTable(const ZAXHostDocument& document, Output& output)
{
    Table table({{Text::tr("Number"), Table::Alignment::Right, QLatin1String("id")},
                 {QString(), Table::Alignment::Left, QLatin1String("parent")},
                 {QString(), Table::Alignment::Left, QLatin1String("class")},
                 {Text::tr("Object"), Table::Alignment::Left, QLatin1String("path")}});
    AddRows(document.GetContainer()->GetRoots(), 0, output.GetUnit(), table);
    output.Print(Text::tr("Document %1, objects: %2")
                     .arg(QuotedPath(document.GetPath()), QString::number(AllObjects(document).size())));
    output.Print(QString());
    output.Print(table);
}

void PrintObjects(const OpenedDocument& document, Output& output)
{
    QJsonArray objects;
    const QList<ZAXFeatObject*> roots = document.Get().GetContainer()->GetRoots();
    for (const ZAXFeatObject* const root : roots)
        objects.append(ObjectJson(*root));
    const QString readOnly = document.Get().GetReadOnlyReason();
    output.PrintJson(
        QJsonObject{{QLatin1String("document"), document.Get().GetPath()},
                    {QLatin1String("documentId"), document.Get().GetDocumentId().toString(QUuid::WithoutBraces)},
                    {QLatin1String("readOnly"), readOnly.isEmpty() ? QJsonValue() : QJsonValue(readOnly)},
                    {QLatin1String("problems"), document.GetProblems()},
                    {QLatin1String("objects"), objects}});
}

} // namespace

ExitCode RunDocumentTree(const DocumentTreeOptions& options, Output& output)
{
    const OpenedDocument document(options.document, OpenedDocument::Purpose::Read, output);
    document.Report(output);
    if (output.GetFormat() == Format::Json)
        PrintObjects(document, output);
    else
        PrintTable(document.Get(), output);
    return document.GetExitCode();
}

void AddDocumentTreeCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("tree"),
                                             Text::tr("Shows all objects of a document, with their numbers."));
    const auto options = std::make_shared<DocumentTreeOptions>();
    AddDocumentArgument(*command, options->document);
    AddExample(*command, QLatin1String("zaxmat document tree job.zaxdoc"));
    AddExample(*command, QLatin1String("zaxmat document tree job.zaxdoc --unit in"));
    WhenChosen(*command, [options, &chosen] {
        chosen = [options](Output& output) { return RunDocumentTree(*options, output); };
    });
}

} // namespace zaxmat
