#include "ImportPlan.h"

#include "Failure.h"
#include "RecordDifference.h"
#include "Text.h"

#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zaxmat {

namespace {

using Kind = CsvColumn::Kind;

bool IsBlank(const CsvRow& row)
{
    return std::ranges::all_of(row.cells, [](const QString& cell) { return cell.trimmed().isEmpty(); });
}

Failure Rejected(const QString& why)
{
    return {ExitCode::InvalidValues, why};
}

Failure WrongTitle(const QString& why)
{
    return {ExitCode::WrongUsage, Text::tr("The titles in the first row: %1").arg(why)};
}

QString KindText(ZAXMatDefinition::Type type)
{
    return type == ZAXMatDefinition::Material ? Text::tr("a material") : Text::tr("a stock form");
}

bool IsAscii(const QString& text)
{
    return std::ranges::all_of(text, [](QChar character) { return character.unicode() < 0x80; });
}

QString Identity(ZAXMatDefinition::Type type, const QString& text)
{
    return QString::number(type) + u'\n' + text;
}

/// What tells records of one type apart for people: material, name and size.
QString SizeText(const ZAXMatDefinition& record)
{
    const bool isMaterial = record.GetType() == ZAXMatDefinition::Material;
    const QList<const char*> lengths =
        isMaterial ? QList<const char*>{ZAXMatMaterial::Property_thickness}
                   : QList<const char*>{ZAXMatPackaging::Property_length, ZAXMatPackaging::Property_width};
    QStringList texts{QString::fromLatin1(record.GetMaterialKey()), record.GetName()};
    for (const char* const length : lengths) {
        const auto millimetres = LengthOf(QJsonValue::fromVariant(record.GetValue(length)));
        texts.append(millimetres ? QString::number(std::round(*millimetres * 1e6), 'g', 17) : QString());
    }
    return texts.join(u'\n');
}

/// Whether any record of the catalogue holds the property.
bool HoldsProperty(const Catalogue& catalogue, const PropertyName& name)
{
    const QLatin1String property(name.property);
    const QLatin1String extension(name.extension.constData(), name.extension.size());
    const auto holds = [&](const CatalogueRecord& record) {
        return !record.GetValue(property, extension).isUndefined();
    };
    return std::ranges::any_of(catalogue.ReadMaterials(), holds) ||
           std::ranges::any_of(catalogue.ReadStockForms(), holds);
}

} // namespace

ImportPlan::ImportPlan(const Catalogue& catalogue, const CsvTable& table, const QStringList& match)
    : m_catalogue(catalogue)
{
    if (table.rows.isEmpty())
        throw Failure(ExitCode::WrongUsage, Text::tr("The file is empty. Its first row names the properties."));
    std::ranges::remove_copy_if(table.rows.sliced(1), std::back_inserter(m_rows), IsBlank);
    ReadTitles(table.rows.first());
    using DecimalComma = ValueReading::DecimalComma;
    m_reader.emplace(m_columns, table.separator == ',' ? DecimalComma::Refused : DecimalComma::Usual);
    for (qsizetype column = 0; column < m_columns.size(); ++column)
        RequireKnown(column);
    ReadMatch(match);
}

/// The cells of the first row. Those behind the last title are left out, as a separator at the end of each line makes
/// them, unless something stands below.
QStringList ImportPlan::TitlesOf(const CsvRow& titles) const
{
    QStringList cells = titles.cells;
    const auto isBlankBelow = [this](qsizetype column) {
        return std::ranges::all_of(m_rows, [&](const CsvRow& row) { return CellAt(row, column).trimmed().isEmpty(); });
    };
    while (cells.size() > 1 && cells.constLast().trimmed().isEmpty() && isBlankBelow(cells.size() - 1))
        cells.removeLast();
    return cells;
}

void ImportPlan::ReadTitles(const CsvRow& titles)
{
    QSet<QString> fields;
    for (const QString& title : TitlesOf(titles)) {
        const CsvColumn column = ColumnOf(title);
        if (fields.contains(column.field))
            throw WrongTitle(Text::tr("%1 is there twice.").arg(Quoted(column.field)));
        fields.insert(column.field);
        if (column.kind != Kind::Property)
            m_own[static_cast<size_t>(column.kind)] = m_columns.size();
        m_columns.append(column);
    }
}

void ImportPlan::RequireKnown(qsizetype column) const
{
    const CsvColumn& csv = m_columns[column];
    if (csv.kind != Kind::Property || m_reader->IsProperty(column, ZAXMatDefinition::Material) ||
        m_reader->IsProperty(column, ZAXMatDefinition::Packaging) || HoldsProperty(m_catalogue, csv.name))
        return;
    // Says what there is.
    RequireProperty(ZAXMatDefinition::Material, csv.name);
}

void ImportPlan::ReadMatch(const QStringList& match)
{
    if (match.isEmpty() || match == QStringList{QLatin1String("key")})
        return;
    for (const QString& given : match) {
        const QString name = given.trimmed();
        const auto found = std::ranges::find(m_columns, name, &CsvColumn::field);
        if (found == m_columns.end())
            throw Failure(ExitCode::WrongUsage,
                          Text::tr("The file has no column %1 to match rows by.").arg(Quoted(name)));
        if (found->kind == Kind::Key || found->kind == Kind::Type)
            throw Failure(ExitCode::WrongUsage,
                          Text::tr("Rows cannot be matched by %1 and something else.").arg(Quoted(name)));
        // Stock forms are always looked for in their material.
        if (found->kind != Kind::Material)
            m_match.append(found - m_columns.begin());
    }
    if (m_match.isEmpty())
        throw Failure(ExitCode::WrongUsage, Text::tr("The material alone is not enough to match rows by."));
}

qsizetype ImportPlan::Find(Kind kind) const
{
    return m_own[static_cast<size_t>(kind)];
}

QString ImportPlan::CellAt(const CsvRow& row, qsizetype column) const
{
    return column >= 0 && column < row.cells.size() ? row.cells[column] : QString();
}

QString ImportPlan::CellOf(const CsvRow& row, Kind kind) const
{
    return CellAt(row, Find(kind));
}

QList<ImportedRow> ImportPlan::Plan(const std::function<void(qsizetype)>& advance)
{
    QList<ImportedRow> planned(m_rows.size());
    qsizetype done = 0;
    // A stock form may stand before its material.
    for (const Type pass : {ZAXMatDefinition::Material, ZAXMatDefinition::Packaging}) {
        for (qsizetype i = 0; i < m_rows.size(); ++i) {
            const CsvRow& row = m_rows[i];
            const auto type = TypeOfWord(CellOf(row, Kind::Type));
            if (type.value_or(ZAXMatDefinition::Material) != pass)
                continue;
            planned[i] = type ? PlanRow(row, *type) : ImportedRow{};
            planned[i].isTypeKnown = type.has_value();
            if (!type) {
                planned[i].reason =
                    Text::tr("%1 is no type; it must be %2 or %3")
                        .arg(Quoted(CellOf(row, Kind::Type)), Quoted(TypeWord(ZAXMatDefinition::Material)),
                             Quoted(TypeWord(ZAXMatDefinition::Packaging)));
            }
            planned[i].line = row.line;
            advance(++done);
        }
    }
    return planned;
}

ImportedRow ImportPlan::PlanRow(const CsvRow& row, Type type)
{
    ImportedRow planned;
    planned.record.SetType(type);
    planned.record.SetKey(CellOf(row, Kind::Key).toLatin1());
    planned.record.SetName(CellOf(row, Kind::Name));
    try {
        if (row.cells.size() > m_columns.size() && !IsBlank({0, row.cells.sliced(m_columns.size())}))
            throw Rejected(Text::tr("there are more cells than titles"));
        QByteArray materialKey;
        const ZAXMatDefinition before = FindTarget(row, type, materialKey);
        ZAXMatDefinition after = before.IsValid() ? before : NewRecord(row, type, materialKey);
        const bool isMoved = !materialKey.isEmpty() && materialKey != before.GetMaterialKey();
        if (isMoved)
            after.SetMaterialKey(materialKey);
        const bool isChanged = SetFields(row, !before.IsValid(), after) || isMoved;
        if (!before.IsValid()) {
            SetEmptyTexts(row, after);
            RequireUnknown(row, after);
        }
        if (type == ZAXMatDefinition::Material) {
            m_named.append({after.GetName(), after.GetKey()});
            m_fileKeys.insert(CellOf(row, Kind::Key), after.GetKey());
        }
        planned.before = before;
        planned.record = after;
        planned.kind = !before.IsValid() ? ImportedRow::Kind::Added
                       : isChanged       ? ImportedRow::Kind::Changed
                                         : ImportedRow::Kind::Unchanged;
    } catch (const Failure& failure) {
        planned.reason = failure.GetMessage();
    }
    return planned;
}

/// \throws Failure when \a record, of a row that does not say which record it is about, is there already.
void ImportPlan::RequireUnknown(const CsvRow& row, const ZAXMatDefinition& record)
{
    if (!m_match.isEmpty() || !CellOf(row, Kind::Key).trimmed().isEmpty())
        return;
    const Type type = record.GetType();
    auto& known = m_known[type];
    if (!known) {
        known.emplace();
        const auto& records =
            type == ZAXMatDefinition::Material ? m_catalogue.ReadMaterials() : m_catalogue.ReadStockForms();
        for (const CatalogueRecord& each : records)
            known->insert(SizeText(each.ToDefinition()), each.GetKey());
    }
    if (const QByteArray key = known->value(SizeText(record)); !key.isEmpty()) {
        const QString text = type == ZAXMatDefinition::Material
                                 ? Text::tr("the catalogue has a material of this name and thickness already, under "
                                            "the key %1; give the key, or match rows by --match name,thickness")
                                 : Text::tr("the catalogue has a stock form of this name and size already, under the "
                                            "key %1; give the key, or match rows by --match name");
        throw Rejected(text.arg(Quoted(QString::fromLatin1(key))));
    }
    RequireFirst(row, Identity(type, SizeText(record)));
}

/// The record that the row is about; an invalid one for a new record. \a materialKey becomes the key of the material
/// that the row names, where that is not the one of the record already.
ZAXMatDefinition ImportPlan::FindTarget(const CsvRow& row, Type type, QByteArray& materialKey)
{
    const QString material = CellOf(row, Kind::Material).trimmed();
    if (type == ZAXMatDefinition::Material && !material.isEmpty())
        throw Rejected(Text::tr("a material belongs to no other material"));
    const ZAXMatDefinition byKey = m_match.isEmpty() ? FindByKey(row, type) : ZAXMatDefinition();
    const bool isSameMaterial = byKey.IsValid() && QString::fromLatin1(byKey.GetMaterialKey()) == material;
    if (!material.isEmpty() && !isSameMaterial)
        materialKey = MaterialKeyFor(material);
    const bool isStockForm = type == ZAXMatDefinition::Packaging;
    if (isStockForm && materialKey.isEmpty() && !byKey.IsValid())
        throw Rejected(Text::tr("the material of the stock form is missing"));
    const ZAXMatDefinition found = m_match.isEmpty() ? byKey : FindByMatch(row, type, materialKey);
    if (found.IsValid())
        RequireFirst(row, Identity(type, QString::fromLatin1(found.GetKey())));
    else if (const QString key = CellOf(row, Kind::Key).trimmed(); m_match.isEmpty() && !key.isEmpty())
        RequireFirst(row, Identity(type, key));
    return found;
}

ZAXMatDefinition ImportPlan::FindByKey(const CsvRow& row, Type type) const
{
    const QString text = CellOf(row, Kind::Key).trimmed();
    const QByteArray key = text.toLatin1();
    const ZAXMatDefinition found = key.isEmpty() ? ZAXMatDefinition() : RecordOf(type, key);
    if (key.isEmpty() || found.IsValid())
        return found;
    const Type other = type == ZAXMatDefinition::Material ? ZAXMatDefinition::Packaging : ZAXMatDefinition::Material;
    if (RecordOf(other, key).IsValid())
        throw Rejected(Text::tr("the key belongs to %1, but the type of the row is %2")
                           .arg(KindText(other), Quoted(TypeWord(type))));
    if (!IsAscii(text))
        throw Rejected(Text::tr("the key of a new record must not hold letters outside ASCII"));
    return {};
}

ZAXMatDefinition ImportPlan::FindByMatch(const CsvRow& row, Type type, const QByteArray& materialKey)
{
    ZAXMatDefinition wanted;
    wanted.SetType(type);
    wanted.SetMaterialKey(materialKey);
    for (const qsizetype column : std::as_const(m_match)) {
        const CsvColumn& csv = m_columns[column];
        const bool isName = csv.kind == Kind::Name;
        const QString text = CellAt(row, column);
        if (!isName && !m_reader->IsProperty(column, type))
            continue;
        if (text.trimmed().isEmpty())
            throw Rejected(Text::tr("the cell of %1, by which rows are matched, is empty").arg(Quoted(csv.field)));
        if (isName)
            wanted.SetName(text);
        else
            wanted.SetValue(csv.name.property, m_reader->Read(column, wanted, text), csv.name.extension);
    }
    const QString match = MatchText(wanted);
    if (match.isEmpty())
        throw Rejected(Text::tr("%1 has none of the properties by which rows are matched").arg(KindText(type)));
    PlaceRecords(type);
    const QList<QByteArray> found = m_byMatch[type]->value(match);
    if (found.size() > 1)
        throw Rejected(Text::tr("the row matches %1 records; give their keys, and match by these")
                           .arg(QString::number(found.size())));
    if (found.isEmpty())
        RequireFirst(row, Identity(type, match));
    return found.isEmpty() ? ZAXMatDefinition() : RecordOf(type, found.first());
}

ZAXMatDefinition ImportPlan::NewRecord(const CsvRow& row, Type type, const QByteArray& materialKey) const
{
    const QString name = CellOf(row, Kind::Name);
    const QString key = CellOf(row, Kind::Key).trimmed();
    if (name.trimmed().isEmpty()) {
        throw Rejected(key.isEmpty() || !m_match.isEmpty()
                           ? Text::tr("a new record needs a name")
                           : Text::tr("the catalogue has no %1 of the key %2, and a new one needs a name")
                                 .arg(TypeWord(type), Quoted(key)));
    }
    ZAXMatDefinition record =
        type == ZAXMatDefinition::Material ? m_schema.NewMaterial(name) : m_schema.NewStockForm(name, materialKey);
    if (m_match.isEmpty() && !key.isEmpty())
        record.SetKey(key.toLatin1());
    return record;
}

/// \throws Failure when another row was about the same record.
void ImportPlan::RequireFirst(const CsvRow& row, const QString& identity)
{
    const auto first = m_lines.constFind(identity);
    if (first != m_lines.cend())
        throw Rejected(Text::tr("line %1 is about the same record").arg(QString::number(*first)));
    m_lines.insert(identity, row.line);
}

/// Gives a new \a record the texts that stand in the row as a pair of quotation marks.
void ImportPlan::SetEmptyTexts(const CsvRow& row, ZAXMatDefinition& record) const
{
    for (qsizetype column = 0; column < m_columns.size(); ++column) {
        const QString text = CellAt(row, column);
        const bool isEmptyText = text.isEmpty() && !text.isNull();
        if (isEmptyText && m_reader->IsText(column, record.GetType()))
            record.SetValue(m_columns[column].name.property, text, m_columns[column].name.extension);
    }
}

/// Puts all cells of the row into \a record. Whether that changes it.
/// \throws Failure that tells what is wrong with each.
bool ImportPlan::SetFields(const CsvRow& row, bool isNew, ZAXMatDefinition& record)
{
    QStringList complaints;
    bool isChanged = false;
    for (qsizetype column = 0; column < m_columns.size(); ++column) {
        try {
            isChanged = SetField(row, column, isNew, record) || isChanged;
        } catch (const Failure& failure) {
            complaints.append(failure.GetMessage());
        }
    }
    if (!complaints.isEmpty())
        throw Rejected(complaints.join(QLatin1String("; ")));
    return isChanged;
}

bool ImportPlan::SetField(const CsvRow& row, qsizetype column, bool isNew, ZAXMatDefinition& record)
{
    const CsvColumn& csv = m_columns[column];
    const QString text = CellAt(row, column);
    // An empty cell leaves alone what there is, and so does one that found the record, if only to a millionth.
    const bool isMatched = !isNew && m_match.contains(column);
    if (isMatched || text.trimmed().isEmpty())
        return false;
    if (csv.kind == Kind::Name && text != record.GetName()) {
        record.SetName(text);
        return true;
    }
    if (csv.kind != Kind::Property)
        return false;
    const QVariant value = m_reader->Read(column, record, text);
    const auto& [extension, property] = csv.name;
    if (IsSameValue(record.GetValue(property, extension), value))
        return false;
    CheckValue(column, record.GetType(), text, value);
    record.SetValue(property, value, extension);
    return true;
}

void ImportPlan::CheckValue(qsizetype column, Type type, const QString& text, const QVariant& value)
{
    const PropertyName& name = m_columns[column].name;
    const QString place = Identity(type, QString::number(column) + u'\n' + text);
    auto complaint = m_complaints.constFind(place);
    if (complaint == m_complaints.cend())
        complaint = m_complaints.insert(place, m_checker.Check(type, name, value));
    if (!complaint->isEmpty())
        throw Rejected(Text::tr("%1: %2").arg(NameText(name), *complaint));
}

ZAXMatDefinition ImportPlan::RecordOf(Type type, const QByteArray& key) const
{
    return type == ZAXMatDefinition::Material ? m_catalogue.GetMaterial(key) : m_catalogue.GetStockForm(key);
}

/// The key of the material that a cell names.
QByteArray ImportPlan::MaterialKeyFor(const QString& text)
{
    if (const auto inFile = m_fileKeys.constFind(text); inFile != m_fileKeys.cend())
        return *inFile;
    if (m_catalogue.GetMaterial(text.toLatin1()).IsValid())
        return text.toLatin1();
    const QSet<QByteArray> named = MaterialsByName().value(text);
    if (named.size() > 1)
        throw Rejected(Text::tr("there are %1 materials called %2; give the key of one")
                           .arg(QString::number(named.size()), Quoted(text)));
    if (named.isEmpty())
        throw Rejected(Text::tr("there is no material %1").arg(Quoted(text)));
    return *named.begin();
}

/// The keys of the materials by their names: of the catalogue, and of the file, the materials of which are all known
/// when the first stock form is looked at.
const QHash<QString, QSet<QByteArray>>& ImportPlan::MaterialsByName()
{
    if (!m_materialsByName) {
        m_materialsByName.emplace();
        for (const CatalogueRecord& material : m_catalogue.ReadMaterials())
            (*m_materialsByName)[material.GetName()].insert(material.GetKey());
        for (const auto& [name, key] : std::as_const(m_named))
            (*m_materialsByName)[name].insert(key);
    }
    return *m_materialsByName;
}

/// What of \a record rows are matched by; empty when it has nothing of that.
QString ImportPlan::MatchText(const ZAXMatDefinition& record) const
{
    QString text;
    for (const qsizetype column : m_match) {
        const CsvColumn& csv = m_columns[column];
        if (csv.kind == Kind::Name)
            text += u'\n' + record.GetName();
        else if (m_reader->IsProperty(column, record.GetType()))
            text += u'\n' + m_reader->Normalized(column, record.GetType(),
                                                 record.GetValue(csv.name.property, csv.name.extension));
    }
    return text.isEmpty() ? text : QString::fromLatin1(record.GetMaterialKey()) + text;
}

void ImportPlan::PlaceRecords(Type type)
{
    auto& places = m_byMatch[type];
    if (places)
        return;
    places.emplace();
    const auto& records =
        type == ZAXMatDefinition::Material ? m_catalogue.ReadMaterials() : m_catalogue.ReadStockForms();
    for (const CatalogueRecord& record : records)
        (*places)[MatchText(record.ToDefinition())].append(record.GetKey());
}

} // namespace zaxmat
