// What it costs to look for a type and thickness in a warm cache, per material, against two look-ups in the hash of a
// material's values and two comparisons.

#include "Bench.h"
#include "Catalogue.h"
#include "CatalogueFloor.h"

#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"

#include <QCoreApplication>

#include <memory>

using namespace bench;

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    const CatalogueFile file(bench.Size(10000, 20));
    const ZAXMatJsonFileProvider provider(file.Directory());
    const std::unique_ptr<ZAXMatProviderCache> cache(ZAXMatProviderCache::GetCache(provider.GetProviderId()));

    const MaterialTables tables(*cache);
    const QString type = QLatin1String("DC01");
    const double thickness = 2.5;
    const auto find = [&] { return Measure([&] { Keep(cache->FindMaterials(type, thickness).size()); }); };
    const auto compare = [&] { return Measure([&] { Keep(tables.Count(type, thickness)); }); };
    const Cost cost = bench.Interleave(find, compare, 31);
    bench.Add(QLatin1String("find by type and thickness, per material"), cost, "ns",
              1e9 / static_cast<double>(cache->GetMaterialKeys().size()), 2.5);
    return bench.ExitCode();
}
