#include "ZAXMatDefinition.h"
#include "ZAXMatExtensionPlugin.h"
#include "ZAXMatMaterialProviderManager.h"
#include "ZAXMatProvider.h"
#include "ZAXMatProviderCache.h"
#include "ZAXMatTestDocument.h"
#include "ZAXSysAbstractEnumLocalization.h"
#include "ZAXSysValue.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaType>
#include <QTest>

#include <array>
#include <functional>
#include <latch>
#include <thread>
#include <vector>

// What may be used from several threads at once: records, each by one thread, however many copies share their data; and
// whatever is made when it is first asked for.

namespace {

/// Runs \a work in so many threads, which start together. Each is told its number.
void RunTogether(int count, const std::function<void(int)>& work)
{
    std::latch start(count);
    std::vector<std::jthread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&work, &start, number] {
            start.arrive_and_wait();
            work(number);
        });
    }
}

ZAXMatDefinition Record()
{
    ZAXMatDefinition record;
    record.SetKey("key");
    record.SetName(Text("Steel"));
    record.SetValue("thickness", 2.5);
    record.SetValue("comment", Text("from the rack ø"));
    record.SetValue("pressure", QVariant(), "Gas");
    record.Commit();
    return record;
}

/// One thread's work on its own copy; \a number says how it differs from the others'.
void Change(ZAXMatDefinition& record, int number)
{
    record.SetName(QString::number(number));
    record.SetValue("thickness", number);
    record.SetValue("own", number, QByteArray::number(number % 3));
    record.RemoveAllowedProperty("Gas", "pressure");
    record.AddAllowedProperty("Gas", QByteArray::number(number));
}

} // namespace

class tst_threads : public QObject
{
    Q_OBJECT

private slots:
    void whatIsMadeOnFirstUseIsMadeOnce();
    void copiesOfARecordAreChangedInTheirThreads();
    void aRecordIsReadByAllThreads();
    void copiesComeAndGoInAllThreads();
    void recordsOfOneKindAreReadFromJsonInAllThreads();
};

// First, so that nothing has been used before. Only the root comes from the host, which would ask a parent what it
// allows.
void tst_threads::whatIsMadeOnFirstUseIsMadeOnce()
{
    ZAXTestDocument document;
    const ZAXMatRoot* const root = document.root;
    auto* const material = new ZAXMatMaterial(static_cast<ZAXFeatObject*>(document.root));
    const auto* const packaging = new ZAXMatPackaging(static_cast<ZAXFeatObject*>(material));
    std::array<QStringList, 4> found;
    RunTogether(int(found.size()), [&](int number) {
        QStringList& lines = found.at(size_t(number));
        lines.append(QString::number(ZAXMatProvider::GetProviders().size()));
        lines.append(QString::number(ZAXMatProviderCache::GetCaches().size()));
        lines.append(QString::number(ZAXMatExtensionPlugin::GetPlugins().size()));
        lines.append(QString::number(ZAXMatMaterialProviderManager::GetHash().size()));
        lines.append(QString::number(material->IsChildAllowed(&ZAXMatPackaging::staticMetaObject)));
        lines.append(QString::number(packaging->IsChildAllowed(&ZAXTestTrim::staticMetaObject)));
        lines.append(QString::number(root->IsChildAllowed(&ZAXMatMaterial::staticMetaObject)));
        const int form = QMetaType::fromType<ZAXMatPackaging::Form>().id();
        lines.append(QString::number(ZAXSysAbstractEnumLocalization::GetValues(form).size()));
        lines.append(QString::number(ZAXSysValue::FromString(ZAXSysQuantity::Length, Text("1 in")).value_or(0)));
    });
    for (const QStringList& lines : found) {
        QCOMPARE(lines, found.front());
        QCOMPARE(lines.mid(4, 3), QStringList({Text("1"), Text("1"), Text("1")}));
        QCOMPARE(lines.constLast(), Text("25.4"));
    }
}

void tst_threads::copiesOfARecordAreChangedInTheirThreads()
{
    const ZAXMatDefinition original = Record();
    std::vector<ZAXMatDefinition> copies(4, original);
    RunTogether(int(copies.size()), [&](int number) {
        ZAXMatDefinition& own = copies.at(size_t(number));
        for (int i = 0; i < 500; ++i) {
            Change(own, number + i);
            own.Revert();
        }
        Change(own, number);
    });
    QCOMPARE(original, Record());
    QVERIFY(!original.IsChanged());
    for (int number = 0; number < int(copies.size()); ++number) {
        ZAXMatDefinition expected = Record();
        Change(expected, number);
        QCOMPARE(copies.at(size_t(number)), expected);
        QVERIFY(copies.at(size_t(number)).IsChanged());
    }
}

void tst_threads::aRecordIsReadByAllThreads()
{
    const ZAXMatDefinition record = Record();
    const QJsonValue expected = record.ToJson();
    std::array<int, 4> right{};
    RunTogether(int(right.size()), [&](int number) {
        for (int i = 0; i < 500; ++i) {
            const bool isRight = record.ToJson() == expected && record.GetValue("thickness") == QVariant(2.5) &&
                                 record.GetDefinedExtensions().size() == 2 && !record.IsChanged();
            right.at(size_t(number)) += isRight ? 1 : 0;
        }
    });
    QCOMPARE(right, (std::array<int, 4>{500, 500, 500, 500}));
}

void tst_threads::copiesComeAndGoInAllThreads()
{
    // The last copy of what it holds goes in whichever thread is last.
    for (int i = 0; i < 50; ++i) {
        std::vector<ZAXMatDefinition> copies(4, Record());
        RunTogether(int(copies.size()), [&](int number) {
            ZAXMatDefinition own = copies.at(size_t(number));
            copies.at(size_t(number)) = ZAXMatDefinition();
            const ZAXMatDefinition second = own;
            own.SetName(QString::number(number));
            own = second;
        });
        QVERIFY(std::ranges::none_of(copies, &ZAXMatDefinition::IsValid));
    }
}

void tst_threads::recordsOfOneKindAreReadFromJsonInAllThreads()
{
    const ZAXMatDefinition original = Record();
    const QByteArray text = QJsonDocument(original.ToJson().toObject()).toJson();
    std::array<QList<ZAXMatDefinition>, 4> read;
    RunTogether(int(read.size()), [&](int number) {
        for (int i = 0; i < 200; ++i) {
            ZAXMatDefinition& record = read.at(size_t(number)).emplace_back();
            record.FromJson(QJsonDocument::fromJson(text).object());
            // One kind of records more, for everyone.
            record.SetValue(QByteArray::number(i % 20), i);
        }
    });
    for (const QList<ZAXMatDefinition>& records : read)
        QVERIFY(records == read.front());
    QCOMPARE(read.front().constFirst().GetName(), original.GetName());
}

QTEST_GUILESS_MAIN(tst_threads)
#include "tst_threads.moc"
