#include "DocumentValidateCommand.h"

#include "DocumentObjects.h"
#include "Properties.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatObject.h"

#include <memory>

namespace zaxmat {

namespace {

/// What a message is, for people and for programs.
Cell StatusCell(ZAXFeatObject::MessageStatus status)
{
    switch (status) {
    case ZAXFeatObject::Error:
        return {Text::tr("error"), QLatin1String("error"), Emphasis::Error};
    case ZAXFeatObject::Warning:
        return {Text::tr("warning"), QLatin1String("warning"), Emphasis::Changed};
    case ZAXFeatObject::Information:
    case ZAXFeatObject::NoMessage:
        break;
    }
    return {Text::tr("information"), QLatin1String("information")};
}

/// Has \a object check its values, and adds a row for each message. False for an invalid object.
bool Validate(ZAXFeatObject& object, Table& table)
{
    const bool isValid = object.UpdateResult();
    QList<ZAXFeatObject::PropertyMessage> messages = object.GetPropertyMessages();
    const auto isError = [](const auto& message) { return message.status == ZAXFeatObject::Error; };
    if (!isValid && std::ranges::none_of(messages, isError))
        messages.append({QByteArray(), ZAXFeatObject::Error, Text::tr("The object is invalid.")});
    for (const ZAXFeatObject::PropertyMessage& message : std::as_const(messages)) {
        const Cell label(PropertyLabel(object.metaObject(), message.property), QString::fromLatin1(message.property));
        table.AddRow({{ObjectAddress(object), static_cast<qint64>(object.GetId())},
                      ObjectPath(object),
                      label,
                      StatusCell(message.status),
                      message.text});
    }
    return isValid;
}

} // namespace

ExitCode RunDocumentValidate(const DocumentValidateOptions& options, Output& output)
{
    const OpenedDocument document(options.document, OpenedDocument::Purpose::Read, output);
    document.Report(output);
    constexpr auto left = Table::Alignment::Left;
    Table table({{Text::tr("Number"), Table::Alignment::Right, QLatin1String("id")},
                 {Text::tr("Object"), left, QLatin1String("path")},
                 {Text::tr("Property"), left, QLatin1String("property")},
                 {Text::tr("Status"), left, QLatin1String("status")},
                 {Text::tr("Message"), left, QLatin1String("message")}});
    const QList<ZAXFeatObject*> objects = AllObjects(document.Get());
    const auto invalid =
        std::ranges::count_if(objects, [&](ZAXFeatObject* object) { return !Validate(*object, table); });
    if (!table.IsEmpty() || output.GetFormat() != Format::Table) {
        output.Print(table);
        output.Print(QString());
    }
    output.Print(
        Text::tr("Document %1, objects: %2, invalid: %3")
            .arg(QuotedPath(document.Get().GetPath()), QString::number(objects.size()), QString::number(invalid)));
    if (document.GetExitCode() != ExitCode::Done)
        return document.GetExitCode();
    return invalid == 0 ? ExitCode::Done : ExitCode::InvalidValues;
}

void AddDocumentValidateCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("validate"),
                       Text::tr("Checks the values of all objects of a document. The exit code is 1 when one is "
                                "invalid."));
    const auto options = std::make_shared<DocumentValidateOptions>();
    AddDocumentArgument(*command, options->document);
    AddExample(*command, QLatin1String("zaxmat document validate job.zaxdoc"));
    WhenChosen(*command, [options, &chosen] {
        chosen = [options](Output& output) { return RunDocumentValidate(*options, output); };
    });
}

} // namespace zaxmat
