#ifndef ZAXMAT_CATALOGUE_H
#define ZAXMAT_CATALOGUE_H

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

class ZAXMatDefinition;
class ZAXMatJsonFileProvider;
class ZAXMatProviderCache;

namespace zaxmat {

struct CatalogueOptions
{
    /// The folder of the catalogue; DefaultCatalogueDirectory() if empty.
    QString directory;
};

/// The folder for the program's data in the user's home.
QString DefaultCatalogueDirectory();

/// An open catalogue: the materials.json of a folder, read through the cache of its provider. There is one at a time.
class Catalogue
{
public:
    /// Opens the catalogue. The file is there, can be read and holds a JSON object then: what a provider takes for
    /// empty, and would replace at the next change, is never worked on.
    /// \throws Failure (FileFailure) that says what is wrong with the file, and where.
    explicit Catalogue(const CatalogueOptions& options);
    ~Catalogue();
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    /// The path of the materials.json.
    QString GetFilePath() const;
    QByteArray GetProviderId() const;

    /// All materials, by name and then by thickness.
    /// \throws Failure (FileFailure) when the file is changed meanwhile.
    QList<ZAXMatDefinition> GetMaterials() const;
    /// The stock forms of the material, by name.
    /// \throws Failure (FileFailure) when the file is changed meanwhile.
    QList<ZAXMatDefinition> GetStockForms(const QByteArray& materialKey) const;
    /// The number of stock forms of the material.
    qsizetype CountStockForms(const QByteArray& materialKey) const;

private:
    QString m_filePath;
    // The cache goes first, since it takes leave of its provider.
    std::unique_ptr<ZAXMatJsonFileProvider> m_provider;
    std::unique_ptr<ZAXMatProviderCache> m_cache;
};

} // namespace zaxmat

#endif
