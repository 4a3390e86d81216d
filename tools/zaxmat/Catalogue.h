#ifndef ZAXMAT_CATALOGUE_H
#define ZAXMAT_CATALOGUE_H

#include "CatalogueFile.h"
#include "CatalogueRecord.h"
#include "RecordScan.h"

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QMultiHash>
#include <QString>

#include <optional>
#include <vector>

namespace zaxmat {

/// What the materials.json of a folder held when it was read, record by record. It says the same as the library's
/// provider for that folder, without making a ZAXMatDefinition of what nobody asks for; where it can, it does not even
/// parse such records.
class Catalogue
{
public:
    /// Reads the catalogue. The file is there, can be read and holds a JSON object then: what a provider takes for
    /// empty, and would replace at the next change, is never worked on.
    /// \throws Failure (FileFailure) that says what is wrong with the file, and where.
    explicit Catalogue(const CatalogueOptions& options);
    /// The catalogue \a bytes, read from the file \a path. \throws Failure (FileFailure) as above.
    Catalogue(const QString& path, const QByteArray& bytes);
    /// The catalogue \a root, read from the file \a path.
    Catalogue(const QString& path, const QJsonObject& root);

    /// Where the records stand in the text that the catalogue was made of; nothing unless they could be scanned.
    const std::optional<std::vector<RecordPlace>>& GetPlaces() const { return m_places; }

    /// The path of the materials.json.
    QString GetFilePath() const { return m_filePath; }
    /// The id that the library's provider of such a file reports.
    static QByteArray GetProviderId();

    /// All materials, and all stock forms, in the order of the file. Of several records of one key the last one counts.
    const QList<CatalogueRecord>& ReadMaterials() const { return m_materials.ReadAll(); }
    const QList<CatalogueRecord>& ReadStockForms() const { return m_stockForms.ReadAll(); }
    /// At least those records of that type that hold all of the texts \a names as names of properties or as values.
    /// They are of ASCII without control characters, quotation marks, backslashes and slashes.
    QList<CatalogueRecord> ReadRecordsWith(ZAXMatDefinition::Type type, const QList<QByteArray>& names) const;

    /// The number of materials, and of all stock forms.
    qsizetype CountMaterials() const { return m_materials.Count(); }
    qsizetype CountStockForms() const { return m_stockForms.Count(); }

    /// The material, or the stock form, under \a key; an invalid record when there is none.
    ZAXMatDefinition GetMaterial(const QByteArray& key) const;
    ZAXMatDefinition GetStockForm(const QByteArray& key) const;

    /// All materials, by name and then by thickness.
    QList<ZAXMatDefinition> GetMaterials() const;
    /// The stock forms of the material, by name.
    QList<ZAXMatDefinition> GetStockForms(const QByteArray& materialKey) const;
    /// The number of stock forms of the material.
    qsizetype CountStockForms(const QByteArray& materialKey) const;

private:
    /// Records of one type. What is asked for often is made the first time.
    class Records
    {
    public:
        /// A record that has been read.
        void Append(const CatalogueRecord& record);
        /// A record that is to be read from \a text when somebody asks. All three live as long as the catalogue.
        void Append(const QByteArray& text, const QByteArray& key, const QByteArray& materialKey);
        /// Takes records out that a later one of the same key replaces.
        void KeepLast();

        qsizetype Count() const { return m_keys.size(); }
        const QList<CatalogueRecord>& ReadAll() const;
        QList<CatalogueRecord> ReadWith(const QList<QByteArray>& names) const;
        ZAXMatDefinition Get(const QByteArray& key) const;
        QList<ZAXMatDefinition> GetAllOf(const QByteArray& materialKey) const;
        qsizetype CountAllOf(const QByteArray& materialKey) const;

    private:
        CatalogueRecord Read(qsizetype place) const;
        const QMultiHash<QByteArray, qsizetype>& PlacesByMaterial() const;

        QList<QByteArray> m_keys;
        QList<QByteArray> m_materialKeys;
        /// Empty when all records have been read from the start.
        QList<QByteArray> m_texts;
        mutable QList<CatalogueRecord> m_records;
        mutable QHash<QByteArray, qsizetype> m_placesByKey;
        mutable QMultiHash<QByteArray, qsizetype> m_placesByMaterial;
    };

    bool TakeScanned();
    void TakeParsed(const QJsonObject& root);

    QString m_filePath;
    QByteArray m_bytes;
    std::optional<std::vector<RecordPlace>> m_places;
    Records m_materials;
    Records m_stockForms;
};

} // namespace zaxmat

#endif
