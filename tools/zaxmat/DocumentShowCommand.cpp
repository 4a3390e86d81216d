#include "DocumentShowCommand.h"

#include "DocumentObjects.h"
#include "ObjectJson.h"
#include "ObjectValues.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatObject.h"
#include "ZAXHostPlaceholder.h"

#include <memory>

namespace zaxmat {

namespace {

/// Where \a object stands, and for one that is not available why; then its values.
QList<ObjectValue> FactsOf(const ZAXFeatObject& object, LengthUnit unit)
{
    QList<ObjectValue> facts{
        {"id", Text::tr("Number"), ObjectAddress(object), static_cast<qint64>(object.GetId())},
        {"class", Text::tr("Class"), ClassName(object), ClassName(object)},
        {"path", Text::tr("Path"), ObjectPath(object), ObjectPath(object)},
    };
    if (const auto* const placeholder = qobject_cast<const ZAXHostPlaceholder*>(&object))
        return facts << ObjectValue{"unavailable", Text::tr("Not available"), placeholder->GetReason(),
                                    placeholder->GetReason()};
    return facts << ValuesOf(object, unit);
}

} // namespace

ExitCode RunDocumentShow(const DocumentShowOptions& options, Output& output)
{
    const OpenedDocument document(options.document, OpenedDocument::Purpose::Read, output);
    document.Report(output);
    const ZAXFeatObject* const object = FindObject(document.Get(), options.object);
    if (output.GetFormat() == Format::Json) {
        output.PrintJson(ObjectJson(*object));
        return document.GetExitCode();
    }
    Table table({{Text::tr("Property")},
                 {QString(), Table::Alignment::Left, QLatin1String("property")},
                 {Text::tr("Value"), Table::Alignment::Left, QLatin1String("value")}});
    const QList<ObjectValue> facts = FactsOf(*object, output.GetUnit());
    for (const ObjectValue& fact : facts)
        table.AddRow({fact.label, QString::fromLatin1(fact.name), {fact.text, fact.value}});
    output.Print(table);
    return document.GetExitCode();
}

void AddDocumentShowCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("show"), Text::tr("Shows what an object of a document holds."));
    const auto options = std::make_shared<DocumentShowOptions>();
    AddDocumentArgument(*command, options->document);
    AddObjectArgument(*command, options->object);
    AddExample(*command, QLatin1String("zaxmat document show job.zaxdoc S235JR"));
    AddExample(*command, QLatin1String("zaxmat document show job.zaxdoc @1 --format json"));
    WhenChosen(*command, [options, &chosen] {
        chosen = [options](Output& output) { return RunDocumentShow(*options, output); };
    });
}

} // namespace zaxmat
