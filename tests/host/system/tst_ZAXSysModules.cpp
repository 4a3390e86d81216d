#include "ZAXFreshProcess.h"
#include "ZAXSysModules.h"
#include "ZAXSysRegisterInit.h"

#include <QTest>

#include <cstdlib>

namespace {

int onePlace = 1;
int anotherPlace = 2;

const void* ThisModule()
{
    return ZAXSysModules::ModuleOf(&onePlace);
}

} // namespace

class tst_ZAXSysModules : public QObject
{
    Q_OBJECT

private slots:
    void addressesOfOneModuleHaveOneToken();
    void modulesHaveTokensOfTheirOwn();
    void addressOutsideAllModulesHasNone();
    void releasesAreCalledInTheirOrderWithTheToken();
    void nullLeavesNothing();
    void moduleMayLeaveAsLateAsTheProcessEnds();
};

void tst_ZAXSysModules::addressesOfOneModuleHaveOneToken()
{
    QVERIFY(ThisModule());
    QCOMPARE(ZAXSysModules::ModuleOf(&anotherPlace), ThisModule());
    QCOMPARE(ZAXSysModules::ModuleOf(&staticMetaObject), ThisModule());
    QCOMPARE(ZAXSysModules::ModuleOf(reinterpret_cast<const void*>(&ThisModule)), ThisModule());
}

void tst_ZAXSysModules::modulesHaveTokensOfTheirOwn()
{
    const void* const qt = ZAXSysModules::ModuleOf(&QObject::staticMetaObject);
    QVERIFY(qt);
    QVERIFY(qt != ThisModule());
}

void tst_ZAXSysModules::addressOutsideAllModulesHasNone()
{
    const auto onTheHeap = std::make_unique<int>(0);
    QVERIFY(!ZAXSysModules::ModuleOf(nullptr));
    QVERIFY(!ZAXSysModules::ModuleOf(onTheHeap.get()));
}

void tst_ZAXSysModules::releasesAreCalledInTheirOrderWithTheToken()
{
    const QStringList entries = InAFreshProcess([] {
        QStringList seen;
        const auto note = [&seen](const QString& who) {
            return [&seen, who](const void* module) {
                seen.append(who + QLatin1String(module == ThisModule() ? "-this" : "-other"));
            };
        };
        ZAXSysModules::OnLeave(note(QStringLiteral("first")));
        ZAXSysModules::OnLeave(note(QStringLiteral("second")));
        ZAXSysModules::Leave(ThisModule());
        ZAXSysModules::Leave(ZAXSysModules::ModuleOf(&QObject::staticMetaObject));
        return seen;
    });
    QCOMPARE(entries.join(u' '), QStringLiteral("first-this second-this first-other second-other"));
}

void tst_ZAXSysModules::nullLeavesNothing()
{
    const QStringList entries = InAFreshProcess([] {
        QStringList seen;
        ZAXSysModules::OnLeave([&seen](const void*) { seen.append(QStringLiteral("called")); });
        ZAXSysModules::Leave(nullptr);
        return seen;
    });
    QCOMPARE(entries, QStringList());
}

void tst_ZAXSysModules::moduleMayLeaveAsLateAsTheProcessEnds()
{
    // The exit action is arranged before the host has anything to release, so it runs after the host's own.
    const QStringList entries = InAFreshProcess([] {
        std::atexit([] {
            ZAXSysModules::Leave(ThisModule());
            _exit(42);
        });
        ZAXSysRegisterInit([] {});
        std::exit(1);
        return QStringList();
    });
    QCOMPARE(entries, QStringList(QStringLiteral("exit 42")));
}

QTEST_GUILESS_MAIN(tst_ZAXSysModules)
#include "tst_ZAXSysModules.moc"
