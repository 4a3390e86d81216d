#include "CatalogueFloor.h"

#include "Catalogue.h"

#include "ZAXMatProviderBase.h"

#include <QFile>

#include <algorithm>

#include <unistd.h>

namespace bench {

QJsonDocument Parse(const CatalogueFile& file)
{
    return QJsonDocument::fromJson(file.Read());
}

void Write(const QString& path, const QJsonDocument& tree)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(tree.toJson(QJsonDocument::Indented));
    file.flush();
    ::fsync(file.handle());
}

MaterialTables::MaterialTables(const ZAXMatProviderBase& provider)
{
    const QList<QByteArray> keys = provider.GetMaterialKeys();
    for (const QByteArray& key : keys) {
        const ZAXMatDefinition material = provider.GetMaterial(key);
        QHash<QByteArray, QVariant> table;
        const QList<QByteArray> properties = material.GetDefinedProperties(QByteArray());
        for (const QByteArray& property : properties)
            table.insert(property, material.GetValue(property));
        m_tables.append(table);
    }
}

qsizetype MaterialTables::Count(const QString& type, double thickness) const
{
    const QByteArray typeName("materialType");
    const QByteArray thicknessName("thickness");
    const QVariant typeWanted(type);
    const QVariant thicknessWanted(thickness);
    return std::ranges::count_if(m_tables, [&](const QHash<QByteArray, QVariant>& table) {
        const bool isType = *table.constFind(typeName) == typeWanted;
        const bool isThickness = *table.constFind(thicknessName) == thicknessWanted;
        return isType && isThickness;
    });
}

} // namespace bench
