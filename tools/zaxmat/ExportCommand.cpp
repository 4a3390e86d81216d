#include "ExportCommand.h"

#include "Catalogue.h"
#include "Csv.h"
#include "CsvColumns.h"
#include "Failure.h"
#include "Output.h"
#include "Properties.h"
#include "Records.h"
#include "Text.h"

#include "ZAXHostFileSaver.h"

#include <QFile>
#include <QFileInfo>
#include <QMultiHash>

#include <algorithm>
#include <memory>
#include <set>

namespace zaxmat {

namespace {

using Field = std::pair<QByteArray, QByteArray>;

/// The materials by name, each with its stock forms behind it; stock forms of no material come last.
QList<ZAXMatDefinition> RecordsOf(const Catalogue& catalogue)
{
    QMultiHash<QByteArray, ZAXMatDefinition> stockForms;
    for (const CatalogueRecord& stockForm : catalogue.ReadStockForms())
        stockForms.insert(stockForm.GetMaterialKey(), stockForm.ToDefinition());
    QList<ZAXMatDefinition> records;
    const QList<ZAXMatDefinition> materials = catalogue.GetMaterials();
    for (const ZAXMatDefinition& material : materials) {
        QList<ZAXMatDefinition> own = stockForms.values(material.GetKey());
        stockForms.remove(material.GetKey());
        SortRecords(own);
        records.append(material);
        records.append(own);
    }
    QList<ZAXMatDefinition> orphans = stockForms.values();
    SortRecords(orphans);
    return records + orphans;
}

/// The properties that hold a value in any of \a records and are not in \a known.
std::set<Field> MoreFields(const QList<ZAXMatDefinition>& records, const QList<PropertyName>& known)
{
    std::set<Field> fields;
    for (const ZAXMatDefinition& record : records) {
        const QList<QByteArray> extensions = record.GetDefinedExtensions();
        for (const QByteArray& extension : extensions) {
            const QList<QByteArray> properties = record.GetDefinedProperties(extension);
            for (const QByteArray& property : properties) {
                if (!IsMissing(record.GetValue(property, extension)))
                    fields.insert({extension, property});
            }
        }
    }
    for (const PropertyName& name : known)
        fields.erase({name.extension, name.property});
    return fields;
}

/// What every record has: first what materials have, then what only stock forms do.
QList<PropertyName> BaseFields()
{
    const Schema schema;
    QList<PropertyName> names;
    for (const auto type : {ZAXMatDefinition::Material, ZAXMatDefinition::Packaging}) {
        const QList<QByteArray> properties = schema.GetProperties(type);
        for (const QByteArray& property : properties) {
            if (!names.contains(PropertyName{{}, property}))
                names.append({{}, property});
        }
    }
    return names;
}

QList<CsvColumn> ColumnsOf(const QList<ZAXMatDefinition>& records)
{
    QList<CsvColumn> columns;
    for (const auto* const own : {"type", "key", "material", "name"})
        columns.append(ColumnOf(QLatin1String(own)));
    const QList<PropertyName> base = BaseFields();
    std::ranges::transform(base, std::back_inserter(columns), PropertyColumn);
    for (const Field& field : MoreFields(records, base))
        columns.append(PropertyColumn({field.first, field.second}));
    return columns;
}

QString CellText(const CsvColumn& column, const ZAXMatDefinition& record)
{
    const auto text = [](const QString& own) { return own.isEmpty() ? QString() : own; };
    switch (column.kind) {
    case CsvColumn::Kind::Type:
        return TypeWord(record.GetType());
    case CsvColumn::Kind::Key:
        return QString::fromLatin1(record.GetKey());
    case CsvColumn::Kind::Material:
        return text(QString::fromLatin1(record.GetMaterialKey()));
    case CsvColumn::Kind::Name:
        return text(record.GetName());
    case CsvColumn::Kind::Property:
        break;
    }
    return CellOf(record.GetValue(column.name.property, column.name.extension));
}

QByteArray ToCsv(const QList<ZAXMatDefinition>& records)
{
    const QList<CsvColumn> columns = ColumnsOf(records);
    QStringList titles;
    std::ranges::transform(columns, std::back_inserter(titles), TitleOf);
    QByteArray csv = CsvLine(titles);
    for (const ZAXMatDefinition& record : records) {
        QStringList cells;
        std::ranges::transform(columns, std::back_inserter(cells),
                               [&](const CsvColumn& column) { return CellText(column, record); });
        csv += CsvLine(cells);
    }
    return csv;
}

/// Whether \a path is a file that a slip of the hand must not cost: a catalogue or a document.
bool IsPrecious(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QByteArray start = file.read(64);
    const bool isDocument = start.startsWith("\x89ZAX");
    if (start.startsWith("\xEF\xBB\xBF"))
        start.remove(0, 3);
    return isDocument || start.trimmed().startsWith('{');
}

void RequireOtherFile(const QString& path, const Catalogue& catalogue)
{
    const QString target = ZAXHostFileSaver::TargetOf(path);
    if (QFileInfo(target) == QFileInfo(ZAXHostFileSaver::TargetOf(catalogue.GetFilePath())))
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 is the catalogue itself. Name another file.").arg(QuotedPath(path)));
    // A device or a pipe might never end, and would be replaced.
    if (QFileInfo::exists(target) && !QFileInfo(target).isFile())
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 is no file. Name a file.").arg(QuotedPath(path)));
    if (IsPrecious(target))
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 is a catalogue or a document. Name another file.").arg(QuotedPath(path)));
}

} // namespace

ExitCode RunExport(const ExportOptions& options, Output& output)
{
    const Catalogue catalogue(options.catalogue);
    RequireOtherFile(options.file, catalogue);
    const QList<ZAXMatDefinition> records = RecordsOf(catalogue);
    if (const ZAXHostResult saved = ZAXHostFileSaver::Save(options.file, ToCsv(records)); !saved)
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The file %1 cannot be written: %2.").arg(QuotedPath(options.file), saved.GetMessage()));
    const qsizetype materials = catalogue.ReadMaterials().size();
    output.Print(
        Text::tr("Written to %1: materials: %2, stock forms: %3")
            .arg(QuotedPath(options.file), QString::number(materials), QString::number(records.size() - materials)));
    return ExitCode::Done;
}

void AddExportCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("export"),
                                             Text::tr("Writes a catalogue into a CSV file, for \"import\"."));
    const auto options = std::make_shared<ExportOptions>();
    AddText(*command, QLatin1String("FILE"), QString(),
            Text::tr("The CSV file to write. One that is there is replaced, but no catalogue and no document."),
            options->file)
        .Required();
    AddCatalogueOptions(*command, options->catalogue);
    AddExample(*command, QLatin1String("zaxmat export prices.csv --catalogue examples/catalogue"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunExport(*options, output); }; });
}

} // namespace zaxmat
