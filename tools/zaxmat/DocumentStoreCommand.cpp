#include "DocumentStoreCommand.h"

#include "CatalogueEditor.h"
#include "Complaints.h"
#include "DocumentObjects.h"
#include "Failure.h"
#include "RecordChanges.h"
#include "RecordLoading.h"
#include "Records.h"
#include "Schema.h"
#include "Table.h"
#include "Text.h"
#include "Twins.h"

#include "ZAXHostPlaceholder.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"

#include <memory>
#include <optional>

namespace zaxmat {

namespace {

const ZAXMatMaterial& FindMaterial(const OpenedDocument& document, const QString& text)
{
    const ZAXFeatObject* const object = FindObject(document.Get(), text);
    const auto* const material = qobject_cast<const ZAXMatMaterial*>(object);
    if (!material)
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 is no material.").arg(Quoted(ObjectPath(*object))));
    return *material;
}

/// The one record that the user named.
ZAXMatDefinition NamedRecord(const Catalogue& catalogue, const QString& text, LengthUnit unit)
{
    const QList<ZAXMatDefinition> found = FindMaterials(catalogue, text);
    if (found.isEmpty())
        throw Failure(ExitCode::WrongUsage, UnknownMaterialText(catalogue, text, unit));
    if (found.size() > 1) {
        throw Failure(ExitCode::WrongUsage, Text::tr("Several materials are called %1. Choose one by its key:\n%2")
                                                .arg(Quoted(text), MaterialLines(found, unit)));
    }
    return found.constFirst();
}

bool HasThickness(const ZAXMatDefinition& record, double thickness)
{
    const auto own = ThicknessOf(record);
    return !own || IsSameThickness(*own, thickness);
}

/// \throws Failure (WrongUsage) when \a catalogue has a material that \a material might well be.
void RequireNew(const Catalogue& catalogue, const ZAXMatMaterial& material, LengthUnit unit)
{
    QList<ZAXMatDefinition> same = FindMaterials(catalogue, material.GetLabel());
    same.removeIf([&](const ZAXMatDefinition& record) {
        return record.GetName() != material.GetLabel() || !HasThickness(record, material.GetThickness());
    });
    if (!same.isEmpty()) {
        throw Failure(
            ExitCode::WrongUsage,
            Text::tr("%1 did not come from the catalogue %2, which has a material of that name and thickness. "
                     "Say --record KEY to change that one, or --new to add another:\n%3")
                .arg(Quoted(ObjectPath(material)), QuotedPath(catalogue.GetFilePath()), MaterialLines(same, unit)));
    }
}

/// The record that \a material is stored in; nothing for a new one.
std::optional<ZAXMatDefinition> RecordOf(const Catalogue& catalogue, const ZAXMatMaterial& material,
                                         const DocumentStoreOptions& options, LengthUnit unit)
{
    if (!options.record.isEmpty())
        return NamedRecord(catalogue, options.record, unit);
    if (options.isNew)
        return std::nullopt;
    const ZAXMatDefinition own = catalogue.GetMaterial(material.GetRemoteKey());
    if (own.IsValid() && material.GetProviderId() == Catalogue::GetProviderId() &&
        HasThickness(own, material.GetThickness()))
        return own;
    RequireNew(catalogue, material, unit);
    return std::nullopt;
}

/// The one of \a records that \a stockForm came from or, failing that, one of its name that is none of \a taken;
/// nothing for a new one.
std::optional<ZAXMatDefinition> RecordOf(const QList<ZAXMatDefinition>& records, const ZAXMatPackaging& stockForm,
                                         const QList<QByteArray>& taken)
{
    const auto own = std::ranges::find(records, stockForm.GetRemoteKey(), &ZAXMatDefinition::GetKey);
    if (own != records.end())
        return *own;
    const auto named = std::ranges::find_if(records, [&](const ZAXMatDefinition& record) {
        return record.GetName() == stockForm.GetLabel() && !taken.contains(record.GetKey());
    });
    return named != records.end() ? std::optional(*named) : std::nullopt;
}

/// A new record, without the properties that are there for the sake of the schema alone.
ZAXMatDefinition Bare(const ZAXMatDefinition& newRecord)
{
    ZAXMatDefinition record;
    record.SetKey(newRecord.GetKey());
    record.SetMaterialKey(newRecord.GetMaterialKey());
    record.SetType(newRecord.GetType());
    return record;
}

/// Writes features to records, and keeps what these were.
class Storing
{
public:
    explicit Storing(CatalogueEditor& editor) : m_editor(editor) {}

    const Catalogue& GetCatalogue() const { return m_editor.GetCatalogue(); }

    /// Stores \a feature in \a record or, if there is none, in \a newRecord. Returns the key of the record.
    QByteArray Store(const ZAXFeatObject& feature, const std::optional<ZAXMatDefinition>& record,
                     const ZAXMatDefinition& newRecord)
    {
        ZAXMatDefinition stored = record ? *record : Bare(newRecord);
        LoadRecord(stored, feature, !record);
        m_editor.SetRecord(stored);
        if (record)
            m_before.append(*record);
        m_after.append(stored);
        return stored.GetKey();
    }

    /// What is different in the records.
    QList<RecordChange> GetChanges() const { return RecordChanges(m_before, m_after); }

private:
    CatalogueEditor& m_editor;
    QList<ZAXMatDefinition> m_before;
    QList<ZAXMatDefinition> m_after;
};

void StoreStockForms(const ZAXMatMaterial& material, const QByteArray& materialKey, Storing& storing)
{
    const QList<ZAXMatDefinition> records = storing.GetCatalogue().GetStockForms(materialKey);
    const QList<ZAXMatPackaging*> stockForms = material.GetPackaging();
    QList<QByteArray> taken;
    std::ranges::transform(stockForms, std::back_inserter(taken), &ZAXMatPackaging::GetRemoteKey);
    for (const ZAXMatPackaging* const stockForm : stockForms) {
        taken.append(storing.Store(*stockForm, RecordOf(records, *stockForm, taken),
                                   Schema().NewStockForm(stockForm->GetLabel(), materialKey)));
    }
}

void NotePlaceholders(const ZAXFeatObject& object, Output& output)
{
    const QList<ZAXFeatObject*> below = object.GetAllChildren();
    for (const ZAXFeatObject* const each : below) {
        if (const auto* const placeholder = qobject_cast<const ZAXHostPlaceholder*>(each))
            output.AddNote(
                Text::tr("%1 is not stored: %2").arg(Quoted(ObjectPath(*placeholder)), placeholder->GetReason()));
    }
}

} // namespace

ExitCode RunDocumentStore(const DocumentStoreOptions& options, Output& output)
{
    const OpenedDocument document(options.document, OpenedDocument::Purpose::Rely, output);
    document.Report(output);
    const ZAXMatMaterial& material = FindMaterial(document, options.material);
    Complaints complaints;
    complaints.AddInvalidValues(*FindObject(document.Get(), options.material));
    complaints.AddBelowLimits(material);
    const auto stockForms = options.hasStockForms ? material.GetPackaging() : QList<ZAXMatPackaging*>();
    for (const ZAXMatPackaging* const stockForm : stockForms)
        complaints.AddBelowLimits(*stockForm);
    complaints.RaiseFor(Text::tr("%1 is not stored.").arg(Quoted(ObjectPath(material))));

    CatalogueEditor editor(options.catalogue, output, CatalogueEditor::MissingFile::Create);
    const Catalogue& catalogue = editor.GetCatalogue();
    Storing storing(editor);
    const QByteArray key = storing.Store(material, RecordOf(catalogue, material, options, output.GetUnit()),
                                         Schema().NewMaterial(material.GetLabel()));
    if (options.hasStockForms)
        StoreStockForms(material, key, storing);
    NotePlaceholders(material, output);
    const CommitResult result = editor.Commit();

    const QList<RecordChange> changes = storing.GetChanges();
    if (!changes.isEmpty() || output.GetFormat() != Format::Table) {
        output.Print(ChangesTable(changes, output.GetUnit()));
        output.Print(QString());
    }
    NoteTwins(catalogue, result.edits, output);
    const QString path = QuotedPath(catalogue.GetFilePath());
    output.Print(result.isWritten ? Text::tr("Catalogue %1: records added: %2, changed: %3")
                                        .arg(path, QString::number(result.added), QString::number(result.changed))
                                  : Text::tr("Catalogue %1 holds all this already; nothing was written.").arg(path));
    return document.GetExitCode();
}

void AddDocumentStoreCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("store"),
                       Text::tr("Writes a material of a document to a catalogue, as a new or a changed record."));
    const auto options = std::make_shared<DocumentStoreOptions>();
    AddChangedDocumentArgument(*command, options->document);
    AddText(*command, QLatin1String("MATERIAL"), QString(),
            Text::tr("The material; \"zaxmat document --help\" says how."), options->material)
        .Required();
    AddFlag(*command, QLatin1String("--stock-forms"), Text::tr("Stores its stock forms too."), options->hasStockForms);
    const DeclaredOption record = AddText(
        *command, QLatin1String("--record"), Text::tr("NAME|KEY"),
        Text::tr("The record to change. Default: the one that the material came from, if it still has that thickness."),
        options->record);
    AddFlag(*command, QLatin1String("--new"), Text::tr("Adds a record in any case."), options->isNew).Excludes(record);
    AddCatalogueOptions(*command, options->catalogue);
    SetFooter(*command, Text::tr("Lengths and densities are stored as plain numbers. Records that the catalogue has of "
                                 "other stock forms stay."));
    AddExample(*command, QLatin1String("zaxmat document store job.zaxdoc S235JR --stock-forms"));
    WhenChosen(*command, [options, &chosen] {
        chosen = [options](Output& output) { return RunDocumentStore(*options, output); };
    });
}

} // namespace zaxmat
