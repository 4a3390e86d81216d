// What it costs to set a property of a feature, with its step of undo and its signal, against pushing an empty step and
// emitting a signal, both to one slot that is connected directly.

#include "Bench.h"
#include "Document.h"

#include "ZAXHostUndo.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatRoot.h"
#include "ZAXSysStartup.h"

#include <QColor>
#include <QCoreApplication>
#include <QUndoStack>

using namespace bench;

namespace {

class Sender : public QObject
{
    Q_OBJECT

signals:
    void TextChanged(const QString& text);
    void NumberChanged(double number);
    void ColorChanged(const QColor& color);
};

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    ZAXSysStartup::Start();
    const int count = bench.Size(5000, 10);

    ZAXHostDocument document;
    ZAXMatMaterial* const material = Fill(document, MakeBareDocument(10))->GetMaterials().constFirst();
    Sender sender;
    int calls = 0;
    const auto listen = [&calls](auto* object, auto signal) {
        QObject::connect(object, signal, object, [&calls] { ++calls; });
    };
    listen(material, &ZAXMatMaterial::CommentChanged);
    listen(material, &ZAXMatMaterial::DensityChanged);
    listen(material, &ZAXMatMaterial::NestingColorChanged);
    listen(&sender, &Sender::TextChanged);
    listen(&sender, &Sender::NumberChanged);
    listen(&sender, &Sender::ColorChanged);
    QUndoStack stack;
    const QString texts[] = {QLatin1String("One"), QLatin1String("Other")};
    const double numbers[] = {1, 2};
    const QColor colors[] = {Qt::red, Qt::blue};

    const auto set = [&](auto change) {
        return [&, change] {
            Require(document.GetUndo().Clear());
            return Measure([&] {
                for (int i = 0; i < count; ++i)
                    change(i % 2);
            });
        };
    };
    const auto push = [&](auto tell) {
        return [&, tell] {
            stack.clear();
            return Measure([&] {
                for (int i = 0; i < count; ++i) {
                    stack.push(new QUndoCommand);
                    tell(i % 2);
                }
            });
        };
    };
    const auto costs = bench.Interleave({set([&](int i) { material->SetComment(texts[i]); }),
                                         push([&](int i) { emit sender.TextChanged(texts[i]); }),
                                         set([&](int i) { material->SetDensity(numbers[i]); }),
                                         push([&](int i) { emit sender.NumberChanged(numbers[i]); }),
                                         set([&](int i) { material->SetNestingColor(colors[i]); }),
                                         push([&](int i) { emit sender.ColorChanged(colors[i]); })},
                                        31);
    const double scale = 1e6 / count;
    bench.Add(QLatin1String("set a property, with undo and signal"), {costs[0], costs[1]}, "us", scale, 5.0);
    bench.Add(QLatin1String("set a remembered property"), {costs[2], costs[3]}, "us", scale, 5.0);
    bench.Add(QLatin1String("set a colour"), {costs[4], costs[5]}, "us", scale, 5.0);
    return bench.ExitCode();
}

#include "SetProperty.moc"
