#include "ZAXFreshProcess.h"
#include "ZAXSysException.h"
#include "ZAXSysModules.h"
#include "ZAXSysRegisterInit.h"
#include "ZAXSysStartup.h"

#include <QTest>

// The host starts once in a process, so each test plays in a process of its own.

namespace {

/// What a scenario writes down.
struct Journal
{
    QStringList entries;

    std::function<void()> Writing(const QString& entry)
    {
        return [this, entry] { entries.append(entry); };
    }
    void operator()(const char* entry) { entries.append(QLatin1String(entry)); }
};

QStringList Lines(const char* text)
{
    return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
}

} // namespace

class tst_ZAXSysStartup : public QObject
{
    Q_OBJECT

private slots:
    void queuedFunctionsRunAtTheStartInTheirOrder();
    void functionRunsAtOnceAfterTheStart();
    void functionsQueuedByAFunctionRunAfterThoseQueuedBefore();
    void functionQueuedByTheLastFunctionRuns();
    void isStartedFromTheMomentOfEntering();
    void secondStartRunsNothingAgain();
    void startFromAFunctionDoesNothing();
    void emptyFunctionIsIgnored();
    void exceptionPassesThroughAndTheRestRunsAtTheNextStart();
    void functionQueuedBehindAFailureWaitsForItsTurn();
    void functionsOfAModuleThatLeftAreDropped();
};

void tst_ZAXSysStartup::queuedFunctionsRunAtTheStartInTheirOrder()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        const bool isQueued = ZAXSysRegisterInit(journal.Writing(QStringLiteral("first")));
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("second")));
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("third")));
        journal(isQueued ? "queued" : "refused");
        ZAXSysStartup::Start();
        journal("started");
        return journal.entries;
    });
    QCOMPARE(entries, Lines("queued first second third started"));
}

void tst_ZAXSysStartup::functionRunsAtOnceAfterTheStart()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        ZAXSysStartup::Start();
        const bool isTaken = ZAXSysRegisterInit(journal.Writing(QStringLiteral("run")));
        journal(isTaken ? "taken" : "refused");
        return journal.entries;
    });
    QCOMPARE(entries, Lines("run taken"));
}

void tst_ZAXSysStartup::functionsQueuedByAFunctionRunAfterThoseQueuedBefore()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        ZAXSysRegisterInit([&journal] {
            journal("first");
            ZAXSysRegisterInit(journal.Writing(QStringLiteral("third")));
            journal("end-of-first");
        });
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("second")));
        ZAXSysStartup::Start();
        return journal.entries;
    });
    QCOMPARE(entries, Lines("first end-of-first second third"));
}

void tst_ZAXSysStartup::functionQueuedByTheLastFunctionRuns()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        ZAXSysRegisterInit([&journal] { ZAXSysRegisterInit(journal.Writing(QStringLiteral("nested"))); });
        ZAXSysStartup::Start();
        journal("started");
        return journal.entries;
    });
    QCOMPARE(entries, Lines("nested started"));
}

void tst_ZAXSysStartup::isStartedFromTheMomentOfEntering()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        const auto note = [&journal] { journal(ZAXSysStartup::IsStarted() ? "yes" : "no"); };
        note();
        ZAXSysRegisterInit(note);
        note();
        ZAXSysStartup::Start();
        note();
        return journal.entries;
    });
    QCOMPARE(entries, Lines("no no yes yes"));
}

void tst_ZAXSysStartup::secondStartRunsNothingAgain()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("once")));
        ZAXSysStartup::Start();
        ZAXSysStartup::Start();
        return journal.entries;
    });
    QCOMPARE(entries, Lines("once"));
}

void tst_ZAXSysStartup::startFromAFunctionDoesNothing()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        ZAXSysRegisterInit([&journal] {
            ZAXSysStartup::Start();
            journal("first");
        });
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("second")));
        ZAXSysStartup::Start();
        return journal.entries;
    });
    QCOMPARE(entries, Lines("first second"));
}

void tst_ZAXSysStartup::emptyFunctionIsIgnored()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        journal(ZAXSysRegisterInit({}) ? "taken" : "refused");
        ZAXSysStartup::Start();
        journal(ZAXSysRegisterInit({}) ? "taken" : "refused");
        return journal.entries;
    });
    QCOMPARE(entries, Lines("refused refused"));
}

void tst_ZAXSysStartup::exceptionPassesThroughAndTheRestRunsAtTheNextStart()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("first")));
        ZAXSysRegisterInit([&journal] {
            journal("failing");
            throw ZAXSysException(QStringLiteral("caught"));
        });
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("third")));
        try {
            ZAXSysStartup::Start();
        } catch (const ZAXSysException& exception) {
            journal(exception.what());
        }
        ZAXSysStartup::Start();
        return journal.entries;
    });
    QCOMPARE(entries, Lines("first failing caught third"));
}

void tst_ZAXSysStartup::functionQueuedBehindAFailureWaitsForItsTurn()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        ZAXSysRegisterInit([] { throw ZAXSysException(QString()); });
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("second")));
        try {
            ZAXSysStartup::Start();
        } catch (const ZAXSysException&) {
            journal("caught");
        }
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("third")));
        journal("queued");
        ZAXSysStartup::Start();
        return journal.entries;
    });
    QCOMPARE(entries, Lines("caught queued second third"));
}

void tst_ZAXSysStartup::functionsOfAModuleThatLeftAreDropped()
{
    const QStringList entries = InAFreshProcess([] {
        Journal journal;
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("dropped")));
        ZAXSysModules::Leave(ZAXSysModules::ModuleOf(&tst_ZAXSysStartup::staticMetaObject));
        ZAXSysRegisterInit(journal.Writing(QStringLiteral("kept")));
        ZAXSysModules::Leave(ZAXSysModules::ModuleOf(reinterpret_cast<const void*>(&qVersion)));
        ZAXSysModules::Leave(nullptr);
        ZAXSysStartup::Start();
        return journal.entries;
    });
    QCOMPARE(entries, Lines("kept"));
}

QTEST_GUILESS_MAIN(tst_ZAXSysStartup)
#include "tst_ZAXSysStartup.moc"
