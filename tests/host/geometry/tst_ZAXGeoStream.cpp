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
    void fieldsAreThoseOfTheDataStream_data();
    void fieldsAreThoseOfTheDataStream();
    void fieldsAndDataStreamTakeTurns();
    void fieldsFollowTheSettingsOfTheDataStream();
    void restartedStreamIsAsNew();
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

void tst_ZAXGeoStream::fieldsAreThoseOfTheDataStream_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::newRow("flags") << QVariantList{true, false};
    QTest::newRow("numbers") << QVariantList{0.1, -0.0, qInf(), 1e-320};
    QTest::newRow("integers") << QVariantList{0, -1, 0x12345678};
    QTest::newRow("texts") << QVariantList{QString(), QString(QLatin1String("")), QString(QLatin1String("a")),
                                           QString::fromUtf8("ø€𝄞"), QString(40, u'x')};
    QTest::newRow("long text") << QVariantList{QString(600000, u'y')};
    QTest::newRow("bytes") << QVariantList{QByteArray(), QByteArray(""), QByteArray("ab"), QByteArray(3, '\0')};
    QTest::newRow("long bytes") << QVariantList{QByteArray(1200000, 'z')};
}

namespace {

/// Calls \a operation with \a value as what it is.
template <typename Operation>
void WithValue(const QVariant& value, const Operation& operation)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return operation(value.toBool());
    case QMetaType::Int:
        return operation(qint32(value.toInt()));
    case QMetaType::Double:
        return operation(value.toDouble());
    case QMetaType::QString:
        return operation(value.toString());
    default:
        return operation(value.toByteArray());
    }
}

bool IsNull(const QString& text)
{
    return text.isNull();
}

bool IsNull(const QByteArray& bytes)
{
    return bytes.isNull();
}

template <typename T>
bool IsNull(T)
{
    return false;
}

} // namespace

void tst_ZAXGeoStream::fieldsAreThoseOfTheDataStream()
{
    QFETCH(QVariantList, values);
    ZAXGeoStream fields(nullptr);
    ZAXGeoStream plain(nullptr);
    for (const QVariant& value : values) {
        WithValue(value, [&](const auto& field) {
            fields << field;
            plain.GetDataStream() << field;
        });
    }
    const QByteArray payload = plain.GetPayload();
    QVERIFY(fields.GetPayload() == payload);

    // Cut off anywhere, and with a byte too much.
    const qsizetype step = qMax<qsizetype>(1, payload.size() / 100);
    for (qsizetype size = payload.size() + 1; size >= 0; size -= step) {
        const QByteArray cut = (payload + 'x').first(size);
        ZAXGeoStream reader(nullptr, cut);
        ZAXGeoStream plainReader(nullptr, cut);
        for (const QVariant& value : values) {
            WithValue(value, [&](auto field) {
                auto plainField = field;
                reader >> field;
                plainReader.GetDataStream() >> plainField;
                QVERIFY(field == plainField);
                QCOMPARE(IsNull(field), IsNull(plainField));
                QCOMPARE(reader.GetDataStream().status(), plainReader.GetDataStream().status());
                QCOMPARE(reader.GetDataStream().device()->pos(), plainReader.GetDataStream().device()->pos());
            });
        }
        QCOMPARE(reader.GetDataStream().atEnd(), plainReader.GetDataStream().atEnd());
    }
}

void tst_ZAXGeoStream::fieldsAndDataStreamTakeTurns()
{
    ZAXGeoStream writer(nullptr);
    QDataStream& written = writer.GetDataStream();
    writer << true;
    written << quint16(0x102);
    writer << qint32(3);
    QVERIFY(written.device()->seek(1));
    writer << false;
    written << quint8(4);
    QCOMPARE(writer.GetPayload().toHex(), QByteArray("01000400000003"));

    ZAXGeoStream reader(nullptr, writer.GetPayload());
    QDataStream& read = reader.GetDataStream();
    bool flag = false;
    quint16 number = 0;
    qint32 last = 0;
    reader >> flag;
    read >> number;
    reader >> last;
    QVERIFY(flag);
    QCOMPARE(number, quint16(4));
    QCOMPARE(last, 3);
    QVERIFY(read.atEnd());
    QVERIFY(read.device()->seek(3));
    read.startTransaction();
    reader >> last;
    read.rollbackTransaction();
    reader >> last;
    QCOMPARE(last, 3);
}

void tst_ZAXGeoStream::fieldsFollowTheSettingsOfTheDataStream()
{
    ZAXGeoStream writer(nullptr);
    writer.GetDataStream().setByteOrder(QDataStream::LittleEndian);
    writer << qint32(1) << QStringLiteral("a");
    writer.GetDataStream().setFloatingPointPrecision(QDataStream::SinglePrecision);
    writer << 1.0;
    writer.GetDataStream().setStatus(QDataStream::WriteFailed);
    writer << true;
    QCOMPARE(writer.GetPayload().toHex(' '), QByteArray("01 00 00 00 02 00 00 00 61 00 00 00 80 3f"));
    ZAXGeoStream corrupt(nullptr, QByteArray::fromHex("0000000361000000"));
    QString odd = QLatin1String("old");
    corrupt >> odd;
    QCOMPARE(corrupt.GetDataStream().status(), QDataStream::ReadCorruptData);
    QCOMPARE(odd, QString());
}

void tst_ZAXGeoStream::restartedStreamIsAsNew()
{
    ZAXGeoStream writer(nullptr);
    writer << QStringLiteral("first") << ZAXGeoGeometryRef::FromId(5);
    writer.GetDataStream().setByteOrder(QDataStream::LittleEndian);
    writer.GetDataStream().setVersion(QDataStream::Qt_5_0);
    writer.GetDataStream().setStatus(QDataStream::WriteFailed);
    writer.GetDataStream().setDevice(nullptr);
    const QByteArray first = writer.GetPayload();
    writer.Restart();
    QVERIFY(writer.GetPayload().isEmpty());
    QVERIFY(writer.GetReferences().isEmpty());
    writer << qint32(7) << ZAXGeoGeometryRef::FromId(9) << ZAXGeoGeometryRef::FromId(5);
    QCOMPARE(writer.GetPayload().toHex(), QByteArray("000000070000000100000002"));
    QCOMPARE(writer.ViewPayload(), QByteArrayView(writer.GetPayload()));
    QCOMPARE(writer.GetReferences(), (QList{ZAXGeoGeometryRef::FromId(9), ZAXGeoGeometryRef::FromId(5)}));
    QCOMPARE(first.size(), 18);

    ZAXGeoStream reader(nullptr, QByteArray("\1"), {});
    reader.SetVersions({{"ZAXProbeGeometry", 2}});
    qint32 number = 0;
    reader >> number;
    QCOMPARE(reader.GetDataStream().status(), QDataStream::ReadPastEnd);
    reader.GetDataStream().device()->close();
    reader.Restart(writer.GetPayload(), writer.GetReferences());
    ZAXGeoGeometryRef reference;
    reader >> number >> reference;
    QCOMPARE(number, 7);
    QCOMPARE(reference, ZAXGeoGeometryRef::FromId(9));
    QCOMPARE(reader.GetVersion(&ZAXProbeGeometry::staticMetaObject), 2);
    reader >> reference;
    QVERIFY(reader.GetDataStream().atEnd());
    QCOMPARE(reader.GetDataStream().status(), QDataStream::Ok);
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
