#include "Catalogue.h"

#include "Records.h"

#include "ZAXMatJsonFileProvider.h"

#include <QJsonDocument>
#include <QSet>
#include <QUuid>

#include <algorithm>
#include <iterator>

namespace zaxmat {

namespace {

QByteArray Shared(QByteArrayView view)
{
    return QByteArray::fromRawData(view.data(), view.size());
}

} // namespace

Catalogue::Catalogue(const CatalogueOptions& options)
    : Catalogue(CatalogueFilePath(options), ReadCatalogueFile(CatalogueFilePath(options)))
{
}

Catalogue::Catalogue(const QString& path, const QByteArray& bytes) : m_filePath(path), m_bytes(bytes)
{
    if (!TakeScanned())
        TakeParsed(ParseCatalogue(m_filePath, m_bytes));
}

Catalogue::Catalogue(const QString& path, const QJsonObject& root) : m_filePath(path)
{
    TakeParsed(root);
}

bool Catalogue::TakeScanned()
{
    m_places = ScanRecords(m_bytes);
    if (!m_places)
        return false;
    for (const RecordPlace& place : *m_places) {
        Records& records = place.isMaterial ? m_materials : m_stockForms;
        records.Append(Shared(place.text), Shared(place.key), Shared(place.materialKey));
    }
    return true;
}

void Catalogue::TakeParsed(const QJsonObject& root)
{
    bool isNamedByKey = true;
    for (auto member = root.begin(); member != root.end(); ++member) {
        const CatalogueRecord record(member.value().toObject());
        const QByteArray key = record.GetKey();
        if (key.isEmpty())
            continue;
        isNamedByKey = isNamedByKey && key == member.key().toUtf8();
        if (record.GetType() == ZAXMatDefinition::Material)
            m_materials.Append(record);
        else if (record.GetType() == ZAXMatDefinition::Packaging)
            m_stockForms.Append(record);
    }
    // Members of one object have different names.
    if (!isNamedByKey) {
        m_materials.KeepLast();
        m_stockForms.KeepLast();
    }
}

QByteArray Catalogue::GetProviderId()
{
    // It reports the same for every folder, so it is asked for that of one that is not there.
    return ZAXMatJsonFileProvider(QUuid::createUuid().toString()).GetProviderId();
}

QList<CatalogueRecord> Catalogue::ReadRecordsWith(ZAXMatDefinition::Type type, const QList<QByteArray>& names) const
{
    return (type == ZAXMatDefinition::Material ? m_materials : m_stockForms).ReadWith(names);
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
    std::ranges::transform(ReadMaterials(), std::back_inserter(materials), &CatalogueRecord::ToDefinition);
    SortRecords(materials);
    return materials;
}

QList<ZAXMatDefinition> Catalogue::GetStockForms(const QByteArray& materialKey) const
{
    QList<ZAXMatDefinition> stockForms = m_stockForms.GetAllOf(materialKey);
    SortRecords(stockForms);
    return stockForms;
}

qsizetype Catalogue::CountStockForms(const QByteArray& materialKey) const
{
    return m_stockForms.CountAllOf(materialKey);
}

void Catalogue::Records::Append(const CatalogueRecord& record)
{
    m_keys.append(record.GetKey());
    m_materialKeys.append(record.GetMaterialKey());
    m_records.append(record);
}

void Catalogue::Records::Append(const QByteArray& text, const QByteArray& key, const QByteArray& materialKey)
{
    m_texts.append(text);
    m_keys.append(key);
    m_materialKeys.append(materialKey);
}

void Catalogue::Records::KeepLast()
{
    QSet<QByteArray> keys;
    const QList<CatalogueRecord> all = m_records;
    QList<CatalogueRecord> kept;
    for (auto record = all.crbegin(); record != all.crend(); ++record) {
        const QByteArray key = record->GetKey();
        if (!keys.contains(key))
            kept.prepend(*record);
        keys.insert(key);
    }
    *this = Records();
    for (const CatalogueRecord& record : std::as_const(kept))
        Append(record);
}

CatalogueRecord Catalogue::Records::Read(qsizetype place) const
{
    return m_records.isEmpty() ? CatalogueRecord(QJsonDocument::fromJson(m_texts[place]).object()) : m_records[place];
}

const QList<CatalogueRecord>& Catalogue::Records::ReadAll() const
{
    if (m_records.isEmpty() && !m_texts.isEmpty()) {
        QList<CatalogueRecord> records;
        records.reserve(m_texts.size());
        for (qsizetype i = 0; i < m_texts.size(); ++i)
            records.append(Read(i));
        m_records = records;
    }
    return m_records;
}

QList<CatalogueRecord> Catalogue::Records::ReadWith(const QList<QByteArray>& names) const
{
    if (!m_records.isEmpty())
        return m_records;
    QList<CatalogueRecord> records;
    for (qsizetype i = 0; i < m_texts.size(); ++i) {
        const auto isNamed = [&](const QByteArray& name) { return m_texts[i].contains('"' + name + '"'); };
        if (std::ranges::all_of(names, isNamed))
            records.append(Read(i));
    }
    return records;
}

ZAXMatDefinition Catalogue::Records::Get(const QByteArray& key) const
{
    if (m_placesByKey.isEmpty()) {
        m_placesByKey.reserve(m_keys.size());
        for (qsizetype i = 0; i < m_keys.size(); ++i)
            m_placesByKey.insert(m_keys[i], i);
    }
    const auto place = m_placesByKey.constFind(key);
    return place != m_placesByKey.cend() ? Read(*place).ToDefinition() : ZAXMatDefinition();
}

QList<ZAXMatDefinition> Catalogue::Records::GetAllOf(const QByteArray& materialKey) const
{
    QList<ZAXMatDefinition> records;
    const QList<qsizetype> places = PlacesByMaterial().values(materialKey);
    for (const qsizetype place : places)
        records.append(Read(place).ToDefinition());
    return records;
}

qsizetype Catalogue::Records::CountAllOf(const QByteArray& materialKey) const
{
    return PlacesByMaterial().count(materialKey);
}

const QMultiHash<QByteArray, qsizetype>& Catalogue::Records::PlacesByMaterial() const
{
    if (m_placesByMaterial.isEmpty()) {
        m_placesByMaterial.reserve(m_materialKeys.size());
        for (qsizetype i = 0; i < m_materialKeys.size(); ++i)
            m_placesByMaterial.insert(m_materialKeys[i], i);
    }
    return m_placesByMaterial;
}

} // namespace zaxmat
