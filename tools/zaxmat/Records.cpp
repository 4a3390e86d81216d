#include "Records.h"

#include "Catalogue.h"
#include "Properties.h"
#include "Table.h"
#include "Text.h"

#include "ZAXMatMaterial.h"
#include "ZAXSysDefinedValue.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace zaxmat {

namespace {

template <typename Record, typename Predicate>
QList<Record> Matching(const QList<Record>& records, Predicate isWanted)
{
    QList<Record> found;
    std::ranges::copy_if(records, std::back_inserter(found), isWanted);
    return found;
}

/// Those of \a records that \a text is the key of, else those that it is the name of.
template <typename Record>
QList<Record> FindByKeyOrName(const QList<Record>& records, const QString& text)
{
    const QByteArray key = text.toLatin1();
    const auto byKey = Matching(records, [&](const Record& record) { return record.GetKey() == key; });
    return !byKey.isEmpty() && QString::fromLatin1(key) == text
               ? byKey
               : Matching(records, [&](const Record& record) { return record.GetName() == text; });
}

/// At least those records of a type that hold \a text as a value, or as their name or key.
QList<CatalogueRecord> RecordsHolding(const Catalogue& catalogue, ZAXMatDefinition::Type type, const QString& text)
{
    // What JSON writes in one way only.
    const bool isPlain = std::ranges::all_of(text, [](QChar letter) {
        return letter >= u' ' && letter < u'\x7f' && letter != u'"' && letter != u'\\' && letter != u'/';
    });
    if (isPlain)
        return catalogue.ReadRecordsWith(type, {text.toLatin1()});
    return type == ZAXMatDefinition::Material ? catalogue.ReadMaterials() : catalogue.ReadStockForms();
}

/// The type of a material, where it is a text.
QString TypeOf(const CatalogueRecord& material)
{
    return material.GetValue(QLatin1String(ZAXMatMaterial::Property_materialType)).toString();
}

/// What a record is sorted by. Made once per record, since comparing happens many times.
struct SortKey
{
    explicit SortKey(const QString& recordName, std::optional<double> recordThickness, const QByteArray& recordKey)
        : folded(recordName), name(recordName), thickness(recordThickness), key(recordKey)
    {
        std::ranges::transform(folded, folded.begin(), [](QChar character) { return character.toCaseFolded(); });
    }

    bool operator<(const SortKey& other) const
    {
        if (const int order = folded.compare(other.folded); order != 0)
            return order < 0;
        if (const int order = name.compare(other.name); order != 0)
            return order < 0;
        return thickness != other.thickness ? thickness < other.thickness : key < other.key;
    }

    QString folded;
    QString name;
    std::optional<double> thickness;
    QByteArray key;
};

template <typename Record, typename KeyOf>
void Sort(QList<Record>& records, KeyOf keyOf)
{
    std::vector<std::pair<SortKey, qsizetype>> order;
    order.reserve(records.size());
    for (const Record& record : std::as_const(records))
        order.emplace_back(keyOf(record), order.size());
    std::ranges::sort(order, [](const auto& a, const auto& b) { return a.first < b.first; });
    QList<Record> sorted;
    sorted.reserve(records.size());
    for (const auto& [key, index] : order)
        sorted.append(records[index]);
    records = sorted;
}

QList<ZAXMatDefinition> Definitions(QList<CatalogueRecord> records)
{
    SortRecords(records);
    QList<ZAXMatDefinition> definitions;
    std::ranges::transform(records, std::back_inserter(definitions), &CatalogueRecord::ToDefinition);
    return definitions;
}

} // namespace

void SortRecords(QList<ZAXMatDefinition>& records)
{
    Sort(records, [](const ZAXMatDefinition& record) {
        return SortKey(record.GetName(), ThicknessOf(record), record.GetKey());
    });
}

void SortRecords(QList<CatalogueRecord>& records)
{
    Sort(records,
         [](const CatalogueRecord& record) { return SortKey(record.GetName(), ThicknessOf(record), record.GetKey()); });
}

std::optional<double> ThicknessOf(const ZAXMatDefinition& material)
{
    return LengthOf(QJsonValue::fromVariant(material.GetValue(ZAXMatMaterial::Property_thickness)));
}

std::optional<double> ThicknessOf(const CatalogueRecord& material)
{
    return LengthOf(material.GetValue(QLatin1String(ZAXMatMaterial::Property_thickness)));
}

bool IsSameThickness(double a, double b)
{
    return std::abs(a - b) < 0.001;
}

QList<ZAXMatDefinition> FindMaterials(const Catalogue& catalogue, const QString& text)
{
    const QList<CatalogueRecord> materials = RecordsHolding(catalogue, ZAXMatDefinition::Material, text);
    const auto found = FindByKeyOrName(materials, text);
    return Definitions(!found.isEmpty() ? found : Matching(materials, [&](const CatalogueRecord& record) {
        return TypeOf(record) == text;
    }));
}

QList<ZAXMatDefinition> FindStockForms(const QList<ZAXMatDefinition>& stockForms, const QString& text)
{
    return FindByKeyOrName(stockForms, text);
}

QList<ZAXMatDefinition> FindStockForms(const Catalogue& catalogue, const QString& text)
{
    const auto records = FindByKeyOrName(RecordsHolding(catalogue, ZAXMatDefinition::Packaging, text), text);
    QHash<QByteArray, QList<CatalogueRecord>> byMaterial;
    for (const CatalogueRecord& record : records)
        byMaterial[record.GetMaterialKey()].append(record);
    QList<ZAXMatDefinition> materials;
    for (auto each = byMaterial.cbegin(); each != byMaterial.cend(); ++each) {
        if (const ZAXMatDefinition material = catalogue.GetMaterial(each.key()); material.IsValid())
            materials.append(material);
    }
    SortRecords(materials);
    QList<ZAXMatDefinition> found;
    for (const ZAXMatDefinition& material : std::as_const(materials))
        found += Definitions(byMaterial.take(material.GetKey()));
    // Those of no material come last.
    for (const QList<CatalogueRecord>& others : std::as_const(byMaterial))
        found += Definitions(others);
    return found;
}

QString MaterialTitle(const ZAXMatDefinition& material, LengthUnit unit)
{
    const auto thickness = ThicknessOf(material);
    if (!thickness)
        return material.GetName();
    return material.GetName() + QLatin1String(", ") + LengthText(*thickness, unit);
}

QString MaterialLines(const QList<ZAXMatDefinition>& materials, LengthUnit unit)
{
    Table table({{}, {}});
    for (const ZAXMatDefinition& material : materials)
        table.AddRow({QLatin1String("  ") + MaterialTitle(material, unit), QString::fromLatin1(material.GetKey())});
    return table.ToText();
}

QString StockFormLines(const QList<ZAXMatDefinition>& stockForms)
{
    Table table({{}, {}});
    for (const ZAXMatDefinition& stockForm : stockForms)
        table.AddRow({QLatin1String("  ") + stockForm.GetName(), QString::fromLatin1(stockForm.GetKey())});
    return table.ToText();
}

QString UnknownMaterialText(const Catalogue& catalogue, const QString& text, LengthUnit unit)
{
    constexpr qsizetype mostShown = 10;
    const auto similar = Definitions(Matching(catalogue.ReadMaterials(), [&](const CatalogueRecord& material) {
        return material.GetName().contains(text, Qt::CaseInsensitive) ||
               TypeOf(material).contains(text, Qt::CaseInsensitive);
    }));
    QStringList lines{Text::tr("The catalogue %1 has no %2.").arg(QuotedPath(catalogue.GetFilePath()), Quoted(text))};
    if (!similar.isEmpty())
        lines << Text::tr("Similar:") << MaterialLines(similar.first(std::min(similar.size(), mostShown)), unit);
    if (similar.isEmpty() || similar.size() > mostShown)
        lines << Text::tr("\"zaxmat list\" shows all materials.");
    return lines.join(u'\n');
}

} // namespace zaxmat
