#include "ZAXAllocationMeter.h"
#include "ZAXDocumentBytes.h"
#include "ZAXFeatContainer.h"
#include "ZAXFeatFolder.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDocumentCodec.h"
#include "ZAXProbeNote.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>
#include <QtEndian>

#include <algorithm>
#include <limits>
#include <numeric>

// Damage of a document file: it is noticed whatever it is, it costs nothing but what it hits, and it is bounded in
// what it makes the reader do.

namespace {

using Class = ZAXDocumentBytes::Class;

/// Where an object's frame is in a file.
struct Frame
{
    qsizetype start;
    qsizetype end;
    quint64 id;
};

const QList<Class> folders{{"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"ZAXFeatFolder", 1, 1}};
constexpr quint32 folder = 2;

/// What a reader may use, beside what grows with the file.
constexpr std::ptrdiff_t memoryFloor = 32 * 1024;

QByteArray ReadGolden(const QString& name)
{
    QFile file(QLatin1String(ZAX_GOLDEN_DIR "/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList GoldenNames()
{
    return QDir(QLatin1String(ZAX_GOLDEN_DIR)).entryList({QLatin1String("*.zaxdoc")}, QDir::Files, QDir::Name);
}

ZAXHostResult LoadBytes(ZAXHostDocument& document, QByteArray bytes, ZAXHostDocument::Damage damage)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return document.Load(&buffer, damage);
}

ZAXHostDocumentImage ImageOf(const QByteArray& bytes)
{
    ZAXHostDocumentImage image;
    return ZAXHostDocumentCodec::Decode(bytes, image) ? image : ZAXHostDocumentImage();
}

/// The frames of an undamaged file, found by the lengths they state.
QList<Frame> FramesOf(const QByteArray& bytes)
{
    const auto number = [&](qsizetype position) { return qFromBigEndian<quint32>(bytes.constData() + position); };
    qsizetype position = 40;
    for (quint32 left = number(position - 4); left > 0; --left)
        position += 4 + number(position) + 8;
    position += 4;
    QList<Frame> frames;
    while (bytes.sliced(position, 4) == "OBJ ") {
        const qsizetype end = position + 8 + number(position + 4) + 4;
        frames.append({position, end, qFromBigEndian<quint64>(bytes.constData() + position + 12)});
        position = end;
    }
    return frames;
}

/// What an object is, wherever it stands.
QString Describe(const ZAXHostDocumentImage& image, const ZAXHostDocumentRecord& record)
{
    QStringList words{QString::number(record.id)};
    const auto chain = image.GetChain(record.classIndex);
    for (const ZAXHostDocumentClass& type : chain)
        words.append(QString::fromUtf8(type.name) + u':' + QString::number(type.version));
    for (const ZAXGeoGeometryRef& reference : record.references)
        words.append(QString::number(reference.GetId()));
    words.append(QString::fromLatin1(record.payload.toHex()));
    return words.join(u' ');
}

QHash<quint64, QString> DescribeAll(const QByteArray& bytes)
{
    const ZAXHostDocumentImage image = ImageOf(bytes);
    QHash<quint64, QString> descriptions;
    for (const ZAXHostDocumentRecord& record : image.records)
        descriptions.insert(record.id, Describe(image, record));
    return descriptions;
}

/// A golden document and everything that damaged copies of it are compared with.
class Golden
{
public:
    explicit Golden(const QString& name) : bytes(ReadGolden(name)), frames(FramesOf(bytes)), objects(DescribeAll(bytes))
    {
        folder = m_document.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
        m_before = m_document.Encode();
    }

    /// What is wrong about how \a damaged, in which the bytes from \a first to \a last are not what was written, is
    /// read; empty if nothing is.
    QString Judge(const QByteArray& damaged, qsizetype first, qsizetype last)
    {
        ZAXHostDocumentImage image;
        std::ptrdiff_t peak = 0;
        bool isRead = false;
        {
            const ZAXAllocationMeter meter;
            isRead = bool(ZAXHostDocumentCodec::Decode(damaged, image));
            peak = ZAXAllocationMeter::Peak();
        }
        if (isRead && image.damages.isEmpty())
            return QLatin1String("undetected");
        if (peak > 8 * damaged.size() + memoryFloor)
            return QStringLiteral("takes %1 bytes of memory").arg(peak);
        if (LoadBytes(m_document, damaged, ZAXHostDocument::RefuseDamage) || m_document.Encode() != m_before)
            return QLatin1String("not refused");
        return isRead ? JudgeRecovery(damaged, first, last) : JudgeRefusal(frames, first);
    }

    QByteArray bytes;
    QList<Frame> frames;
    QHash<quint64, QString> objects;
    ZAXFeatObject* folder;

private:
    /// Nothing may be refused altogether for damage behind the header.
    QString JudgeRefusal(const QList<Frame>& frames, qsizetype first) const
    {
        const qsizetype header = frames.isEmpty() ? bytes.size() - 24 : frames.constFirst().start;
        return first < header ? QString() : QLatin1String("refused");
    }

    QString JudgeRecovery(const QByteArray& damaged, qsizetype first, qsizetype last) const
    {
        ZAXHostDocument recovered;
        if (!LoadBytes(recovered, damaged, ZAXHostDocument::RecoverDamage))
            return QLatin1String("not recovered");
        if (!recovered.IsDamaged())
            return QLatin1String("not marked as damaged");
        const auto found = DescribeAll(recovered.Encode());
        const auto isLost = [&](const Frame& frame) {
            const bool isHit = frame.start <= last && first < frame.end;
            return !isHit && found.value(frame.id) != objects.value(frame.id);
        };
        const auto lost = std::ranges::find_if(frames, isLost);
        return lost == frames.end() ? QString() : QStringLiteral("object %1 is lost").arg(lost->id);
    }

    ZAXHostDocument m_document;
    QByteArray m_before;
};

/// Every \a n-th of the numbers below \a end; all of them when the full tests are asked for.
QList<qsizetype> Sample(qsizetype end, qsizetype n)
{
    const qsizetype stride = qEnvironmentVariableIntValue("ZAX_FULL_TESTS") ? 1 : n;
    QList<qsizetype> numbers((end + stride - 1) / stride);
    std::ranges::generate(numbers, [next = -stride, stride]() mutable { return next += stride; });
    return numbers;
}

} // namespace

class tst_ZAXHostDocumentDamage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void goldenDocumentIsWrittenBackByteForByte_data() { AddGoldenRows(); }
    void goldenDocumentIsWrittenBackByteForByte();
    void everyPrefixIsNoticed_data() { AddGoldenRows(); }
    void everyPrefixIsNoticed();
    void everyBitIsNoticed_data() { AddGoldenRows(); }
    void everyBitIsNoticed();

    void damageHasItsMessage_data();
    void damageHasItsMessage();
    void headerHasItsMessage_data();
    void headerHasItsMessage();
    void damagedObjectIsNamed();
    void objectsOfALostParentAreRecoveredInAFolder();
    void whatRefersToALostObjectIsKept();
    void recoveredDocumentOfFullDepthCanBeSaved();
    void parentCycleIsBroken();
    void whatLeavesNoIdForAFolderIsRefused();
    void dataThatLookLikeObjectsAreNotTakenForThem();
    void damageTakesLittleMemory_data();
    void damageTakesLittleMemory();
    void damageTakesLittleTime_data();
    void damageTakesLittleTime();

private:
    static void AddGoldenRows();
};

void tst_ZAXHostDocumentDamage::initTestCase()
{
    ZAXGeoContainer::RegisterType(&ZAXProbeNote::staticMetaObject);
    QCOMPARE(GoldenNames().size(), 11);
}

void tst_ZAXHostDocumentDamage::AddGoldenRows()
{
    QTest::addColumn<QString>("name");
    const auto names = GoldenNames();
    for (const QString& name : names)
        QTest::newRow(qPrintable(name)) << name;
}

void tst_ZAXHostDocumentDamage::goldenDocumentIsWrittenBackByteForByte()
{
    QFETCH(QString, name);
    const QByteArray bytes = ReadGolden(name);
    QVERIFY(!bytes.isEmpty() && bytes.size() <= 4096);
    ZAXHostDocument document;
    const auto result = LoadBytes(document, bytes, ZAXHostDocument::RefuseDamage);
    QCOMPARE(result.GetMessage(), QString());
    QCOMPARE(document.Encode().toHex(), bytes.toHex());
    QVERIFY(!document.IsDamaged());
}

void tst_ZAXHostDocumentDamage::everyPrefixIsNoticed()
{
    QFETCH(QString, name);
    Golden golden(name);
    const auto sizes = Sample(golden.bytes.size(), 23);
    for (const qsizetype size : sizes) {
        const QString wrong = golden.Judge(golden.bytes.first(size), size, golden.bytes.size());
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("%1 bytes: %2").arg(size).arg(wrong)));
    }
}

void tst_ZAXHostDocumentDamage::everyBitIsNoticed()
{
    QFETCH(QString, name);
    Golden golden(name);
    const auto bits = Sample(golden.bytes.size() * 8, 97);
    for (const qsizetype bit : bits) {
        const qsizetype position = bit / 8;
        QByteArray damaged = golden.bytes;
        damaged[position] = char(damaged.at(position) ^ (1 << (bit % 8)));
        const QString wrong = golden.Judge(damaged, position, position);
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("bit %1: %2").arg(bit).arg(wrong)));
    }
}

void tst_ZAXHostDocumentDamage::damageHasItsMessage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qsizetype>("position");
    QTest::addColumn<QString>("what");
    const auto document = [] { return ZAXDocumentBytes(300, folders); };
    const qsizetype header = document().Bytes().size();
    const qsizetype one = document().Object(folder, 1, 0, 0).Bytes().size();
    const auto row = [](const char* name, const QByteArray& bytes, qsizetype position, const char* what) {
        QTest::newRow(name) << bytes << position << QString::fromUtf8(what);
    };
    const QByteArray label = ZAXDocumentBytes::Feature(QString());
    const auto numberAt = [](QByteArray bytes, qsizetype position, quint32 number) {
        qToBigEndian(number, bytes.data() + position);
        return bytes;
    };

    row("no end", document().Object(folder, 1, 0, 0).Bytes(), one, "the file ends too early");
    row("no end and no object", document().Bytes(), header, "the file ends too early");
    row("a byte behind the end", document().End() + 'x', header + 24, "there is something behind the end");
    row("a document behind the end", document().End() + document().End(), header + 24,
        "there is something behind the end");
    row("an object missing", document().Object(folder, 1, 0, 0).End(2, quint64(one) + 24), one, "objects are missing");
    row("another length", document().Object(folder, 1, 0, 0).End(1, quint64(one) + 25), one,
        "the file is longer or shorter than what was written");
    row("another end", document().Object(folder, 1, 0, 0).End().chopped(1) + 'x', one,
        "the end is not what was written");
    row("neither object nor end", document().Raw("JUNK").Object(folder, 1, 0, 0).End(), header,
        "the object is not what was written");
    row("a length beyond the file", numberAt(document().Object(folder, 1, 0, 0).End(), header + 4, 0xffffffff), header,
        "the object is not what was written");
    const QByteArray body = ZAXDocumentBytes::Body(folder, 1, 0, 0, {}, label);
    row("more references than room", document().Frame(numberAt(body, 24, 0xffffffff)).End(), header,
        "the object has more references than room for them");
    row("more data than room", document().Frame(numberAt(body, 28, 0x7fffffff)).End(), header,
        "the object cannot be read");
    row("less data than room", document().Frame(numberAt(body, 28, 1)).End(), header, "the object cannot be read");
    row("no fields at all", document().Frame({}).End(), header, "the object cannot be read");
    row("no such class", document().Object(3, 1, 0, 0).End(), header, "the object cannot be read");
    row("no id", document().Object(folder, 0, 0, 0).End(), header, "the object has an id that was never given");
    row("an id never given", document().Object(folder, 301, 0, 0).End(), header,
        "the object has an id that was never given");
    row("an id given twice", document().Object(folder, 1, 0, 0).Object(folder, 1, 0, 1).End(), one,
        "two objects have the id 1");
    row("its own parent", document().Object(folder, 1, 1, 0).End(), header,
        "the object 1 stands behind or below itself");
    row("no such parent", document().Object(folder, 1, 7, 0).End(), header,
        "the parent of the object 1 does not precede it");
    row("two under each other", document().Object(folder, 1, 2, 0).Object(folder, 2, 1, 0).End(), header,
        "the parent of the object 1 does not precede it");
    row("in another order", document().Object(folder, 1, 0, 1).End(), header, "the objects are not in their order");
    ZAXDocumentBytes deep = document();
    for (quint64 id = 1; id <= 256; ++id)
        deep.Object(folder, id, id - 1, 0);
    const qsizetype tooDeep = deep.Bytes().size();
    row("nested too deeply", deep.Object(folder, 257, 256, 0).End(), tooDeep, "the objects are nested too deeply");
}

void tst_ZAXHostDocumentDamage::damageHasItsMessage()
{
    QFETCH(QByteArray, bytes);
    QFETCH(qsizetype, position);
    QFETCH(QString, what);
    const QString message = QStringLiteral("The document is damaged at byte %1: %2.").arg(position).arg(what);
    ZAXHostDocument document;
    const QByteArray before = document.Encode();
    QCOMPARE(LoadBytes(document, bytes, ZAXHostDocument::RefuseDamage).GetMessage(), message);
    QCOMPARE(document.Encode(), before);
    QVERIFY(LoadBytes(document, bytes, ZAXHostDocument::RecoverDamage));
    QVERIFY(document.IsDamaged());
    QCOMPARE(document.GetProblems().constFirst().kind, ZAXHostProblem::Damaged);
    QCOMPARE(document.GetProblems().constFirst().message, message);
    QVERIFY(ImageOf(document.Encode()).damages.isEmpty());
}

void tst_ZAXHostDocumentDamage::headerHasItsMessage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    const QString noDocument =
        QLatin1String("This is not a document of this program, or one that was changed by a transfer as text.");
    const QString damaged = QLatin1String("The document is damaged at byte 0: the header is not what was written.");
    const QByteArray whole = ZAXDocumentBytes(1, folders).Object(folder, 1, 0, 0).End();
    QTest::newRow("empty") << QByteArray() << QStringLiteral("The document is empty.");
    QTest::newRow("text") << QByteArray("Hello, world: this is no document.") << noDocument;
    QTest::newRow("line ends changed") << QByteArray(whole).replace("\r\n", "\n") << noDocument;
    QTest::newRow("eighth bit lost") << QByteArray(whole).replace(0, 1, "\x09") << noDocument;
    QTest::newRow("cut off within the magic") << whole.first(5) << noDocument;
    QTest::newRow("cut off within the header") << whole.first(40) << damaged;
    QTest::newRow("more classes than room") << QByteArray(whole).replace(36, 4, "\xff\xff\xff\xff") << damaged;
    QTest::newRow("class behind its derived one") << ZAXDocumentBytes(1, {{"A", 1, 1}, {"B", 1, -1}}).End() << damaged;
    QTest::newRow("class derived from itself") << ZAXDocumentBytes(1, {{"A", 1, 0}}).End() << damaged;
    QTest::newRow("class with an unknown base") << ZAXDocumentBytes(1, {{"A", 1, 7}}).End() << damaged;
    QTest::newRow("class version out of range") << ZAXDocumentBytes(1, {{"A", 0x80000000, -1}}).End() << damaged;
    QTest::newRow("newer format") << ZAXDocumentBytes(1, folders, 2).Raw("what only its readers know").Bytes()
                                  << QStringLiteral("The document was written by a newer program: reading it takes "
                                                    "format 2, this program knows format 1.");
}

void tst_ZAXHostDocumentDamage::headerHasItsMessage()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    ZAXHostDocument document;
    document.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
    const QByteArray before = document.Encode();
    const QUuid id = document.GetDocumentId();
    QCOMPARE(LoadBytes(document, bytes, ZAXHostDocument::RefuseDamage).GetMessage(), message);
    QCOMPARE(LoadBytes(document, bytes, ZAXHostDocument::RecoverDamage).GetMessage(), message);
    QCOMPARE(document.Encode(), before);
    QCOMPARE(document.GetDocumentId(), id);
    QVERIFY(!document.IsDamaged());
}

void tst_ZAXHostDocumentDamage::damagedObjectIsNamed()
{
    const QByteArray bytes = ZAXDocumentBytes(2, folders).Object(folder, 2, 0, 0).Object(folder, 2, 0, 1).End();
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, bytes, ZAXHostDocument::RecoverDamage));
    QCOMPARE(document.GetProblems().constFirst().id, quint64(2));
    QCOMPARE(document.GetProblems().constFirst().className, QByteArray("ZAXFeatFolder"));
}

void tst_ZAXHostDocumentDamage::objectsOfALostParentAreRecoveredInAFolder()
{
    const Golden golden(QLatin1String("folders.zaxdoc"));
    QByteArray damaged = golden.bytes;
    damaged[golden.frames.constFirst().start + 40] = 'X';
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, damaged, ZAXHostDocument::RecoverDamage));
    const auto roots = document.GetContainer()->GetRoots();
    QCOMPARE(roots.size(), 2);
    QCOMPARE(roots.at(0)->GetLabel(), QLatin1String("Recovered objects"));
    QCOMPARE(roots.at(1)->GetId(), quint64(7));
    QVERIFY(roots.at(0)->GetId() > 9);
    const auto children = roots.at(0)->GetChildren();
    QCOMPARE(children.size(), 2);
    QCOMPARE(children.at(0)->GetId(), quint64(2));
    QCOMPARE(children.at(1)->GetId(), quint64(3));
    QCOMPARE(children.at(0)->GetChildren().size(), 1);
}

void tst_ZAXHostDocumentDamage::whatRefersToALostObjectIsKept()
{
    const Golden golden(QLatin1String("notes.zaxdoc"));
    QByteArray damaged = golden.bytes;
    damaged[golden.frames.at(2).start + 50] = 'X';
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, damaged, ZAXHostDocument::RecoverDamage));
    const auto found = DescribeAll(document.Encode());
    QCOMPARE(found.value(2), golden.objects.value(2));
    QCOMPARE(found.value(5), golden.objects.value(5));
    QVERIFY(!found.contains(3));
    // And it stays so when the recovered document is read again.
    ZAXHostDocument again;
    QVERIFY(LoadBytes(again, document.Encode(), ZAXHostDocument::RefuseDamage));
    QCOMPARE(again.Encode(), document.Encode());
    QVERIFY(std::ranges::none_of(again.GetProblems(),
                                 [](const auto& problem) { return problem.kind == ZAXHostProblem::Unavailable; }));
}

void tst_ZAXHostDocumentDamage::recoveredDocumentOfFullDepthCanBeSaved()
{
    ZAXDocumentBytes deep(256, folders);
    for (quint64 id = 1; id <= 256; ++id)
        deep.Object(folder, id, id - 1, 0);
    QByteArray damaged = deep.End();
    damaged[FramesOf(damaged).constFirst().start + 12] = 'X';
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, damaged, ZAXHostDocument::RecoverDamage));
    QCOMPARE(document.GetContainer()->GetGeometries().size(), 256);
    QVERIFY(ImageOf(document.Encode()).damages.isEmpty());
}

void tst_ZAXHostDocumentDamage::parentCycleIsBroken()
{
    const QByteArray cycle =
        ZAXDocumentBytes(3, folders).Object(folder, 1, 3, 0).Object(folder, 2, 1, 0).Object(folder, 3, 2, 0).End();
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, cycle, ZAXHostDocument::RecoverDamage));
    QVERIFY(ImageOf(document.Encode()).damages.isEmpty());
    QVERIFY(document.GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef::FromId(1)));
    QVERIFY(document.GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef::FromId(2)));
    const auto problems = document.GetProblems();
    QCOMPARE(problems.size(), 2);
    QVERIFY(problems.at(1).message.contains(QLatin1String("the object 3 stands behind or below itself")));
}

void tst_ZAXHostDocumentDamage::whatLeavesNoIdForAFolderIsRefused()
{
    constexpr quint64 last = std::numeric_limits<quint64>::max();
    const QByteArray orphan = ZAXDocumentBytes(last, folders).Object(folder, last, 1, 0).End();
    ZAXHostDocument document;
    const QByteArray before = document.Encode();
    const auto result = LoadBytes(document, orphan, ZAXHostDocument::RecoverDamage);
    QVERIFY(!result);
    QCOMPARE(result.GetMessage(), QLatin1String("The document has no ids left for new objects."));
    QCOMPARE(document.Encode(), before);
    QVERIFY(!document.IsDamaged());
    // With a parent it needs no folder.
    const QByteArray whole = ZAXDocumentBytes(last, folders).Object(folder, last, 0, 0).End();
    QVERIFY(LoadBytes(document, whole, ZAXHostDocument::RefuseDamage));
    QCOMPARE(document.Encode(), whole);
}

void tst_ZAXHostDocumentDamage::dataThatLookLikeObjectsAreNotTakenForThem()
{
    const Golden golden(QLatin1String("deceptive.zaxdoc"));
    QByteArray damaged = golden.bytes;
    damaged[golden.frames.at(1).start] = 'X';
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, damaged, ZAXHostDocument::RecoverDamage));
    QCOMPARE(document.GetContainer()->GetGeometries().size(), 4);
    QCOMPARE(DescribeAll(document.Encode()).value(3), golden.objects.value(3));
}

void tst_ZAXHostDocumentDamage::damageTakesLittleMemory_data()
{
    QTest::addColumn<QByteArray>("bytes");
    constexpr int many = 20000;
    const auto times = [](int count, auto object) {
        ZAXDocumentBytes document(many, folders);
        for (int i = 0; i < count; ++i)
            object(document, quint64(i));
        return document.End();
    };
    const auto manyTimes = [&](auto object) { return times(many, object); };
    const auto belowItself = [](auto& document, quint64 i) { document.Object(folder, i + 1, i + 1, 0, {}); };
    const auto neverGiven = [](auto& document, quint64 i) { document.Object(folder, many + 1 + i, 0, 0, {}); };
    for (const int count : {2000, many}) {
        QTest::addRow("%d below themselves", count) << times(count, belowItself);
        QTest::addRow("%d with ids never given", count) << times(count, neverGiven);
    }
    QTest::newRow("undamaged") << manyTimes(
        [](auto& document, quint64 i) { document.Object(folder, i + 1, 0, quint32(i), {}); });
    QTest::newRow("one id for all") << manyTimes(
        [](auto& document, quint64 i) { document.Object(folder, 1, 0, quint32(i), {}); });
    QTest::newRow("all without a parent")
        << manyTimes([](auto& document, quint64 i) { document.Object(folder, i + 1, i + 2, 0, {}); });
    QTest::newRow("all empty") << manyTimes([](auto& document, quint64) { document.Frame({}); });
    QTest::newRow("all without their tag") << manyTimes([](auto& document, quint64) { document.Raw("OBJ").Frame({}); });
    QByteArray references = ZAXDocumentBytes::Body(folder, 1, 0, 0, QList<quint64>(many, 1), {});
    QTest::newRow("many references") << ZAXDocumentBytes(many, folders).Frame(references).End();
    qToBigEndian(quint32(many + 1), references.data() + 24);
    QTest::newRow("one reference too many") << ZAXDocumentBytes(many, folders).Frame(references).End();
    QTest::newRow("one long text")
        << ZAXDocumentBytes(many, folders).Object(folder, 1, 0, 0, QByteArray(100 * many, 'x')).End();
    QTest::newRow("many classes") << ZAXDocumentBytes(many, QList<Class>(many, {"", 1, -1})).End();
    QTest::newRow("nothing but tags") << ZAXDocumentBytes(many, folders).Raw(QByteArray("OBJ ").repeated(many)).End();
}

void tst_ZAXHostDocumentDamage::damageTakesLittleMemory()
{
    QFETCH(QByteArray, bytes);
    ZAXHostDocumentImage image;
    const ZAXAllocationMeter meter;
    QVERIFY(ZAXHostDocumentCodec::Decode(bytes, image));
    const std::ptrdiff_t peak = ZAXAllocationMeter::Peak();
    QVERIFY2(peak <= 8 * bytes.size() + memoryFloor,
             qPrintable(QStringLiteral("%1 times the size").arg(double(peak) / double(bytes.size()))));
    QVERIFY(peak > 0);
}

void tst_ZAXHostDocumentDamage::damageTakesLittleTime_data()
{
    QTest::addColumn<QByteArray>("bytes");
    // Ever so many starts of objects that reach to the end of the file.
    const QByteArray starts = QByteArray("OBJ \0\x08\0\0", 8).repeated(100000) + QByteArray(0x80000, 'x');
    QTest::newRow("long objects") << ZAXDocumentBytes(1, folders).Raw(starts).End();
    QTest::newRow("long objects without an end") << ZAXDocumentBytes(1, folders).Raw(starts).Bytes();
    // Objects one after the other, none of them whole, that can be followed from each.
    const QByteArray chain = QByteArray("OBJ \0\0\0\0none", 12).repeated(50000);
    QTest::newRow("a chain") << ZAXDocumentBytes(1, folders).Raw(chain).End();
    QTest::newRow("a chain without an end") << ZAXDocumentBytes(1, folders).Raw(chain).Bytes();
    QTest::newRow("a chain that ends too early") << ZAXDocumentBytes(1, folders).Raw(chain).Raw("END ").Bytes();
}

void tst_ZAXHostDocumentDamage::damageTakesLittleTime()
{
    QFETCH(const QByteArray, bytes);
    ZAXHostDocumentImage image;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(ZAXHostDocumentCodec::Decode(bytes, image));
    QVERIFY(!image.damages.isEmpty());
    QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_GUILESS_MAIN(tst_ZAXHostDocumentDamage)
#include "tst_ZAXHostDocumentDamage.moc"
