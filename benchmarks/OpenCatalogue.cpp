// What it costs to open a catalogue, and to read every record of it, against reading and parsing its file.

#include "Bench.h"
#include "Catalogue.h"
#include "CatalogueFloor.h"

#include "ZAXMatJsonFileProvider.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

using namespace bench;

namespace {

void ListKeys(const ZAXMatJsonFileProvider& provider)
{
    const QList<QByteArray> materials = provider.GetMaterialKeys();
    for (const QByteArray& material : materials)
        Keep(provider.GetPackagingKeys(material).size());
}

void ReadRecord(const ZAXMatDefinition& record, const QByteArray& property)
{
    Keep(record.GetValue(property));
}

void ReadAll(const ZAXMatJsonFileProvider& provider)
{
    const QByteArray thickness("thickness");
    const QByteArray length("length");
    const QList<QByteArray> materials = provider.GetMaterialKeys();
    for (const QByteArray& material : materials) {
        ReadRecord(provider.GetMaterial(material), thickness);
        const QList<QByteArray> packagings = provider.GetPackagingKeys(material);
        for (const QByteArray& packaging : packagings)
            ReadRecord(provider.GetPackaging(packaging), length);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    const CatalogueFile file(bench.Size(10000, 20));
    const auto parse = [&] { return Measure([&] { Keep(Parse(file).object().size()); }); };
    const auto open = [&] {
        return Measure([&] {
            const ZAXMatJsonFileProvider provider(file.Directory());
            Keep(provider.GetMaterialKeys().size());
        });
    };
    const auto list = [&] {
        return Measure([&] {
            const ZAXMatJsonFileProvider provider(file.Directory());
            ListKeys(provider);
        });
    };
    const auto read = [&] {
        return Measure([&] {
            const ZAXMatJsonFileProvider provider(file.Directory());
            ReadAll(provider);
        });
    };
    const QList<double> costs = bench.Interleave({open, parse, list, parse, read, parse}, 7);
    bench.Add(QLatin1String("open a catalogue, materials listed"), {costs[0], costs[1]}, "ms", 1e3, 1.5);
    bench.Add(QLatin1String("open a catalogue, all keys listed"), {costs[2], costs[3]}, "ms", 1e3, 1.5);
    bench.Add(QLatin1String("open a catalogue, every record read once"), {costs[4], costs[5]}, "ms", 1e3, 3.0);
    return bench.ExitCode();
}
