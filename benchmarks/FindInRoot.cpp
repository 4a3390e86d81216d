// What it costs to find the last of many materials under the materials root, against the same comparison over a vector.

#include "Bench.h"
#include "Document.h"

#include "ZAXFeatContainer.h"
#include "ZAXHostUndo.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatRoot.h"
#include "ZAXSysStartup.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace bench;

namespace {

struct Entry
{
    QByteArray providerId;
    QByteArray remoteKey;
    QString materialType;
    double thickness;
};

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    ZAXSysStartup::Start();
    BareDocument bare = MakeBareDocument(bench.Size(10000, 20));
    bare.last().thickness = 99;
    ZAXHostDocument document;
    ZAXMatRoot* const root = Fill(document, bare);
    std::vector<Entry> entries;
    for (const BareMaterial& material : std::as_const(bare))
        entries.push_back({material.providerId, material.remoteKey, material.materialType, material.thickness});
    const Entry& last = entries.back();
    const auto find = [&](auto isWanted) {
        return [&entries, isWanted] { return Measure([&] { Keep(*std::ranges::find_if(entries, isWanted)); }); };
    };
    const auto isOfThickness = [&](const Entry& entry) { return std::abs(entry.thickness - last.thickness) < 0.001; };

    const Cost byKey = bench.Interleave(
        [&] { return Measure([&] { Keep(*root->GetMaterial(last.providerId, last.remoteKey, last.thickness)); }); },
        find([&](const Entry& entry) {
            return entry.providerId == last.providerId && entry.remoteKey == last.remoteKey && isOfThickness(entry);
        }),
        31);
    bench.Add(QLatin1String("find a material of the document by key"), byKey, "us", 1e6, 5.0);
    const Cost byType = bench.Interleave(
        [&] { return Measure([&] { Keep(*root->GetMaterial(last.materialType, last.thickness)); }); },
        find([&](const Entry& entry) { return entry.materialType == last.materialType && isOfThickness(entry); }), 31);
    bench.Add(QLatin1String("find a material of the document by type"), byType, "us", 1e6, 5.0);

    document.GetUndo().SetContainer(nullptr);
    ZAXFeatContainer* const container = document.GetContainer();
    ZAXFeatObject* added = nullptr;
    const auto findByKey = [&] {
        return Measure([&] { Keep(*root->GetMaterial(last.providerId, last.remoteKey, last.thickness)); });
    };
    const QList<double> changed = bench.Interleave({[&] {
                                                        added = container->CreateInstance("ZAXMatMaterial", root);
                                                        return findByKey();
                                                    },
                                                    [&] {
                                                        added->Remove();
                                                        return findByKey();
                                                    }},
                                                   31);
    bench.Add(QLatin1String("find a material when one was added"), {changed[0], byKey.floor}, "us", 1e6, 5.0);
    bench.Add(QLatin1String("find a material when one was removed"), {changed[1], byKey.floor}, "us", 1e6, 5.0);
    return bench.ExitCode();
}
