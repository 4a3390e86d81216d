// What it costs to write a catalogue back, against printing a ready JSON tree, writing that and waiting for the disk.

#include "Bench.h"
#include "Catalogue.h"
#include "CatalogueFloor.h"

#include "ZAXMatJsonFileProvider.h"

#include <QCoreApplication>
#include <QJsonDocument>

using namespace bench;

namespace {

void ReadAll(const ZAXMatJsonFileProvider& provider)
{
    const QByteArray property("comment");
    const QList<QByteArray> materials = provider.GetMaterialKeys();
    for (const QByteArray& material : materials) {
        Keep(provider.GetMaterial(material).GetValue(property));
        const QList<QByteArray> packagings = provider.GetPackagingKeys(material);
        for (const QByteArray& packaging : packagings)
            Keep(provider.GetPackaging(packaging).GetValue(property));
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    const int materials = bench.Size(10000, 20);
    const CatalogueFile file(materials);
    const CatalogueFile other(1);
    const QJsonDocument tree(MakeCatalogue(materials));
    ZAXMatJsonFileProvider provider(file.Directory());

    const auto commit = [&](bool areAllRead, double (*clock)()) {
        // Has the file read again, as it is after a Commit().
        provider.GetMaterialKeys();
        if (areAllRead)
            ReadAll(provider);
        return Measure([&] { provider.Commit(); }, clock);
    };
    const auto write = [&](double (*clock)()) { return Measure([&] { Write(other.Path(), tree); }, clock); };
    const QList<double> costs =
        bench.Interleave({[&] { return commit(true, CpuSeconds); }, [&] { return write(CpuSeconds); },
                          [&] { return commit(false, CpuSeconds); }, [&] { return write(CpuSeconds); },
                          [&] { return commit(true, WallSeconds); }, [&] { return write(WallSeconds); }},
                         7);
    bench.Add(QLatin1String("commit, all records read"), {costs[0], costs[1]}, "ms", 1e3, 1.5);
    bench.Add(QLatin1String("commit, no record read"), {costs[2], costs[3]}, "ms", 1e3, 1.5);
    bench.Add(QLatin1String("commit, all records read, on the wall"), {costs[4], costs[5]}, "ms", 1e3, 1.5);
    return bench.ExitCode();
}
