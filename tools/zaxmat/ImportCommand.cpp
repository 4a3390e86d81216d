#include "ImportCommand.h"

#include "CatalogueEditor.h"
#include "Csv.h"
#include "Failure.h"
#include "FileContents.h"
#include "ImportPlan.h"
#include "Output.h"
#include "Progress.h"
#include "RecordChanges.h"
#include "RecordDifference.h"
#include "Table.h"
#include "Text.h"
#include "Twins.h"

#include <QFileInfo>

#include <algorithm>
#include <memory>

namespace zaxmat {

namespace {

using Kind = ImportedRow::Kind;

CsvTable ReadFile(const QString& path)
{
    const FileContents contents = ReadFileContents(path);
    if (!contents.IsRead())
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The file %1 cannot be read: %2.").arg(QuotedPath(path), contents.failure));
    try {
        return ReadCsv(contents.bytes);
    } catch (const CsvError& error) {
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The file %1 cannot be understood, line %2: %3.")
                          .arg(QuotedPath(path), QString::number(error.GetLine()), error.GetMessage()));
    }
}

/// The catalogue to look at without writing: an empty one where there is no file yet.
Catalogue ReadCatalogue(const CatalogueOptions& options)
{
    const QString path = CatalogueFilePath(options);
    const bool isNew = !QFileInfo::exists(path) && QFileInfo(QFileInfo(path).absolutePath()).isDir();
    return isNew ? Catalogue(path, QJsonObject()) : Catalogue(options);
}

QString WordOf(Kind kind)
{
    switch (kind) {
    case Kind::Added:
        return QLatin1String("added");
    case Kind::Changed:
        return QLatin1String("changed");
    case Kind::Unchanged:
        return QLatin1String("unchanged");
    case Kind::Rejected:
        break;
    }
    return QLatin1String("rejected");
}

QString TitleOf(Kind kind)
{
    switch (kind) {
    case Kind::Added:
        return Text::tr("added");
    case Kind::Changed:
        return Text::tr("changed");
    case Kind::Unchanged:
        return Text::tr("unchanged");
    case Kind::Rejected:
        break;
    }
    return Text::tr("rejected");
}

Emphasis EmphasisOf(Kind kind)
{
    switch (kind) {
    case Kind::Added:
        return Emphasis::Added;
    case Kind::Changed:
        return Emphasis::Changed;
    case Kind::Unchanged:
        return Emphasis::None;
    case Kind::Rejected:
        break;
    }
    return Emphasis::Error;
}

/// Appends the row, or one for each field that it changes.
void AddRow(const ImportedRow& row, LengthUnit unit, Table& table)
{
    const auto line = static_cast<qint64>(row.line);
    const auto cells = [&](const QString& field, const Cell& before, const Cell& after) {
        return QList<Cell>{Cell(QString::number(line), QJsonValue(line)),
                           Cell(TitleOf(row.kind), QJsonValue(WordOf(row.kind)), EmphasisOf(row.kind)),
                           Cell(QString(), row.isTypeKnown ? TypeWord(row.record.GetType()) : QJsonValue()),
                           row.record.GetName(),
                           field,
                           before,
                           after,
                           row.reason,
                           QString::fromLatin1(row.record.GetKey())};
    };
    const Cell nothing{QString(), QJsonValue()};
    const auto fields = row.kind == Kind::Changed ? DifferencesOf(row.before, row.record) : QList<FieldDifference>();
    if (fields.isEmpty())
        table.AddRow(cells(QString(), nothing, nothing));
    for (const FieldDifference& field : fields) {
        const auto [before, after] = ValueCells(row.record, field, unit);
        table.AddRow(cells(field.field, before, after));
    }
}

Table TableOf(const QList<ImportedRow>& rows, LengthUnit unit)
{
    constexpr auto left = Table::Alignment::Left;
    Table table({{Text::tr("Line"), Table::Alignment::Right, QLatin1String("line")},
                 {Text::tr("Row"), left, QLatin1String("change")},
                 {{}, left, QLatin1String("type")},
                 {Text::tr("Record"), left, QLatin1String("name")},
                 {Text::tr("Property"), left, QLatin1String("property")},
                 {Text::tr("Old"), left, QLatin1String("old")},
                 {Text::tr("New"), left, QLatin1String("new")},
                 {Text::tr("Reason"), left, QLatin1String("reason")},
                 {Text::tr("Key"), left, QLatin1String("key")}});
    for (const ImportedRow& row : rows)
        AddRow(row, unit, table);
    return table;
}

qsizetype Count(const QList<ImportedRow>& rows, Kind kind)
{
    return std::ranges::count(rows, kind, &ImportedRow::kind);
}

/// Shows programs all rows; people, unless they only try, those that are rejected.
void PrintRows(const QList<ImportedRow>& rows, bool isDryRun, Output& output)
{
    const bool isWhole = isDryRun || output.GetFormat() != Format::Table;
    QList<ImportedRow> shown;
    std::ranges::copy_if(rows, std::back_inserter(shown),
                         [&](const ImportedRow& row) { return isWhole || row.kind == Kind::Rejected; });
    if (shown.isEmpty() && output.GetFormat() == Format::Table)
        return;
    output.Print(TableOf(shown, output.GetUnit()));
    output.Print(QString());
}

void PrintCounts(const QList<ImportedRow>& rows, bool isWritten, bool isDryRun, Output& output)
{
    const auto count = [&](Kind kind) { return QString::number(Count(rows, kind)); };
    output.Print(Text::tr("Rows added: %1, changed: %2, unchanged: %3, rejected: %4")
                     .arg(count(Kind::Added), count(Kind::Changed), count(Kind::Unchanged), count(Kind::Rejected)));
    if (isDryRun)
        output.Print(Text::tr("Nothing was written, since this is a trial."));
    else if (!isWritten && Count(rows, Kind::Rejected) > 0)
        output.Print(Text::tr("Nothing was written. Correct the rejected rows, or leave them out with --partial."));
    else if (!isWritten)
        output.Print(Text::tr("Nothing was to be written."));
}

QList<ImportedRow> PlanRows(const ImportOptions& options, const Catalogue& catalogue, const CsvTable& table,
                            const Output& output)
{
    ImportPlan plan(catalogue, table, options.match);
    Progress progress(output, Text::tr("importing"), plan.CountRows());
    return plan.Plan([&](qsizetype done) { progress.Advance(done); });
}

/// What the rows do to the catalogue.
QList<RecordEdit> EditsOf(const QList<ImportedRow>& rows)
{
    QList<RecordEdit> edits;
    for (const ImportedRow& row : rows) {
        if (row.kind == Kind::Added || row.kind == Kind::Changed)
            edits.append({row.before, row.record});
    }
    return edits;
}

/// Writes what is to be added or changed. Whether there was anything to write.
bool Write(const QList<ImportedRow>& rows, CatalogueEditor& editor)
{
    for (const ImportedRow& row : rows) {
        if (row.kind == Kind::Added || row.kind == Kind::Changed)
            editor.SetRecord(row.before, row.record);
    }
    return editor.Commit().isWritten;
}

} // namespace

ExitCode RunImport(const ImportOptions& options, Output& output)
{
    const CsvTable table = ReadFile(options.file);
    QList<ImportedRow> rows;
    bool isWritten = false;
    if (options.isDryRun) {
        const Catalogue catalogue = ReadCatalogue(options.catalogue);
        rows = PlanRows(options, catalogue, table, output);
        NoteTwins(catalogue, EditsOf(rows), output);
    } else {
        CatalogueEditor editor(options.catalogue, output, CatalogueEditor::MissingFile::Create);
        rows = PlanRows(options, editor.GetCatalogue(), table, output);
        if (options.isPartial || Count(rows, Kind::Rejected) == 0)
            isWritten = Write(rows, editor);
        if (isWritten)
            NoteTwins(editor.GetCatalogue(), EditsOf(rows), output);
    }
    PrintRows(rows, options.isDryRun, output);
    PrintCounts(rows, isWritten, options.isDryRun, output);
    return Count(rows, Kind::Rejected) > 0 ? ExitCode::InvalidValues : ExitCode::Done;
}

void AddImportCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("import"),
                                             Text::tr("Adds and changes materials and stock forms from a CSV file."));
    const auto options = std::make_shared<ImportOptions>();
    AddText(
        *command, QLatin1String("FILE"), QString(),
        Text::tr("The CSV file. Its first row names the columns: \"type\" (\"material\" or \"stock form\"), \"key\", "
                 "\"name\", \"material\" (of a stock form: the key or name of its material), and properties as in "
                 "\"thickness [mm]\" and \"Extension.property\". An empty cell leaves a value as it is."),
        options->file)
        .Required();
    AddTexts(*command, QLatin1String("--match"), Text::tr("COLUMN,..."),
             Text::tr("The columns by which rows are matched with records, such as name,thickness. Stock forms are "
                      "looked for in their material. Default: key."),
             options->match)
        .SeparatedBy(u',');
    AddFlag(*command, QLatin1String("--dry-run"),
            Text::tr("Shows what would become of each row, and writes "
                     "nothing."),
            options->isDryRun);
    AddFlag(*command, QLatin1String("--partial"),
            Text::tr("Imports the other rows when some are rejected. Otherwise nothing is written "
                     "then."),
            options->isPartial);
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat import prices.csv --dry-run --catalogue examples/catalogue"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunImport(*options, output); }; });
}

} // namespace zaxmat
