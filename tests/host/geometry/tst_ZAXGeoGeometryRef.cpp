#include "ZAXGeoGeometryRef.h"

#include "ZAXGeoContainer.h"
#include "ZAXGeoStream.h"
#include "ZAXProbeGeometry.h"

#include <QDataStream>
#include <QSet>
#include <QTest>

#include <memory>

static_assert(std::is_nothrow_default_constructible_v<ZAXGeoGeometryRef>);
static_assert(std::is_copy_constructible_v<ZAXGeoGeometryRef> && std::is_copy_assignable_v<ZAXGeoGeometryRef>);
static_assert(std::is_nothrow_move_constructible_v<ZAXGeoGeometryRef>);
static_assert(!std::is_convertible_v<ZAXGeoGeometry*, ZAXGeoGeometryRef>);

namespace {

ZAXGeoGeometryRef Ref(quint64 id)
{
    return ZAXGeoGeometryRef::FromId(id);
}

} // namespace

class tst_ZAXGeoGeometryRef : public QObject
{
    Q_OBJECT

private slots:
    void isInvalidByDefault();
    void isInvalidForNull();
    void isInvalidForAGeometryWithoutContainer();
    void refersToAGeometryByItsId();
    void copyAndMoveKeepTheId();
    void staysValidWhenTheGeometryIsGone();
    void equalIdsAreEqual();
    void equalReferencesHashAlike();
    void isKnownToQtByName();
    void isItsIdOnAnyStream_data();
    void isItsIdOnAnyStream();
    void isReadBackFromAnyStream();
    void isItsPlaceInTheTableOnADocumentStream();
    void isReadFromTheTableOfADocumentStream();
    void placeOutsideTheTableIsDamage_data();
    void placeOutsideTheTableIsDamage();
    void endOfADocumentStreamGivesAnInvalidOne();
    void damageIsKeptInTheStatus();
};

void tst_ZAXGeoGeometryRef::isInvalidByDefault()
{
    const ZAXGeoGeometryRef reference;
    QVERIFY(!reference.IsValid());
    QCOMPARE(reference.GetId(), quint64(0));
}

void tst_ZAXGeoGeometryRef::isInvalidForNull()
{
    QVERIFY(!ZAXGeoGeometryRef(nullptr).IsValid());
    QVERIFY(!Ref(0).IsValid());
    QCOMPARE(ZAXGeoGeometryRef(nullptr), ZAXGeoGeometryRef());
}

void tst_ZAXGeoGeometryRef::isInvalidForAGeometryWithoutContainer()
{
    const ZAXProbeGeometry geometry(nullptr);
    QVERIFY(!ZAXGeoGeometryRef(&geometry).IsValid());
}

void tst_ZAXGeoGeometryRef::refersToAGeometryByItsId()
{
    ZAXGeoContainer container;
    const ZAXProbeGeometry geometry(&container);
    const ZAXGeoGeometryRef reference(&geometry);
    QVERIFY(reference.IsValid());
    QCOMPARE(reference.GetId(), geometry.GetId());
    QCOMPARE(container.GetGeometryByRef(reference), &geometry);
}

void tst_ZAXGeoGeometryRef::copyAndMoveKeepTheId()
{
    ZAXGeoGeometryRef reference = Ref(7);
    const ZAXGeoGeometryRef copy(reference);
    ZAXGeoGeometryRef assigned;
    assigned = copy;
    const ZAXGeoGeometryRef moved(std::move(reference));
    QCOMPARE(copy.GetId(), quint64(7));
    QCOMPARE(assigned.GetId(), quint64(7));
    QCOMPARE(moved.GetId(), quint64(7));
}

void tst_ZAXGeoGeometryRef::staysValidWhenTheGeometryIsGone()
{
    ZAXGeoContainer container;
    auto geometry = std::make_unique<ZAXProbeGeometry>(&container);
    const ZAXGeoGeometryRef reference(geometry.get());
    geometry.reset();
    QVERIFY(reference.IsValid());
    QVERIFY(!container.GetGeometryByRef(reference));
}

void tst_ZAXGeoGeometryRef::equalIdsAreEqual()
{
    QVERIFY(Ref(7) == Ref(7));
    QVERIFY(!(Ref(7) != Ref(7)));
    QVERIFY(Ref(7) != Ref(8));
    QVERIFY(!(Ref(7) == Ref(8)));
    QVERIFY(Ref(0) == ZAXGeoGeometryRef());
}

void tst_ZAXGeoGeometryRef::equalReferencesHashAlike()
{
    QCOMPARE(qHash(Ref(7), 3), qHash(Ref(7), 3));
    QCOMPARE(QSet<ZAXGeoGeometryRef>({Ref(1), Ref(2), Ref(1)}).size(), 2);
}

void tst_ZAXGeoGeometryRef::isKnownToQtByName()
{
    QCOMPARE(QMetaType::fromName("ZAXGeoGeometryRef"), QMetaType::fromType<ZAXGeoGeometryRef>());
}

void tst_ZAXGeoGeometryRef::isItsIdOnAnyStream_data()
{
    QTest::addColumn<quint64>("id");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("invalid") << quint64(0) << QByteArray::fromHex("0000000000000000");
    QTest::newRow("first") << quint64(1) << QByteArray::fromHex("0000000000000001");
    QTest::newRow("all bytes") << Q_UINT64_C(0x0102030405060708) << QByteArray::fromHex("0102030405060708");
    QTest::newRow("largest") << std::numeric_limits<quint64>::max() << QByteArray::fromHex("ffffffffffffffff");
}

void tst_ZAXGeoGeometryRef::isItsIdOnAnyStream()
{
    QFETCH(quint64, id);
    QFETCH(QByteArray, bytes);
    QByteArray written;
    QDataStream stream(&written, QIODevice::WriteOnly);
    stream << Ref(id);
    QCOMPARE(written, bytes);
}

void tst_ZAXGeoGeometryRef::isReadBackFromAnyStream()
{
    const QByteArray bytes = QByteArray::fromHex("010203040506070800000000000000000000");
    QDataStream stream(bytes);
    ZAXGeoGeometryRef first;
    ZAXGeoGeometryRef second = Ref(9);
    ZAXGeoGeometryRef beyond = Ref(9);
    stream >> first >> second;
    QCOMPARE(first.GetId(), Q_UINT64_C(0x0102030405060708));
    QVERIFY(!second.IsValid());
    QCOMPARE(stream.status(), QDataStream::Ok);
    stream >> beyond;
    QVERIFY(!beyond.IsValid());
    QCOMPARE(stream.status(), QDataStream::ReadPastEnd);
}

void tst_ZAXGeoGeometryRef::isItsPlaceInTheTableOnADocumentStream()
{
    ZAXGeoStream stream(nullptr);
    stream << Ref(70) << Ref(5) << ZAXGeoGeometryRef() << Ref(70) << Ref(600);
    QCOMPARE(stream.GetPayload(), QByteArray::fromHex("00000001"
                                                      "00000002"
                                                      "00000000"
                                                      "00000001"
                                                      "00000003"));
    QCOMPARE(stream.GetReferences(), QList<ZAXGeoGeometryRef>({Ref(70), Ref(5), Ref(600)}));
}

void tst_ZAXGeoGeometryRef::isReadFromTheTableOfADocumentStream()
{
    ZAXGeoStream stream(nullptr, QByteArray::fromHex("000000020000000000000001"), {Ref(70), Ref(5)});
    ZAXGeoGeometryRef first;
    ZAXGeoGeometryRef second = Ref(9);
    ZAXGeoGeometryRef third;
    stream >> first >> second >> third;
    QCOMPARE(first, Ref(5));
    QCOMPARE(second, ZAXGeoGeometryRef());
    QCOMPARE(third, Ref(70));
    QCOMPARE(stream.GetDataStream().status(), QDataStream::Ok);
}

void tst_ZAXGeoGeometryRef::placeOutsideTheTableIsDamage_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("next to the last") << QByteArray::fromHex("00000002");
    QTest::newRow("sign bit") << QByteArray::fromHex("80000000");
    QTest::newRow("largest") << QByteArray::fromHex("ffffffff");
}

void tst_ZAXGeoGeometryRef::placeOutsideTheTableIsDamage()
{
    QFETCH(QByteArray, payload);
    ZAXGeoStream stream(nullptr, payload, {Ref(70)});
    ZAXGeoGeometryRef reference = Ref(9);
    stream >> reference;
    QVERIFY(!reference.IsValid());
    QCOMPARE(stream.GetDataStream().status(), QDataStream::ReadCorruptData);
}

void tst_ZAXGeoGeometryRef::endOfADocumentStreamGivesAnInvalidOne()
{
    ZAXGeoStream stream(nullptr, QByteArray::fromHex("000001"), {Ref(70)});
    ZAXGeoGeometryRef reference = Ref(9);
    stream >> reference;
    QVERIFY(!reference.IsValid());
    QCOMPARE(stream.GetDataStream().status(), QDataStream::ReadPastEnd);
}

void tst_ZAXGeoGeometryRef::damageIsKeptInTheStatus()
{
    ZAXGeoStream stream(nullptr, QByteArray::fromHex("0000000200000001"), {Ref(70)});
    ZAXGeoGeometryRef damaged;
    ZAXGeoGeometryRef next;
    stream >> damaged >> next;
    QCOMPARE(stream.GetDataStream().status(), QDataStream::ReadCorruptData);
}

QTEST_GUILESS_MAIN(tst_ZAXGeoGeometryRef)
#include "tst_ZAXGeoGeometryRef.moc"
