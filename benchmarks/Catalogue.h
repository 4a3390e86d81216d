#ifndef CATALOGUE_H
#define CATALOGUE_H

#include <QJsonObject>
#include <QString>
#include <QTemporaryDir>

namespace bench {

/// A catalogue as a shop keeps it, the same one every time: each material with three stock forms, every record with the
/// pairs that ZAXMatJsonFileProvider defines for a new one, those that nobody filled in without a value.
QJsonObject MakeCatalogue(int materials);

/// A materials.json with MakeCatalogue() in a folder of its own, as long as this lives.
class CatalogueFile
{
public:
    explicit CatalogueFile(int materials);

    QString Directory() const;
    QString Path() const;
    QByteArray Read() const;

private:
    QTemporaryDir m_directory;
};

} // namespace bench

#endif
