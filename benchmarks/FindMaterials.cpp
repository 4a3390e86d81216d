// What it costs to look for a type and thickness in a warm cache, per material, against two look-ups in the hash of a
// material's values and two comparisons.

#include "Bench.h"
#include "Catalogue.h"

#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"

#include <QCoreApplication>
#include <QHash>

#include <memory>

using namespace bench;

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    const CatalogueFile file(bench.Size(10000, 20));
    const ZAXMatJsonFileProvider provider(file.Directory());
    const std::unique_ptr<ZAXMatProviderCache> cache(ZAXMatProviderCache::GetCache(provider.GetProviderId()));

    QList<QHash<QByteArray, QVariant>> tables;
    const QList<QByteArray> keys = cache->GetMaterialKeys();
    for (const QByteArray& key : keys) {
        const ZAXMatDefinition material = cache->GetMaterial(key);
        QHash<QByteArray, QVariant> table;
        const QList<QByteArray> properties = material.GetDefinedProperties(QByteArray());
        for (const QByteArray& property : properties)
            table.insert(property, material.GetValue(property));
        tables.append(table);
    }

    const QString type = QLatin1String("DC01");
    const double thickness = 2.5;
    const auto find = [&] { return Measure([&] { Keep(cache->FindMaterials(type, thickness).size()); }); };
    const auto compare = [&] {
        return Measure([&] {
            const QByteArray typeName("materialType");
            const QByteArray thicknessName("thickness");
            const QVariant typeWanted(type);
            const QVariant thicknessWanted(thickness);
            qsizetype found = 0;
            for (const auto& table : std::as_const(tables)) {
                const bool isType = *table.constFind(typeName) == typeWanted;
                const bool isThickness = *table.constFind(thicknessName) == thicknessWanted;
                found += isType && isThickness ? 1 : 0;
            }
            Keep(found);
        });
    };
    const Cost cost = bench.Interleave(find, compare, 31);
    bench.Add(QLatin1String("find by type and thickness, per material"), cost, "ns",
              1e9 / static_cast<double>(keys.size()), 2.5);
    return bench.ExitCode();
}
