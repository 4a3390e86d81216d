#include "ZAXGeoStream.h"

#include "ZAXGeoContainer.h"
#include "ZAXProbeGeometry.h"

#include <QTest>

static_assert(!std::is_copy_constructible_v<ZAXGeoStream> && !std::is_copy_assignable_v<ZAXGeoStream>);

class tst_ZAXGeoStream : public QObject
{
    Q_OBJECT

private slots:
    void givesItsContainer();
    void dataStreamIsPinned();
    void writesPinnedBytes();
    void readsWhatItWrote();
    void readsItsPayloadAndTable();
    void endShowsInTheStatus();
    void versionIsThisProgramsWithoutATable_data();
    void versionIsThisProgramsWithoutATable();
    void versionIsTheWritersWithATable();
    void referenceMapsToItself();
    void referenceMapsAsSet();
    void invalidReferenceIsNeverMapped();
    void emptyMapMapsToItself();
};

void tst_ZAXGeoStream::givesItsContainer()
{
    ZAXGeoContainer container;
    QCOMPARE(ZAXGeoStream(&container).GetContainer(), &container);
    QCOMPARE(ZAXGeoStream(&container, QByteArray()).GetContainer(), &container);
    QVERIFY(!ZAXGeoStream(nullptr).GetContainer());
}

void tst_ZAXGeoStream::dataStreamIsPinned()
{
    ZAXGeoStream writer(nullptr);
    ZAXGeoStream reader(nullptr, QByteArray());
    for (const QDataStream* data : {&writer.GetDataStream(), &reader.GetDataStream()}) {
        QCOMPARE(data->version(), int(QDataStream::Qt_6_4));
        QCOMPARE(data->byteOrder(), QDataStream::BigEndian);
        QCOMPARE(data->floatingPointPrecision(), QDataStream::DoublePrecision);
    }
}

void tst_ZAXGeoStream::writesPinnedBytes()
{
    ZAXGeoStream stream(nullptr);
    stream << qint32(258) << 1.0 << 1.0F << true << u"ø"_qs << QByteArray("ab") << QByteArray();
    QCOMPARE(stream.GetPayload().toHex(' '), QByteArray("00 00 01 02 "
                                                        "3f f0 00 00 00 00 00 00 "
                                                        "3f f0 00 00 00 00 00 00 "
                                                        "01 "
                                                        "00 00 00 02 00 f8 "
                                                        "00 00 00 02 61 62 "
                                                        "ff ff ff ff"));
}

void tst_ZAXGeoStream::readsWhatItWrote()
{
    ZAXGeoStream writer(nullptr);
    writer << 0.1 << QStringLiteral("text") << ZAXGeoGeometryRef::FromId(5);
    ZAXGeoStream reader(nullptr, writer.GetPayload(), writer.GetReferences());
    double number = 0.0;
    QString text;
    ZAXGeoGeometryRef reference;
    reader >> number >> text >> reference;
    QCOMPARE(number, 0.1);
    QCOMPARE(text, QStringLiteral("text"));
    QCOMPARE(reference.GetId(), quint64(5));
    QVERIFY(reader.GetDataStream().atEnd());
    QCOMPARE(reader.GetDataStream().status(), QDataStream::Ok);
}

void tst_ZAXGeoStream::readsItsPayloadAndTable()
{
    const QList references{ZAXGeoGeometryRef::FromId(5), ZAXGeoGeometryRef::FromId(3)};
    const ZAXGeoStream stream(nullptr, "payload", references);
    QCOMPARE(stream.GetPayload(), QByteArray("payload"));
    QCOMPARE(stream.GetReferences(), references);
}

void tst_ZAXGeoStream::endShowsInTheStatus()
{
    ZAXGeoStream stream(nullptr, QByteArray::fromHex("000001"));
    qint32 number = 7;
    stream >> number;
    QCOMPARE(stream.GetDataStream().status(), QDataStream::ReadPastEnd);
}

void tst_ZAXGeoStream::versionIsThisProgramsWithoutATable_data()
{
    QTest::addColumn<const QMetaObject*>("type");
    QTest::addColumn<int>("version");
    QTest::newRow("its own entry") << &ZAXProbeGeometry::staticMetaObject << 3;
    QTest::newRow("entry of the base only") << &ZAXProbeDerivedGeometry::staticMetaObject << 1;
    QTest::newRow("no entry") << &ZAXGeoGeometry::staticMetaObject << 1;
}

void tst_ZAXGeoStream::versionIsThisProgramsWithoutATable()
{
    QFETCH(const QMetaObject*, type);
    QFETCH(int, version);
    QCOMPARE(ZAXGeoStream(nullptr).GetVersion(type), version);
    QCOMPARE(ZAXGeoStream(nullptr, QByteArray()).GetVersion(type), version);
    QCOMPARE(ZAXGeoStream::GetCurrentVersion(type), version);
}

void tst_ZAXGeoStream::versionIsTheWritersWithATable()
{
    ZAXGeoStream stream(nullptr, QByteArray());
    stream.SetVersions({{"ZAXProbeGeometry", 2}});
    QCOMPARE(stream.GetVersion(&ZAXProbeGeometry::staticMetaObject), 2);
    QCOMPARE(stream.GetVersion(&ZAXProbeDerivedGeometry::staticMetaObject), 1);
    stream.SetVersions({{"ZAXProbeDerivedGeometry", 9}});
    QCOMPARE(stream.GetVersion(&ZAXProbeGeometry::staticMetaObject), 1);
    QCOMPARE(stream.GetVersion(&ZAXProbeDerivedGeometry::staticMetaObject), 9);
    stream.SetVersions({});
    QCOMPARE(stream.GetVersion(&ZAXProbeGeometry::staticMetaObject), 1);
    QCOMPARE(ZAXGeoStream::GetCurrentVersion(&ZAXProbeGeometry::staticMetaObject), 3);
}

void tst_ZAXGeoStream::referenceMapsToItself()
{
    const ZAXGeoStream stream(nullptr, QByteArray());
    QCOMPARE(stream.GetMappedReference(ZAXGeoGeometryRef::FromId(5)), ZAXGeoGeometryRef::FromId(5));
    QCOMPARE(stream.GetMappedReference(ZAXGeoGeometryRef()), ZAXGeoGeometryRef());
}

void tst_ZAXGeoStream::referenceMapsAsSet()
{
    ZAXGeoStream stream(nullptr, QByteArray());
    stream.SetReferenceMap([](const ZAXGeoGeometryRef& reference) {
        return reference.GetId() < 10 ? ZAXGeoGeometryRef::FromId(reference.GetId() + 100) : ZAXGeoGeometryRef();
    });
    QCOMPARE(stream.GetMappedReference(ZAXGeoGeometryRef::FromId(5)), ZAXGeoGeometryRef::FromId(105));
    QVERIFY(!stream.GetMappedReference(ZAXGeoGeometryRef::FromId(10)).IsValid());
}

void tst_ZAXGeoStream::invalidReferenceIsNeverMapped()
{
    ZAXGeoStream stream(nullptr, QByteArray());
    int calls = 0;
    stream.SetReferenceMap([&calls](const ZAXGeoGeometryRef&) {
        ++calls;
        return ZAXGeoGeometryRef::FromId(1);
    });
    QVERIFY(!stream.GetMappedReference(ZAXGeoGeometryRef()).IsValid());
    QCOMPARE(calls, 0);
}

void tst_ZAXGeoStream::emptyMapMapsToItself()
{
    ZAXGeoStream stream(nullptr, QByteArray());
    stream.SetReferenceMap([](const ZAXGeoGeometryRef&) { return ZAXGeoGeometryRef(); });
    stream.SetReferenceMap({});
    QCOMPARE(stream.GetMappedReference(ZAXGeoGeometryRef::FromId(5)), ZAXGeoGeometryRef::FromId(5));
}

QTEST_GUILESS_MAIN(tst_ZAXGeoStream)
#include "tst_ZAXGeoStream.moc"
