// What an open catalogue takes in memory, per record, against the record in compact JSON.

#include "Bench.h"
#include "Catalogue.h"

#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <malloc.h>

#include <memory>

using namespace bench;

namespace {

double AllocatedBytes()
{
    malloc_trim(0);
    const struct mallinfo2 memory = mallinfo2();
    return static_cast<double>(memory.uordblks + memory.hblkhd);
}

/// Reads every value of every record.
void ReadAll(const ZAXMatProviderBase& provider)
{
    const auto readRecord = [](const ZAXMatDefinition& record) {
        const QList<QByteArray> properties = record.GetDefinedProperties(QByteArray());
        for (const QByteArray& property : properties)
            Keep(record.GetValue(property));
    };
    const QList<QByteArray> materials = provider.GetMaterialKeys();
    for (const QByteArray& material : materials) {
        readRecord(provider.GetMaterial(material));
        const QList<QByteArray> packagings = provider.GetPackagingKeys(material);
        for (const QByteArray& packaging : packagings)
            readRecord(provider.GetPackaging(packaging));
    }
}

double CompactBytesPerRecord(const QJsonObject& root)
{
    double bytes = 0;
    for (auto member = root.begin(); member != root.end(); ++member)
        bytes += static_cast<double>(QJsonDocument(member.value().toObject()).toJson(QJsonDocument::Compact).size());
    return bytes / static_cast<double>(root.size());
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    const int materials = bench.Size(10000, 20);
    const CatalogueFile file(materials);
    const double records = 4.0 * materials;
    const double compact = CompactBytesPerRecord(QJsonDocument::fromJson(file.Read()).object());

    const double before = AllocatedBytes();
    const auto provider = std::make_unique<ZAXMatJsonFileProvider>(file.Directory());
    const double opened = AllocatedBytes();
    ReadAll(*provider);
    const double read = AllocatedBytes();
    const std::unique_ptr<ZAXMatProviderCache> cache(ZAXMatProviderCache::GetCache(provider->GetProviderId()));
    ReadAll(*cache);
    const double cached = AllocatedBytes();

    bench.Add(QLatin1String("memory per record, opened"), {(opened - before) / records, compact}, "bytes", 1, 4.0);
    bench.Add(QLatin1String("memory per record, all read"), {(read - before) / records, compact}, "bytes", 1, 4.0);
    bench.Add(QLatin1String("memory per record, all read through the cache"), {(cached - before) / records, compact},
              "bytes", 1, 4.0);
    return bench.ExitCode();
}
