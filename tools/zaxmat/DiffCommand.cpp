#include "DiffCommand.h"

#include "Catalogue.h"
#include "Output.h"
#include "RecordChanges.h"
#include "Records.h"
#include "Text.h"

#include <QFileInfo>

#include <algorithm>
#include <memory>

namespace zaxmat {

namespace {

/// The records of the catalogue in the folder or file \a path: its materials, then its stock forms, each by name.
QList<ZAXMatDefinition> ReadRecords(const QString& path)
{
    const QString file = QFileInfo(path).isDir() ? CatalogueFilePath({path}) : path;
    const Catalogue catalogue(file, ParseCatalogue(file, ReadCatalogueFile(file)));
    QList<ZAXMatDefinition> stockForms;
    std::ranges::transform(catalogue.ReadStockForms(), std::back_inserter(stockForms), &CatalogueRecord::ToDefinition);
    SortRecords(stockForms);
    return catalogue.GetMaterials() + stockForms;
}

QString CountText(const QList<RecordChange>& changes, RecordChange::Kind kind)
{
    return QString::number(std::ranges::count(changes, kind, &RecordChange::kind));
}

void PrintSummary(const QList<RecordChange>& changes, Output& output)
{
    if (changes.isEmpty())
        return output.Print(Text::tr("The catalogues hold the same."));
    output.Print(QString());
    output.Print(Text::tr("Records added: %1, removed: %2, changed: %3")
                     .arg(CountText(changes, RecordChange::Kind::Added),
                          CountText(changes, RecordChange::Kind::Removed),
                          CountText(changes, RecordChange::Kind::Changed)));
}

} // namespace

ExitCode RunDiff(const DiffOptions& options, Output& output)
{
    const QList<ZAXMatDefinition> before = ReadRecords(options.before);
    const QList<ZAXMatDefinition> after = ReadRecords(options.after);
    const QList<RecordChange> changes = RecordChanges(before, after);
    if (!changes.isEmpty() || output.GetFormat() != Format::Table)
        output.Print(ChangesTable(changes, output.GetUnit()));
    PrintSummary(changes, output);
    return changes.isEmpty() ? ExitCode::Done : ExitCode::InvalidValues;
}

void AddDiffCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("diff"),
                                             Text::tr("Compares two catalogues, record by record and field by field."));
    const auto options = std::make_shared<DiffOptions>();
    AddText(*command, QLatin1String("A"), QString(),
            Text::tr("The one catalogue: its folder, or a file like its materials.json."), options->before)
        .Required();
    AddText(*command, QLatin1String("B"), QString(), Text::tr("The other catalogue."), options->after).Required();
    AddExample(*command, QLatin1String("zaxmat diff examples/catalogue examples/catalogue"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunDiff(*options, output); }; });
}

} // namespace zaxmat
