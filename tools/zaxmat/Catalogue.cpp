#include "Catalogue.h"

#include "Records.h"

#include "ZAXMatJsonFileProvider.h"

#include <QSet>
#include <QUuid>

#include <algorithm>

namespace zaxmat {

namespace {

/// Takes records out that a later one of the same key replaces.
void KeepLast(QList<CatalogueRecord>& records)
{
    QSet<QByteArray> keys;
    QList<CatalogueRecord> kept;
    for (auto record = records.crbegin(); record != records.crend(); ++record) {
        const QByteArray key = record->GetKey();
        if (!keys.contains(key))
            kept.prepend(*record);
        keys.insert(key);
    }
    records = kept;
}

} // namespace

Catalogue::Catalogue(const CatalogueOptions& options)
    : Catalogue(CatalogueFilePath(options),
                ParseCatalogue(CatalogueFilePath(options), ReadCatalogueFile(CatalogueFilePath(options))))
{
}

Catalogue::Catalogue(const QString& path, const QJsonObject& root) : m_filePath(path)
{
    bool isNamedByKey = true;
    for (auto member = root.begin(); member != root.end(); ++member) {
        const CatalogueRecord record(member.value().toObject());
        const QByteArray key = record.GetKey();
        if (key.isEmpty())
            continue;
        isNamedByKey = isNamedByKey && key == member.key().toUtf8();
        if (record.GetType() == ZAXMatDefinition::Material)
            m_materials.records.append(record);
        else if (record.GetType() == ZAXMatDefinition::Packaging)
            m_stockForms.records.append(record);
    }
    // Members of one object have different names.
    if (!isNamedByKey) {
        KeepLast(m_materials.records);
        KeepLast(m_stockForms.records);
    }
}

QByteArray Catalogue::GetProviderId()
{
    // It reports the same for every folder, so it is asked for that of one that is not there.
    return ZAXMatJsonFileProvider(QUuid::createUuid().toString()).GetProviderId();
}

ZAXMatDefinition Catalogue::GetMaterial(const QByteArray& key) const
{
    return m_materials.Get(key);
}

ZAXMatDefinition Catalogue::GetStockForm(const QByteArray& key) const
{
    return m_stockForms.Get(key);
}

QList<ZAXMatDefinition> Catalogue::GetMaterials() const
{
    QList<ZAXMatDefinition> materials;
    std::ranges::transform(m_materials.records, std::back_inserter(materials), &CatalogueRecord::ToDefinition);
    SortRecords(materials);
    return materials;
}

QList<ZAXMatDefinition> Catalogue::GetStockForms(const QByteArray& materialKey) const
{
    PlaceStockForms();
    QList<ZAXMatDefinition> stockForms;
    const QList<qsizetype> places = m_stockFormsOf.values(materialKey);
    for (const qsizetype place : places)
        stockForms.append(m_stockForms.records[place].ToDefinition());
    SortRecords(stockForms);
    return stockForms;
}

qsizetype Catalogue::CountStockForms(const QByteArray& materialKey) const
{
    PlaceStockForms();
    return m_stockFormsOf.count(materialKey);
}

void Catalogue::PlaceStockForms() const
{
    if (!m_stockFormsOf.isEmpty())
        return;
    m_stockFormsOf.reserve(m_stockForms.records.size());
    for (qsizetype i = 0; i < m_stockForms.records.size(); ++i)
        m_stockFormsOf.insert(m_stockForms.records[i].GetMaterialKey(), i);
}

ZAXMatDefinition Catalogue::Records::Get(const QByteArray& key) const
{
    if (places.isEmpty()) {
        places.reserve(records.size());
        for (qsizetype i = 0; i < records.size(); ++i)
            places.insert(records[i].GetKey(), i);
    }
    const auto place = places.constFind(key);
    return place != places.cend() ? records[*place].ToDefinition() : ZAXMatDefinition();
}

} // namespace zaxmat
