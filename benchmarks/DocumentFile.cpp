// What it costs to save and load a document, against the same fields through a bare QDataStream.

#include "Bench.h"
#include "Document.h"

#include "ZAXMatRoot.h"
#include "ZAXSysStartup.h"

#include <QBuffer>
#include <QCoreApplication>

using namespace bench;

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    ZAXSysStartup::Start();
    const BareDocument bare = MakeBareDocument(bench.Size(10000, 20));
    const QByteArray bareBytes = Save(bare);
    ZAXHostDocument document;
    Fill(document, bare);
    const QByteArray bytes = document.Encode();

    const QList<double> costs = bench.Interleave({[&] {
                                                      QBuffer buffer;
                                                      buffer.open(QIODevice::WriteOnly);
                                                      return Measure([&] { Require(document.Save(&buffer)); });
                                                  },
                                                  [&] { return Measure([&] { Keep(Save(bare).size()); }); },
                                                  [&] {
                                                      QBuffer buffer;
                                                      buffer.setData(bytes);
                                                      buffer.open(QIODevice::ReadOnly);
                                                      ZAXHostDocument loaded;
                                                      return Measure([&] { Require(loaded.Load(&buffer)); });
                                                  },
                                                  [&] {
                                                      BareDocument loaded;
                                                      return Measure([&] { loaded = Load(bareBytes); });
                                                  }},
                                                 7);
    bench.Add(QLatin1String("save a document"), {costs[0], costs[1]}, "ms", 1e3, 4.0);
    bench.Add(QLatin1String("load a document"), {costs[2], costs[3]}, "ms", 1e3, 4.0);
    return bench.ExitCode();
}
