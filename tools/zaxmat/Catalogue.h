#ifndef ZAXMAT_CATALOGUE_H
#define ZAXMAT_CATALOGUE_H

#include "CatalogueFile.h"
#include "CatalogueRecord.h"

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QMultiHash>
#include <QString>

namespace zaxmat {

/// What the materials.json of a folder held when it was read, record by record. It says the same as the library's
/// provider for that folder, without making a ZAXMatDefinition of what nobody asks for.
class Catalogue
{
public:
    /// Reads the catalogue. The file is there, can be read and holds a JSON object then: what a provider takes for
    /// empty, and would replace at the next change, is never worked on.
    /// \throws Failure (FileFailure) that says what is wrong with the file, and where.
    explicit Catalogue(const CatalogueOptions& options);
    /// The catalogue \a root, read from the file \a path.
    Catalogue(const QString& path, const QJsonObject& root);

    /// The path of the materials.json.
    QString GetFilePath() const { return m_filePath; }
    /// The id that the library's provider of such a file reports.
    static QByteArray GetProviderId();

    /// All materials, and all stock forms, in the order of the file. Of several records of one key the last one counts.
    const QList<CatalogueRecord>& ReadMaterials() const { return m_materials.records; }
    const QList<CatalogueRecord>& ReadStockForms() const { return m_stockForms.records; }

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
    /// Records, and the place of each by its key as soon as somebody asks for it.
    struct Records
    {
        ZAXMatDefinition Get(const QByteArray& key) const;

        QList<CatalogueRecord> records;
        mutable QHash<QByteArray, qsizetype> places;
    };

    QString m_filePath;
    Records m_materials;
    Records m_stockForms;
    mutable QMultiHash<QByteArray, qsizetype> m_stockFormsOf;
    void PlaceStockForms() const;
};

} // namespace zaxmat

#endif
