// What it costs to get and set a value of a record and to copy it, against a bare two-level hash and a shared pointer.

#include "Bench.h"

#include "ZAXMatDefinition.h"

#include <QCoreApplication>
#include <QHash>
#include <QSharedData>

using namespace bench;

namespace {

using Table = QHash<QByteArray, QHash<QByteArray, QVariant>>;

struct Shared : QSharedData
{
    Table values;
};

const QList<QByteArray>& Properties()
{
    static const QList<QByteArray> properties{
        "materialId", "isMaterialIdCustomized", "materialType", "thickness", "category", "density",
        "comment",    "materialExtensions"};
    return properties;
}

QVariant ValueOf(const QByteArray& property)
{
    if (property == "thickness" || property == "density")
        return 7.85;
    return property.endsWith('s') || property.startsWith('i') ? QVariant() : QVariant(QString::fromLatin1(property));
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Bench bench(QCoreApplication::arguments());
    const int count = bench.Size(200000, 100);
    const QByteArray base;
    ZAXMatDefinition record;
    Table table;
    for (const QByteArray& property : Properties()) {
        record.SetValue(property, ValueOf(property), base);
        table[base].insert(property, ValueOf(property));
    }
    const QSharedDataPointer<Shared> pointer(new Shared);

    const auto repeat = [count](auto work) {
        return [count, work] {
            return Measure([&] {
                for (int i = 0; i < count; ++i)
                    work(Properties()[i % 8], i);
            });
        };
    };
    const auto add = [&](const char* name, auto value, auto floor) {
        const Cost cost = bench.Interleave(repeat(value), repeat(floor), 31);
        bench.Add(QString::fromUtf8(name), cost, "ns", 1e9 / count, 1.3);
    };
    add(
        "get a value of a record", [&](const QByteArray& property, int) { Keep(record.GetValue(property, base)); },
        [&](const QByteArray& property, int) {
            const auto values = table.constFind(base);
            Keep(values != table.constEnd() ? values->value(property) : QVariant());
        });
    add(
        "set a value of a record", [&](const QByteArray& property, int i) { Keep(record.SetValue(property, i, base)); },
        [&](const QByteArray& property, int i) {
            const auto values = table.constFind(base);
            Keep(values != table.constEnd() && values->contains(property));
            table[base].insert(property, i);
        });
    add(
        "copy a record", [&](const QByteArray&, int) { Keep(ZAXMatDefinition(record)); },
        [&](const QByteArray&, int) { Keep(QSharedDataPointer<Shared>(pointer)); });
    return bench.ExitCode();
}
