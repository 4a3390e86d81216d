#include "ZAXGeoGeometry.h"

#include "ZAXGeoContainer.h"
#include "ZAXGeoGeometryPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXProbeGeometry.h"
#include "ZAXProbeJournal.h"
#include "ZAXSysException.h"

#include <QPointer>
#include <QTest>

namespace {

QString MessageOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const ZAXSysException& exception) {
        return exception.GetMessage();
    }
    return {};
}

const QString unreadable = QStringLiteral("The state of the object cannot be read.");

/// The state of a geometry whose number is 1.5 and which refers to the geometry 9: the table of references, the size
/// of the payload, the number, the reference.
QByteArray State()
{
    return QByteArray::fromHex("00000001"
                               "0000000000000009"
                               "0000000c"
                               "3ff8000000000000"
                               "00000001");
}

} // namespace

class tst_ZAXGeoGeometry : public QObject
{
    Q_OBJECT

private slots:
    void knowsItsContainerAndId();
    void hasNoIdentityWithoutContainer();
    void leavesTheContainerWhenItGoes();
    void baseWritesAndReadsNothing();
    void referenceCountAloneDeletesNothing();
    void releaseWithoutReferenceIsRefused();
    void removedGeometryIsDeletedAtOnceWithoutReferences();
    void lastReleaseDeletesARemovedGeometry();
    void removedGeometryIsNotFoundWhileItIsKept();
    void stateHoldsFieldsAndReferences();
    void stateIsBroughtBack();
    void stateIsLoadedInItsOrder();
    void stateOfAGeometryWithoutContainerIsBroughtBack();
    void damagedStateIsRefused_data();
    void damagedStateIsRefused();
    void everyBeginningOfAStateIsRefused();
    void stateWithADamagedTableIsNotLoaded();
    void exceptionOfLoadPassesThrough();
};

void tst_ZAXGeoGeometry::knowsItsContainerAndId()
{
    ZAXGeoContainer container;
    const ZAXProbeGeometry first(&container);
    const ZAXProbeGeometry second(&container, ZAXGeoGeometryRef::FromId(30));
    QCOMPARE(first.GetContainer(), &container);
    QCOMPARE(first.GetId(), quint64(1));
    QCOMPARE(second.GetContainer(), &container);
    QCOMPARE(second.GetId(), quint64(30));
}

void tst_ZAXGeoGeometry::hasNoIdentityWithoutContainer()
{
    const ZAXProbeGeometry geometry(nullptr);
    const ZAXProbeGeometry recreated(nullptr, ZAXGeoGeometryRef::FromId(30));
    QVERIFY(!geometry.GetContainer());
    QCOMPARE(geometry.GetId(), quint64(0));
    QVERIFY(!recreated.GetContainer());
    QCOMPARE(recreated.GetId(), quint64(0));
}

void tst_ZAXGeoGeometry::leavesTheContainerWhenItGoes()
{
    ZAXGeoContainer container;
    const auto* const geometry = new ZAXProbeGeometry(&container);
    delete geometry;
    QCOMPARE(container.GetGeometries(), QList<ZAXGeoGeometry*>());
}

void tst_ZAXGeoGeometry::baseWritesAndReadsNothing()
{
    ZAXGeoGeometry geometry(nullptr);
    ZAXGeoStream writer(nullptr);
    ZAXGeoStream reader(nullptr, "x");
    geometry.Save(writer);
    geometry.BeginStateLoad();
    geometry.Load(reader);
    geometry.InitializeNonStreamed();
    geometry.EndStateLoad();
    geometry.Initialize();
    geometry.Cleanup();
    QCOMPARE(writer.GetPayload(), QByteArray());
    QVERIFY(!reader.GetDataStream().atEnd());
}

void tst_ZAXGeoGeometry::referenceCountAloneDeletesNothing()
{
    ZAXProbeJournal journal;
    ZAXProbeGeometry geometry(nullptr);
    geometry.AddReference();
    geometry.AddReference();
    geometry.RemoveReference();
    geometry.RemoveReference();
    QCOMPARE(journal.Take(), QStringList());
}

void tst_ZAXGeoGeometry::releaseWithoutReferenceIsRefused()
{
    ZAXProbeGeometry geometry(nullptr);
    const QString message = QStringLiteral("A reference was released that nobody holds.");
    QCOMPARE(MessageOf([&] { geometry.RemoveReference(); }), message);
    geometry.AddReference();
    geometry.RemoveReference();
    QCOMPARE(MessageOf([&] { geometry.RemoveReference(); }), message);
}

void tst_ZAXGeoGeometry::removedGeometryIsDeletedAtOnceWithoutReferences()
{
    ZAXProbeJournal journal;
    ZAXGeoContainer container;
    auto* const geometry = new ZAXProbeGeometry(&container);
    geometry->AddReference();
    geometry->RemoveReference();
    ZAXGeoGeometryPrivate::Discard(geometry);
    QCOMPARE(journal.Take(), Entries("destroyed"));
}

void tst_ZAXGeoGeometry::lastReleaseDeletesARemovedGeometry()
{
    ZAXProbeJournal journal;
    ZAXGeoContainer container;
    auto* const geometry = new ZAXProbeGeometry(&container);
    geometry->AddReference();
    geometry->AddReference();
    ZAXGeoGeometryPrivate::Discard(geometry);
    geometry->RemoveReference();
    QCOMPARE(journal.Take(), QStringList());
    geometry->RemoveReference();
    QCOMPARE(journal.Take(), Entries("destroyed"));
}

void tst_ZAXGeoGeometry::removedGeometryIsNotFoundWhileItIsKept()
{
    ZAXGeoContainer container;
    auto* const geometry = new ZAXProbeGeometry(&container);
    const ZAXGeoGeometryRef reference(geometry);
    geometry->AddReference();
    ZAXGeoGeometryPrivate::Discard(geometry);
    QVERIFY(!container.GetGeometryByRef(reference));
    QCOMPARE(geometry->GetId(), reference.GetId());
    const ZAXProbeGeometry next(&container);
    QCOMPARE(next.GetId(), quint64(2));
    geometry->RemoveReference();
}

void tst_ZAXGeoGeometry::stateHoldsFieldsAndReferences()
{
    ZAXGeoContainer container;
    ZAXProbeGeometry geometry(&container);
    geometry.number = 1.5;
    geometry.target = ZAXGeoGeometryRef::FromId(9);
    QCOMPARE(geometry.GetCurrentState().toHex(), State().toHex());
    QCOMPARE(geometry.GetCurrentState(), geometry.GetCurrentState());
}

void tst_ZAXGeoGeometry::stateIsBroughtBack()
{
    ZAXGeoContainer container;
    ZAXProbeGeometry geometry(&container);
    geometry.number = 1.0 / 3.0;
    geometry.target = ZAXGeoGeometryRef(&geometry);
    const QByteArray state = geometry.GetCurrentState();
    geometry.number = 2.0;
    geometry.target = {};
    geometry.SetCurrentState(state);
    QCOMPARE(geometry.number, 1.0 / 3.0);
    QCOMPARE(geometry.target, ZAXGeoGeometryRef(&geometry));
}

void tst_ZAXGeoGeometry::stateIsLoadedInItsOrder()
{
    ZAXProbeJournal journal;
    ZAXGeoContainer container;
    ZAXProbeGeometry geometry(&container);
    geometry.SetCurrentState(State());
    QCOMPARE(journal.Take(), Entries("BeginStateLoad \n Load \n EndStateLoad"));
}

void tst_ZAXGeoGeometry::stateOfAGeometryWithoutContainerIsBroughtBack()
{
    ZAXProbeGeometry geometry(nullptr);
    geometry.SetCurrentState(State());
    QCOMPARE(geometry.number, 1.5);
    QCOMPARE(geometry.target.GetId(), quint64(9));
}

void tst_ZAXGeoGeometry::damagedStateIsRefused_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no state") << QByteArray("this is no state of a geometry");
    QTest::newRow("a byte behind") << State() + '\0';
    QTest::newRow("a byte behind the fields") << State().replace(15, 1, "\x0d") + '\0';
    QTest::newRow("fields cut") << State().replace(15, 1, "\x08").chopped(4);
    QTest::newRow("no fields") << QByteArray::fromHex("0000000000000000");
    QTest::newRow("null fields") << QByteArray::fromHex("00000000ffffffff");
    QTest::newRow("place outside the table") << State().replace(27, 1, "\x02");
    QTest::newRow("more references than there are") << State().replace(3, 1, "\x02");
    QTest::newRow("count of references, sign bit") << State().replace(0, 1, "\x80");
    QTest::newRow("count of references, largest") << State().replace(0, 4, "\xff\xff\xff\xff");
    QTest::newRow("count of references, next to largest") << State().replace(0, 4, "\xff\xff\xff\xfe");
    QTest::newRow("size of the fields, sign bit") << State().replace(12, 1, "\x80");
    QTest::newRow("size of the fields, next to largest") << State().replace(12, 4, "\xff\xff\xff\xfe");
}

void tst_ZAXGeoGeometry::damagedStateIsRefused()
{
    QFETCH(QByteArray, state);
    ZAXProbeJournal journal;
    ZAXGeoContainer container;
    ZAXProbeGeometry geometry(&container);
    QCOMPARE(MessageOf([&] { geometry.SetCurrentState(state); }), unreadable);
    QVERIFY(!journal.Take().contains(QStringLiteral("EndStateLoad")));
}

void tst_ZAXGeoGeometry::everyBeginningOfAStateIsRefused()
{
    ZAXGeoContainer container;
    ZAXProbeGeometry geometry(&container);
    const QByteArray state = State();
    for (qsizetype size = 0; size < state.size(); ++size)
        QCOMPARE(MessageOf([&] { geometry.SetCurrentState(state.first(size)); }), unreadable);
    QCOMPARE(geometry.number, 0.0);
}

void tst_ZAXGeoGeometry::stateWithADamagedTableIsNotLoaded()
{
    ZAXProbeJournal journal;
    ZAXGeoContainer container;
    ZAXProbeGeometry geometry(&container);
    QCOMPARE(MessageOf([&] { geometry.SetCurrentState(State().chopped(1)); }), unreadable);
    QCOMPARE(journal.Take(), QStringList());
}

void tst_ZAXGeoGeometry::exceptionOfLoadPassesThrough()
{
    ZAXProbeJournal journal;
    journal.FailAt("Load");
    ZAXGeoContainer container;
    ZAXProbeGeometry geometry(&container);
    QCOMPARE(MessageOf([&] { geometry.SetCurrentState(State()); }), QStringLiteral("The probe fails: Load."));
    QCOMPARE(journal.Take(), Entries("BeginStateLoad \n Load"));
}

QTEST_GUILESS_MAIN(tst_ZAXGeoGeometry)
#include "tst_ZAXGeoGeometry.moc"
