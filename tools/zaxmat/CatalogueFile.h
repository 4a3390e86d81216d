#ifndef ZAXMAT_CATALOGUEFILE_H
#define ZAXMAT_CATALOGUEFILE_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace zaxmat {

struct CatalogueOptions
{
    /// The folder of the catalogue, or the materials.json in it; DefaultCatalogueDirectory() if empty.
    QString directory;
};

/// The folder for the program's data in the user's home.
QString DefaultCatalogueDirectory();

/// The materials.json that \a options name.
QString CatalogueFilePath(const CatalogueOptions& options);

/// What the catalogue's file holds.
/// \throws Failure (FileFailure) that says what is wrong with the file, and what to do, unless it is a file, as opposed
/// to a folder or a pipe, that can be read.
QByteArray ReadCatalogueFile(const QString& path);

/// The object that \a bytes, read from the file \a path, stand for.
/// \throws Failure (FileFailure) that says what is wrong, and where, when they are no JSON object.
QJsonObject ParseCatalogue(const QString& path, const QByteArray& bytes);

} // namespace zaxmat

#endif
