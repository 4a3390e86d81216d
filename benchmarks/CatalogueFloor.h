#ifndef CATALOGUEFLOOR_H
#define CATALOGUEFLOOR_H

#include <QByteArray>
#include <QHash>
#include <QJsonDocument>
#include <QList>
#include <QString>
#include <QVariant>

class ZAXMatProviderBase;

namespace bench {

class CatalogueFile;

/// The least conceivable code for what is done with a whole catalogue.

/// Reads and parses a file.
QJsonDocument Parse(const CatalogueFile& file);

/// Prints a tree that is there and writes it to the disk.
void Write(const QString& path, const QJsonDocument& tree);

/// The values of all materials of a catalogue, a hash for each.
class MaterialTables
{
public:
    explicit MaterialTables(const ZAXMatProviderBase& provider);

    /// How many are of a type and thickness: two look-ups and two comparisons for each.
    qsizetype Count(const QString& type, double thickness) const;

private:
    QList<QHash<QByteArray, QVariant>> m_tables;
};

} // namespace bench

#endif
