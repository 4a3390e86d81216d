// The import of a CSV file into a small catalogue: the first byte of an input chooses the columns to match by, the rest
// is the file. Its rows are written as they were read; each gets a fate that fits it; and once the catalogue holds what
// the rows say, they change nothing more.

#include "Csv.h"
#include "Failure.h"
#include "FuzzInput.h"
#include "ImportPlan.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <optional>

namespace {

using zaxmat::Catalogue;
using zaxmat::CsvTable;
using zaxmat::ImportedRow;
using Kind = ImportedRow::Kind;

QJsonObject SmallCatalogue()
{
    return QJsonDocument::fromJson(R"({
        "s": {"key": "s", "name": "Steel", "type": 0,
              "properties": {"": {"materialType": "S235", "thickness": 2, "density": 7.85, "comment": null}}},
        "a": {"key": "a", "name": "Alu", "type": 0,
              "properties": {"": {"materialType": "AlMg3", "thickness": "0.5 in", "own": true}, "Extension": {"gas": "N2"}}},
        "p": {"key": "p", "materialKey": "s", "name": "Sheet", "type": 1,
              "properties": {"": {"length": 2000, "width": 1000.5, "form": "Rectangular", "isActive": false}}},
        "q": {"key": "q", "materialKey": "a", "name": "Sheet", "type": 1, "properties": {"": {"form": 1}}}
    })")
        .object();
}

Catalogue CatalogueOf(const QJsonObject& root)
{
    return Catalogue(QLatin1String("materials.json"), root);
}

std::optional<CsvTable> Table(const QByteArray& bytes)
{
    try {
        return zaxmat::ReadCsv(bytes);
    } catch (const zaxmat::CsvError& error) {
        Require(error.GetLine() >= 1 && !error.GetMessage().isEmpty(), "a mistake has its line and its reason");
        return std::nullopt;
    }
}

/// Qt drops a byte order mark in front of a text, here as in a catalogue.
QStringList WithoutMarks(QStringList cells)
{
    for (QString& cell : cells) {
        while (cell.startsWith(QChar::ByteOrderMark))
            cell.remove(0, 1);
    }
    return cells;
}

void RequireWrittenAsRead(const CsvTable& table)
{
    // Otherwise the row of titles tells the separator, if it has more than one cell.
    QByteArray bytes = QByteArray("sep=") + table.separator + "\r\n";
    for (const zaxmat::CsvRow& row : table.rows)
        bytes += zaxmat::CsvLine(row.cells, table.separator);
    const auto read = Table(bytes);
    Require(read.has_value() && read->separator == table.separator, "what was written can be read");
    Require(read->rows.size() == table.rows.size(), "as many rows are read as were written");
    for (qsizetype i = 0; i < table.rows.size(); ++i)
        Require(WithoutMarks(read->rows.at(i).cells) == WithoutMarks(table.rows.at(i).cells),
                "a row is read as it was written");
}

void RequireSense(const ImportedRow& row)
{
    Require((row.kind == Kind::Rejected) == !row.reason.isEmpty(), "what is rejected has a reason, and nothing else");
    Require(row.kind != Kind::Added || !row.before.IsValid(), "what is added was not there");
    Require(row.kind == Kind::Rejected || row.record.IsValid(), "a record has a key");
    const bool isFound = row.kind == Kind::Changed || row.kind == Kind::Unchanged;
    Require(!isFound || row.before.GetKey() == row.record.GetKey(), "what is changed keeps its key");
    Require(row.kind != Kind::Unchanged || row.before == row.record, "what is unchanged stays");
}

std::optional<QList<ImportedRow>> Plan(const Catalogue& catalogue, const CsvTable& table, const QStringList& match)
{
    try {
        zaxmat::ImportPlan plan(catalogue, table, match);
        qsizetype rows = 0;
        const auto planned = plan.Plan([&](qsizetype done) { Require(done == ++rows, "rows are counted one by one"); });
        Require(rows == planned.size() && rows == plan.CountRows(), "every row has a fate");
        return planned;
    } catch (const zaxmat::Failure& failure) {
        Require(!failure.GetMessage().isEmpty(), "a refusal says why");
        return std::nullopt;
    }
}

/// The catalogue with what the rows add and change.
QJsonObject Applied(const QList<ImportedRow>& rows)
{
    QJsonObject root = SmallCatalogue();
    for (const ImportedRow& row : rows) {
        if (row.kind != Kind::Added && row.kind != Kind::Changed)
            continue;
        Require(row.kind == Kind::Changed || !root.contains(QString::fromLatin1(row.record.GetKey())),
                "what is added takes nobody's place");
        root.insert(QString::fromLatin1(row.record.GetKey()), row.record.ToJson());
    }
    return root;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QList<QStringList> matches{{},
                                            {QLatin1String("name")},
                                            {QLatin1String("name"), QLatin1String("thickness")},
                                            {QLatin1String("materialType"), QLatin1String("material")}};
    static const Catalogue catalogue = CatalogueOf(SmallCatalogue());
    FuzzInput input(data, size);
    const QStringList& match = input.OneOf(matches);
    const auto table = Table(input.Rest());
    if (!table)
        return 0;
    RequireWrittenAsRead(*table);
    const auto rows = Plan(catalogue, *table, match);
    if (!rows)
        return 0;
    std::ranges::for_each(*rows, RequireSense);

    const auto isOfUse = [](const ImportedRow& row) { return row.kind != Kind::Rejected; };
    // Without a key nor a match, every import adds a row anew.
    if (match.isEmpty() || !std::ranges::all_of(*rows, isOfUse))
        return 0;
    const auto again = Plan(CatalogueOf(Applied(*rows)), *table, match);
    Require(again && std::ranges::all_of(*again, [](const ImportedRow& row) { return row.kind == Kind::Unchanged; }),
            "a second import changes nothing");
    return 0;
}
