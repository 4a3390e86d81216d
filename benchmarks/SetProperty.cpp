// What it costs to set a property of a feature, with its step of undo and its signal, against pushing an empty step and
// emitting a signal.

#include "Bench.h"
#include "Document.h"

#include "ZAXHostUndo.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatRoot.h"
#include "ZAXSysStartup.h"

#include <QCoreApplication>
#include <QUndoStack>

using namespace bench;

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    ZAXSysStartup::Start();
    const int count = bench.Size(5000, 10);

    ZAXHostDocument document;
    ZAXMatMaterial* const material = Fill(document, MakeBareDocument(10))->GetMaterials().constFirst();
    int calls = 0;
    QObject::connect(material, &ZAXMatMaterial::CommentChanged, material, [&calls] { ++calls; });
    QObject other;
    QObject::connect(&other, &QObject::objectNameChanged, &other, [&calls] { ++calls; });
    QUndoStack stack;
    const QString texts[] = {QLatin1String("One"), QLatin1String("Other")};

    const auto set = [&] {
        Require(document.GetUndo().Clear());
        return Measure([&] {
            for (int i = 0; i < count; ++i)
                material->SetComment(texts[i % 2]);
        });
    };
    const auto push = [&] {
        stack.clear();
        return Measure([&] {
            for (int i = 0; i < count; ++i) {
                stack.push(new QUndoCommand);
                other.setObjectName(texts[i % 2]);
            }
        });
    };
    const Cost cost = bench.Interleave(set, push, 15);
    bench.Add(QLatin1String("set a property, with undo and signal"), cost, "us", 1e6 / count, 5.0);
    return bench.ExitCode();
}
