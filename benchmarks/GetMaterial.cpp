// What it costs to get a record: from the provider of an unchanged file, against asking the system for the file's time,
// and from a warm cache, against finding the key in a table.

#include "Bench.h"
#include "Catalogue.h"

#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>

#include <algorithm>
#include <memory>
#include <random>

#include <sys/stat.h>

using namespace bench;

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    const CatalogueFile file(bench.Size(10000, 20));
    const ZAXMatJsonFileProvider provider(file.Directory());
    const std::unique_ptr<ZAXMatProviderCache> cache(ZAXMatProviderCache::GetCache(provider.GetProviderId()));
    QList<QByteArray> keys = provider.GetMaterialKeys();
    const double count = static_cast<double>(keys.size());

    QHash<QByteArray, int> table;
    for (const QByteArray& key : std::as_const(keys)) {
        table.insert(key, static_cast<int>(table.size()));
        Keep(cache->GetMaterial(key).IsValid());
    }
    // Not in the order in which they lie in memory.
    std::ranges::shuffle(keys, std::mt19937(1));
    const QByteArray path = QFile::encodeName(file.Path());

    const Cost fromProvider = bench.Interleave(
        [&] {
            return Measure([&] {
                for (const QByteArray& key : std::as_const(keys))
                    Keep(provider.GetMaterial(key));
            });
        },
        [&] {
            return Measure([&] {
                for (qsizetype i = 0; i < keys.size(); ++i) {
                    struct stat status
                    {
                    };
                    Keep(::stat(path.constData(), &status));
                }
            });
        },
        15);
    bench.Add(QLatin1String("get a record of the provider"), fromProvider, "ns", 1e9 / count, 2.0);

    const Cost fromCache = bench.Interleave(
        [&] {
            return Measure([&] {
                for (const QByteArray& key : std::as_const(keys))
                    Keep(cache->GetMaterial(key));
            });
        },
        [&] {
            return Measure([&] {
                for (const QByteArray& key : std::as_const(keys))
                    Keep(table.value(key));
            });
        },
        31);
    bench.Add(QLatin1String("get a record of the warm cache"), fromCache, "ns", 1e9 / count, 2.0);
    return bench.ExitCode();
}
