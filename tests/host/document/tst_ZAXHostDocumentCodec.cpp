#include "ZAXHostDocumentCodec.h"

#include "ZAXProbeDocuments.h"

#include <QTest>

namespace {

using Image = ZAXHostDocumentImage;
using Record = ZAXHostDocumentRecord;
using File = ZAXProbeDocumentFile;
using Object = ZAXProbeDocumentFile::Object;

/// An image with something of everything: two objects at the top, one below, references and payloads.
Image FullImage()
{
    Image image;
    image.documentId = QUuid(QStringLiteral("{01234567-89ab-cdef-0123-456789abcdef}"));
    image.lastId = 12;
    image.classes = {
        {"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"ZAXProbePart", 2, 1}, {"ZAXFeatFolder", 1, 1}};
    image.records = {
        {3, 3, 0, 0, {}, "folder"},
        {2, 7, 3, 0, {ZAXGeoGeometryRef::FromId(12), ZAXGeoGeometryRef::FromId(3)}, QByteArray("\0\1", 2)},
        {2, 12, 0, 1, {ZAXGeoGeometryRef::FromId(99)}, QByteArray()},
    };
    return image;
}

QString Text(const Record& record)
{
    QString references;
    for (const ZAXGeoGeometryRef& reference : record.references)
        references += u' ' + QString::number(reference.GetId());
    return QStringLiteral("class %1: %2 of %3 at %4 to%5: %6")
        .arg(QString::number(record.classIndex), QString::number(record.id), QString::number(record.parent),
             QString::number(record.place), references, QString::fromLatin1(record.payload.toHex()));
}

/// Everything that \a image holds, for comparison.
QStringList Text(const Image& image)
{
    QStringList lines{image.documentId.toString(), QString::number(image.lastId)};
    for (const ZAXHostDocumentClass& entry : image.classes)
        lines.append(QStringLiteral("%1 version %2 of %3")
                         .arg(QString::fromUtf8(entry.name))
                         .arg(entry.version)
                         .arg(entry.base));
    for (const Record& record : image.records)
        lines.append(Text(record));
    return lines;
}

/// What is said first about \a bytes; empty when they are read and whole.
QString Complaint(const QByteArray& bytes)
{
    Image image;
    const auto result = ZAXHostDocumentCodec::Decode(bytes, image);
    return result && !image.damages.isEmpty() ? image.damages.constFirst().GetMessage() : result.GetMessage();
}

QString DamagedAt(qsizetype position, const char* what)
{
    return QStringLiteral("The document is damaged at byte %1: %2.").arg(position).arg(QLatin1String(what));
}

/// A file with \a depth objects, each below the one before, with ids that go up or down.
QByteArray NestedFile(int depth, bool isAscending)
{
    File file;
    quint64 parent = 0;
    for (int i = 0; i < depth; ++i) {
        const auto id = static_cast<quint64>(isAscending ? 1 + i : depth - i);
        file.Add({.id = id, .parent = parent});
        parent = id;
    }
    return file.End().Bytes();
}

const qsizetype headerSize = File().Size();

} // namespace

class tst_ZAXHostDocumentCodec : public QObject
{
    Q_OBJECT

private slots:
    void imageIsReadBack_data();
    void imageIsReadBack();
    void bytesAreThoseOfTheFormat();
    void sameImageGivesTheSameBytes();
    void classesAreEnteredOnce();
    void readsAFileOfAnotherHand();
    void readsAFileOfALaterFormatThatItMayRead();
    void failureLeavesTheImage();
    void everyFlippedBitIsFound();
    void everyBeginningIsRefused();
    void refuses_data();
    void refuses();
    void nestingEndsAtItsLimit();
    void whatIsDamagedOrMoreThanWasExpectedDoesNotReadBack();
};

void tst_ZAXHostDocumentCodec::imageIsReadBack_data()
{
    QTest::addColumn<Image>("image");
    QTest::newRow("empty") << Image();
    QTest::newRow("full") << FullImage();
    Image large = FullImage();
    large.lastId = std::numeric_limits<quint64>::max();
    large.classes.append({"ZAXFeatRoot", std::numeric_limits<int>::max(), 3});
    large.records[2].id = large.lastId;
    large.records[2].payload = QByteArray(100000, '\xff');
    QTest::newRow("large numbers") << large;
}

void tst_ZAXHostDocumentCodec::imageIsReadBack()
{
    QFETCH(Image, image);
    Image read;
    const auto result = ZAXHostDocumentCodec::Decode(ZAXHostDocumentCodec::Encode(image), read);
    QCOMPARE(result.GetMessage(), QString());
    QVERIFY(result);
    QCOMPARE(Text(read), Text(image));
}

void tst_ZAXHostDocumentCodec::bytesAreThoseOfTheFormat()
{
    Image image;
    image.documentId = QUuid(QStringLiteral("{00000000-0000-0000-0000-00000000abcd}"));
    image.lastId = 9;
    image.classes = {{"ZAXFeatFolder", 1, -1}, {"ZAXProbePart", 2, 0}};
    image.records = {{1, 7, 0, 0, {ZAXGeoGeometryRef::FromId(9)}, "ab"}, {0, 9, 7, 0, {}, ""}};
    const QByteArray bytes = ZAXHostDocumentCodec::Encode(image);
    QCOMPARE(bytes.toHex(' '), File({{"ZAXFeatFolder", 1}, {"ZAXProbePart", 2, 0}}, 9)
                                   .Add({.classIndex = 1, .id = 7, .references = {9}, .payload = "ab"})
                                   .Add({.classIndex = 0, .id = 9, .parent = 7})
                                   .End()
                                   .Bytes()
                                   .toHex(' '));
    QCOMPARE(bytes.first(36).toHex(), QByteArray("895a41580d0a1a0a"
                                                 "0001"
                                                 "0001"
                                                 "0000000000000000000000000000abcd"
                                                 "0000000000000009"));
}

void tst_ZAXHostDocumentCodec::sameImageGivesTheSameBytes()
{
    QCOMPARE(ZAXHostDocumentCodec::Encode(FullImage()), ZAXHostDocumentCodec::Encode(FullImage()));
}

void tst_ZAXHostDocumentCodec::classesAreEnteredOnce()
{
    using Chain = QList<ZAXHostDocumentClass>;
    Image image;
    const Chain part{{"ZAXProbePart", 2, -1}, {"ZAXFeatObject", 1, -1}};
    const Chain newPart{{"ZAXProbePart", 2, -1}, {"ZAXFeatObject", 4, -1}};
    QCOMPARE(image.AddClass(part), 1U);
    QCOMPARE(image.AddClass(newPart), 3U);
    QCOMPARE(image.AddClass(part), 1U);
    QCOMPARE(image.AddClass({{"ZAXFeatObject", 4, -1}}), 2U);
    QCOMPARE(
        image.classes,
        (Chain{{"ZAXFeatObject", 1, -1}, {"ZAXProbePart", 2, 0}, {"ZAXFeatObject", 4, -1}, {"ZAXProbePart", 2, 2}}));
    QCOMPARE(image.GetChain(3), (Chain{{"ZAXProbePart", 2, 2}, {"ZAXFeatObject", 4, -1}}));
    QCOMPARE(image.GetChain(0), (Chain{{"ZAXFeatObject", 1, -1}}));
}

void tst_ZAXHostDocumentCodec::readsAFileOfAnotherHand()
{
    // The table of classes needs no order, and may name classes that no object is of.
    const QByteArray bytes = File({{"Unused", 4}, {"ZAXProbePart", 2}, {"ZAXFeatFolder", 1}}, 50)
                                 .Add({.classIndex = 1, .id = 50, .references = {3, 3}, .payload = "x"})
                                 .Add({.classIndex = 2, .id = 4, .parent = 50})
                                 .Add({.classIndex = 1, .id = 5, .parent = 50, .place = 1})
                                 .End()
                                 .Bytes();
    Image image;
    QCOMPARE(ZAXHostDocumentCodec::Decode(bytes, image).GetMessage(), QString());
    QCOMPARE(Text(image),
             QStringList({QStringLiteral("{00000000-0000-0000-0000-00000000abcd}"), QStringLiteral("50"),
                          QStringLiteral("Unused version 4 of -1"), QStringLiteral("ZAXProbePart version 2 of -1"),
                          QStringLiteral("ZAXFeatFolder version 1 of -1"),
                          QStringLiteral("class 1: 50 of 0 at 0 to 3 3: 78"),
                          QStringLiteral("class 2: 4 of 50 at 0 to: "), QStringLiteral("class 1: 5 of 50 at 1 to: ")}));
}

void tst_ZAXHostDocumentCodec::readsAFileOfALaterFormatThatItMayRead()
{
    QCOMPARE(Complaint(File({}, 0, 1, 7).End().Bytes()), QString());
    QCOMPARE(Complaint(File({}, 0, 0, 7).End().Bytes()), QString());
}

void tst_ZAXHostDocumentCodec::failureLeavesTheImage()
{
    Image image = FullImage();
    const QByteArray bytes = ZAXHostDocumentCodec::Encode(Image());
    QVERIFY(!ZAXHostDocumentCodec::Decode(bytes.first(30), image));
    QVERIFY(!ZAXHostDocumentCodec::Decode('x' + bytes, image));
    QCOMPARE(Text(image), Text(FullImage()));
}

void tst_ZAXHostDocumentCodec::everyFlippedBitIsFound()
{
    const QByteArray bytes = ZAXHostDocumentCodec::Encode(FullImage());
    for (qsizetype bit = 0; bit < bytes.size() * 8; ++bit) {
        QByteArray damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged.at(bit / 8) ^ (1 << (bit % 8)));
        QVERIFY2(!Complaint(damaged).isEmpty(), qPrintable(QStringLiteral("bit %1").arg(bit)));
    }
}

void tst_ZAXHostDocumentCodec::everyBeginningIsRefused()
{
    const QByteArray bytes = ZAXHostDocumentCodec::Encode(FullImage());
    for (qsizetype size = 0; size < bytes.size(); ++size)
        QVERIFY2(!Complaint(bytes.first(size)).isEmpty(), qPrintable(QStringLiteral("%1 bytes").arg(size)));
    QCOMPARE(Complaint(bytes), QString());
}

void tst_ZAXHostDocumentCodec::refuses_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    const QString foreign =
        QStringLiteral("This is not a document of this program, or one that was changed by a transfer as text.");
    const QByteArray good = File().Add({}).End().Bytes();
    const QByteArray header = File().Bytes();

    QTest::newRow("nothing") << QByteArray() << QStringLiteral("The document is empty.");
    QTest::newRow("a text") << QByteArray("{ \"materials\": [] }") << foreign;
    QTest::newRow("a few zeros") << QByteArray(3, '\0') << foreign;
    QTest::newRow("transfer that drops carriage returns") << QByteArray(good).replace("\r\n", "\n") << foreign;
    QTest::newRow("transfer that adds carriage returns") << QByteArray(good).replace("\n", "\r\n") << foreign;
    QTest::newRow("transfer of seven bits") << QByteArray(good).replace(0, 1, "\x09") << foreign;
    QTest::newRow("file signature alone") << header.first(8) << DamagedAt(0, "the header is not what was written");

    QTest::newRow("format of a newer program")
        << File({}, 0, 2, 2).End().Bytes()
        << QStringLiteral("The document was written by a newer program: reading it takes format 2, this program knows "
                          "format 1.");
    QTest::newRow("format of a much newer program")
        << File({}, 0, 65535, 65535).Bytes()
        << QStringLiteral("The document was written by a newer program: reading it takes format 65535, this program "
                          "knows format 1.");
    QTest::newRow("header with a wrong checksum")
        << header.chopped(1) + '\0' << DamagedAt(0, "the header is not what was written");
    QTest::newRow("header with too many classes")
        << QByteArray(header).replace(36, 4, "\xff\xff\xff\xff") << DamagedAt(0, "the header is not what was written");
    QTest::newRow("header with a class name too long")
        << QByteArray(header).replace(40, 4, "\xff\xff\xff\xff") << DamagedAt(0, "the header is not what was written");

    QTest::newRow("no end") << header << DamagedAt(headerSize, "the file ends too early");
    QTest::newRow("object but no end") << good.chopped(24) << DamagedAt(good.size() - 24, "the file ends too early");
    QTest::newRow("something else than an object")
        << File().AddBytes("JUNK").End().Bytes() << DamagedAt(headerSize, "the object is not what was written");
    QTest::newRow("something else than a second object")
        << File().Add({}).AddBytes("obj ").End().Bytes()
        << DamagedAt(good.size() - 24, "the object is not what was written");

    QTest::newRow("object with a wrong checksum") << QByteArray(good).replace(headerSize + 8 + 32, 1, "\x01")
                                                  << DamagedAt(headerSize, "the object is not what was written");
    QTest::newRow("object longer than the file") << File().AddBytes("OBJ \xff\xff\xff\xff").End().Bytes()
                                                 << DamagedAt(headerSize, "the object is not what was written");
    QTest::newRow("object without a body")
        << File().AddBody({}).End().Bytes() << DamagedAt(headerSize, "the object cannot be read");
    QTest::newRow("object with half a body") << File().AddBody(Object().Body().first(20)).End().Bytes()
                                             << DamagedAt(headerSize, "the object cannot be read");
    QTest::newRow("object with more than a body")
        << File().AddBody(Object().Body() + '\0').End().Bytes() << DamagedAt(headerSize, "the object cannot be read");
    QTest::newRow("object of no class") << File().Add({.classIndex = 1}).End().Bytes()
                                        << DamagedAt(headerSize, "the object cannot be read");
    QTest::newRow("object far from all classes")
        << File().Add({.classIndex = 0xffffffffU}).End().Bytes() << DamagedAt(headerSize, "the object cannot be read");
    QTest::newRow("object of a class without name") << File({{"", 1}}).Add({}).End().Bytes() << QString();
    QTest::newRow("payload longer than the object")
        << File().AddBody(Object().Body().chopped(4) + Number32(0xffffffffU)).End().Bytes()
        << DamagedAt(headerSize, "the object cannot be read");
    QTest::newRow("more references than room")
        << File().AddBody(Object().Body().replace(24, 4, Number32(1))).End().Bytes()
        << DamagedAt(headerSize, "the object has more references than room for them");
    QTest::newRow("many more references than room")
        << File().AddBody(Object().Body().replace(24, 4, Number32(0xffffffffU))).End().Bytes()
        << DamagedAt(headerSize, "the object has more references than room for them");

    QTest::newRow("object without id") << File().Add({.id = 0}).End().Bytes()
                                       << DamagedAt(headerSize, "the object has an id that was never given");
    QTest::newRow("object with an id above the last one")
        << File().Add({.id = 1001}).End().Bytes() << DamagedAt(headerSize, "the object has an id that was never given");
    QTest::newRow("two objects with one id") << File().Add({.id = 5}).Add({.id = 5, .place = 1}).End().Bytes()
                                             << DamagedAt(headerSize + 44, "two objects have the id 5");
    QTest::newRow("object of an unknown parent")
        << File().Add({.id = 5, .parent = 6}).End().Bytes()
        << DamagedAt(headerSize, "the parent of the object 5 does not precede it");
    QTest::newRow("object of a later parent")
        << File().Add({.id = 5, .parent = 6}).Add({.id = 6}).End().Bytes()
        << DamagedAt(headerSize, "the parent of the object 5 does not precede it");
    QTest::newRow("object of itself") << File().Add({.id = 5, .parent = 5}).End().Bytes()
                                      << DamagedAt(headerSize, "the object 5 stands behind or below itself");
    QTest::newRow("first object in the second place")
        << File().Add({.place = 1}).End().Bytes() << DamagedAt(headerSize, "the objects are not in their order");
    QTest::newRow("second object in the first place")
        << File().Add({.id = 1}).Add({.id = 2}).End().Bytes()
        << DamagedAt(headerSize + 44, "the objects are not in their order");
    QTest::newRow("object in a far place") << File().Add({.place = 0xffffffffU}).End().Bytes()
                                           << DamagedAt(headerSize, "the objects are not in their order");

    File falling;
    falling.Add({.id = 5}).Add({.id = 2, .parent = 5}).Add({.id = 9, .parent = 2});
    QTest::newRow("ids that fall and rise")
        << File(falling).Add({.id = 3, .parent = 5, .place = 1}).End().Bytes() << QString();
    QTest::newRow("the first id again") << File(falling).Add({.id = 5, .place = 1}).End().Bytes()
                                        << DamagedAt(headerSize + 3 * 44, "two objects have the id 5");
    QTest::newRow("wrong place behind ids that fall")
        << File(falling).Add({.id = 3, .parent = 5, .place = 2}).End().Bytes()
        << DamagedAt(headerSize + 3 * 44, "the objects are not in their order");
    File ended;
    ended.Add({.id = 1}).Add({.id = 2, .parent = 1}).Add({.id = 3, .parent = 2}).Add({.id = 4, .place = 1});
    QTest::newRow("child of a branch that has ended")
        << File(ended).Add({.id = 5, .parent = 2, .place = 1}).End().Bytes() << QString();
    QTest::newRow("child of a branch that has ended in a wrong place")
        << File(ended).Add({.id = 5, .parent = 2}).End().Bytes()
        << DamagedAt(headerSize + 4 * 44, "the objects are not in their order");
    QTest::newRow("child of the top behind one of a branch that has ended")
        << File(ended).Add({.id = 5, .parent = 2, .place = 1}).Add({.id = 6, .place = 2}).End().Bytes() << QString();

    const auto fileOf = [](quint64 count, qint64 surplus) {
        File file;
        file.Add({});
        return file.End(count, static_cast<quint64>(file.Size() + 24 + surplus)).Bytes();
    };
    QTest::newRow("end with a wrong checksum")
        << good.chopped(1) + '\0' << DamagedAt(good.size() - 24, "the end is not what was written");
    QTest::newRow("end that counts more objects") << fileOf(2, 0) << DamagedAt(good.size() - 24, "objects are missing");
    QTest::newRow("end that counts fewer objects")
        << fileOf(0, 0) << DamagedAt(good.size() - 24, "objects are missing");
    QTest::newRow("end that tells another size")
        << fileOf(1, 1) << DamagedAt(good.size() - 24, "the file is longer or shorter than what was written");
    QTest::newRow("a byte behind the end")
        << good + '\0' << DamagedAt(good.size(), "there is something behind the end");
    QTest::newRow("the same document behind the end")
        << good + good << DamagedAt(good.size(), "there is something behind the end");
    QTest::newRow("an object behind the end")
        << File().End().Add({}).Bytes() << DamagedAt(headerSize + 24, "there is something behind the end");
}

void tst_ZAXHostDocumentCodec::refuses()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    QCOMPARE(Complaint(bytes), message);
}

void tst_ZAXHostDocumentCodec::nestingEndsAtItsLimit()
{
    QCOMPARE(ZAXHostDocumentCodec::maximumNesting, 256);
    for (const bool isAscending : {true, false}) {
        QCOMPARE(Complaint(NestedFile(256, isAscending)), QString());
        QCOMPARE(Complaint(NestedFile(257, isAscending)),
                 DamagedAt(headerSize + 256 * 44, "the objects are nested too deeply"));
    }
}

void tst_ZAXHostDocumentCodec::whatIsDamagedOrMoreThanWasExpectedDoesNotReadBack()
{
    const QByteArray bytes =
        File().Add({.id = 5}).Add({.id = 7, .parent = 5}).Add({.id = 2, .parent = 5, .place = 1}).End().Bytes();
    ZAXHostDocumentImage image;
    QVERIFY(ZAXHostDocumentCodec::Decode(bytes, image));
    QVERIFY(ZAXHostDocumentCodec::Check(bytes, image));
    QByteArray damaged = bytes;
    damaged.back() = static_cast<char>(damaged.back() ^ 1);
    ZAXHostDocumentImage found;
    QVERIFY(ZAXHostDocumentCodec::Decode(damaged, found));
    QCOMPARE(ZAXHostDocumentCodec::Check(damaged, image).GetMessage(), found.damages.constFirst().GetMessage());
    image.records = {};
    QCOMPARE(ZAXHostDocumentCodec::Check(bytes, image).GetMessage(), QStringLiteral("its bytes do not read back."));
}

QTEST_GUILESS_MAIN(tst_ZAXHostDocumentCodec)
#include "tst_ZAXHostDocumentCodec.moc"
