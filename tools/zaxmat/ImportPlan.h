#ifndef ZAXMAT_IMPORTPLAN_H
#define ZAXMAT_IMPORTPLAN_H

#include "Catalogue.h"
#include "Csv.h"
#include "CsvColumns.h"
#include "Schema.h"
#include "Values.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <optional>
#include <utility>

namespace zaxmat {

/// What an import makes of a row.
struct ImportedRow
{
    enum class Kind
    {
        Added,
        Changed,
        Unchanged,
        Rejected,
    };

    /// The line of the file that the row starts in.
    qsizetype line = 0;
    Kind kind = Kind::Rejected;
    /// The record as it was; invalid for a new one.
    ZAXMatDefinition before;
    /// The record as the row makes it; of a rejected row what is known of it.
    ZAXMatDefinition record;
    /// Why the row is rejected.
    QString reason;
    /// Whether the row says of which type its record is.
    bool isTypeKnown = true;
};

/// Finds out what the rows of a CSV file make of a catalogue, which it does not change.
class ImportPlan
{
public:
    /// Rows are matched with records by the columns \a match, by "key" if that is empty.
    /// \throws Failure (WrongUsage) for a column that there is twice, that no record has, or that is missing.
    ImportPlan(const Catalogue& catalogue, const CsvTable& table, const QStringList& match);

    /// What becomes of each row that is not blank, in the order of the file. \a advance is told how many are done.
    QList<ImportedRow> Plan(const std::function<void(qsizetype)>& advance = [](qsizetype) {});

    qsizetype CountRows() const { return m_rows.size(); }

private:
    using Type = ZAXMatDefinition::Type;

    QStringList TitlesOf(const CsvRow& titles) const;
    void ReadTitles(const CsvRow& titles);
    void RequireKnown(qsizetype column) const;
    void ReadMatch(const QStringList& match);

    qsizetype Find(CsvColumn::Kind kind) const;
    QString CellAt(const CsvRow& row, qsizetype column) const;
    QString CellOf(const CsvRow& row, CsvColumn::Kind kind) const;

    ImportedRow PlanRow(const CsvRow& row, Type type);
    void RequireUnknown(const CsvRow& row, const ZAXMatDefinition& record);
    ZAXMatDefinition FindTarget(const CsvRow& row, Type type, QByteArray& materialKey);
    ZAXMatDefinition FindByKey(const CsvRow& row, Type type) const;
    ZAXMatDefinition FindByMatch(const CsvRow& row, Type type, const QByteArray& materialKey);
    ZAXMatDefinition NewRecord(const CsvRow& row, Type type, const QByteArray& materialKey) const;
    void RequireFirst(const CsvRow& row, const QString& identity);
    void SetEmptyTexts(const CsvRow& row, ZAXMatDefinition& record) const;
    bool SetFields(const CsvRow& row, bool isNew, ZAXMatDefinition& record);
    bool SetField(const CsvRow& row, qsizetype column, bool isNew, ZAXMatDefinition& record);
    void CheckValue(qsizetype column, Type type, const QString& text, const QVariant& value);

    ZAXMatDefinition RecordOf(Type type, const QByteArray& key) const;
    QByteArray MaterialKeyFor(const QString& text);
    const QHash<QString, QSet<QByteArray>>& MaterialsByName();
    QString MatchText(const ZAXMatDefinition& record) const;
    void PlaceRecords(Type type);

    const Catalogue& m_catalogue;
    QList<CsvColumn> m_columns;
    std::optional<CellReader> m_reader;
    QList<CsvRow> m_rows;
    /// Where the columns of a kind stand, but for properties; -1 for none.
    std::array<qsizetype, 4> m_own{-1, -1, -1, -1};
    /// The columns that rows are matched by; empty for the key.
    QList<qsizetype> m_match;
    Schema m_schema;
    ValueChecker m_checker;
    /// What the classes said against a value, by type, column and text.
    QHash<QString, QString> m_complaints;
    /// The lines in which records were met.
    QHash<QString, qsizetype> m_lines;
    /// The keys of the materials that rows stand for, by the keys that the file gives them.
    QHash<QString, QByteArray> m_fileKeys;
    /// The names and keys of the materials that rows stand for.
    QList<std::pair<QString, QByteArray>> m_named;
    std::optional<QHash<QString, QSet<QByteArray>>> m_materialsByName;
    std::array<std::optional<QHash<QString, QList<QByteArray>>>, 2> m_byMatch;
    /// The keys of the catalogue's records by what tells them apart for people.
    std::array<std::optional<QHash<QString, QByteArray>>, 2> m_known;
};

} // namespace zaxmat

#endif
