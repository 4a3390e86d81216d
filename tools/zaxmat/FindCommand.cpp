#include "FindCommand.h"

#include "Cells.h"
#include "Criterion.h"
#include "Failure.h"
#include "Properties.h"
#include "Records.h"
#include "Text.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace zaxmat {

namespace {

bool HasExtension(const CatalogueRecord& record, const QString& extension)
{
    return extension.isEmpty() || !record.GetValues(QLatin1String(extension.toLatin1())).isEmpty();
}

QList<CatalogueRecord> Matching(const Catalogue& catalogue, ZAXMatDefinition::Type type, const FindOptions& options,
                                const QList<Criterion>& criteria)
{
    QList<QByteArray> names;
    for (const Criterion& criterion : criteria)
        names.append(criterion.GetNeededName());
    names.removeAll(QByteArray());
    QList<CatalogueRecord> found;
    std::ranges::copy_if(
        catalogue.ReadRecordsWith(type, names), std::back_inserter(found), [&](const CatalogueRecord& record) {
            return HasExtension(record, options.extension) &&
                   std::ranges::all_of(criteria, [&](const Criterion& criterion) { return criterion.Matches(record); });
        });
    SortRecords(found);
    return found;
}

/// \throws Failure (WrongUsage) for a property that neither a class nor a record of the catalogue has.
void RequireKnown(const Criterion& criterion, const Catalogue& catalogue)
{
    const auto isKnown = [&](const CatalogueRecord& record) { return criterion.IsKnownTo(record); };
    const bool isDeclared = criterion.GetProperty(ZAXMatDefinition::Material).isValid() ||
                            criterion.GetProperty(ZAXMatDefinition::Packaging).isValid();
    if (!isDeclared && std::ranges::none_of(catalogue.ReadMaterials(), isKnown) &&
        std::ranges::none_of(catalogue.ReadStockForms(), isKnown)) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("No record of the catalogue %1 has a property %2, and no class declares one.")
                          .arg(QuotedPath(catalogue.GetFilePath()), Quoted(NameText(criterion.GetName()))));
    }
}

bool IsName(const Criterion& criterion)
{
    const PropertyName& name = criterion.GetName();
    return name.extension.isEmpty() && (name.property == "name" || name.property == "key");
}

/// The criteria whose values have columns of their own, each property once.
QList<Criterion> ShownCriteria(const QList<Criterion>& criteria)
{
    QList<Criterion> shown;
    for (const Criterion& criterion : criteria) {
        if (!IsName(criterion) && std::ranges::find(shown, criterion.GetName(), &Criterion::GetName) == shown.end())
            shown.append(criterion);
    }
    return shown;
}

Table FoundTable(const QList<CatalogueRecord>& records, const QList<Criterion>& criteria, LengthUnit unit)
{
    constexpr auto left = Table::Alignment::Left;
    const QList<Criterion> shown = ShownCriteria(criteria);
    QList<Table::Column> columns{{Text::tr("Record"), left, QLatin1String("type")},
                                 {Text::tr("Name"), left, QLatin1String("name")}};
    for (const Criterion& criterion : shown)
        columns.append({NameText(criterion.GetName()), left, NameText(criterion.GetName())});
    columns.append({Text::tr("Key"), left, QLatin1String("key")});
    Table table(columns);
    for (const CatalogueRecord& record : records) {
        QList<Cell> cells{TypeCell(record.GetType()), record.GetName()};
        for (const Criterion& criterion : shown)
            cells.append(ValueCell(criterion.GetProperty(record.GetType()), criterion.ValueOf(record), unit));
        cells.append(KeyCell(record.GetKey()));
        table.AddRow(cells);
    }
    return table;
}

} // namespace

ExitCode RunFind(const FindOptions& options, Output& output)
{
    if (options.criteria.isEmpty() && options.extension.isEmpty())
        throw Failure(ExitCode::WrongUsage, Text::tr("Say what to look for: thickness=2, \"name=*steel*\", or "
                                                     "--extension CLASS."));
    QList<Criterion> criteria;
    for (const QString& text : options.criteria)
        criteria.append(Criterion(text, options.extension.toLatin1()));
    const Catalogue catalogue(options.catalogue);
    const auto materials = Matching(catalogue, ZAXMatDefinition::Material, options, criteria);
    const auto stockForms = Matching(catalogue, ZAXMatDefinition::Packaging, options, criteria);
    if (materials.isEmpty() && stockForms.isEmpty()) {
        for (const Criterion& criterion : std::as_const(criteria))
            RequireKnown(criterion, catalogue);
    }
    output.Print(FoundTable(materials + stockForms, criteria, output.GetUnit()));
    output.Print(QString());
    output.Print(Text::tr("Found: materials: %1, stock forms: %2")
                     .arg(QString::number(materials.size()), QString::number(stockForms.size())));
    return ExitCode::Done;
}

void AddFindCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("find"), Text::tr("Finds materials and stock forms by their values."));
    const auto options = std::make_shared<FindOptions>();
    AddTexts(*command, QLatin1String("PROPERTY=VALUE"), QString(),
             Text::tr("What a record must have: \"thickness=2 mm\", a range as in thickness=1..3 or cost=..50, a text "
                      "with wildcards as in \"name=*steel*\", \"Extension.property=value\"; \"comment=\" finds records "
                      "without a comment. All of them must fit. There are also name, key and materialKey."),
             options->criteria);
    AddText(*command, QLatin1String("--extension"), Text::tr("CLASS"),
            Text::tr("Only records with values of that extension, whose properties may be named without it."),
            options->extension);
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat find thickness=2mm materialType=S235JR"));
    AddExample(*command, QLatin1String("zaxmat find thickness=1..3 \"name=*steel*\" --format csv"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunFind(*options, output); }; });
}

} // namespace zaxmat
