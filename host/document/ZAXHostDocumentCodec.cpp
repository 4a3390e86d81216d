#include "ZAXHostDocumentCodec.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QHash>
#include <QIODevice>
#include <QtEndian>

#include <algorithm>

#include <zlib.h>

namespace {

// The first byte is no ASCII, and the line ends of both worlds and the end-of-file sign follow: a transfer that takes
// the file for text breaks it visibly.
constexpr char magic[] = "\x89ZAX\r\n\x1a\n";
constexpr qsizetype magicSize = sizeof(magic) - 1;
constexpr quint16 formatVersion = 1;
constexpr quint16 leastReaderVersion = 1;
constexpr quint32 objectTag = 0x4f424a20; // "OBJ "
constexpr quint32 endTag = 0x454e4420;    // "END "
constexpr qsizetype checksumSize = sizeof(quint32);

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostDocument", text);
}

quint32 Checksum(const char* bytes, qsizetype size)
{
    return static_cast<quint32>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes), static_cast<size_t>(size)));
}

class Writer
{
public:
    Writer() : m_data(&m_bytes, QIODevice::WriteOnly) { m_data.setVersion(QDataStream::Qt_6_4); }

    template <typename T>
    Writer& operator<<(T value)
    {
        m_data << value;
        return *this;
    }
    void Raw(const QByteArray& bytes) { m_data.writeRawData(bytes.constData(), static_cast<int>(bytes.size())); }
    /// A length and the bytes.
    void Sized(const QByteArray& bytes)
    {
        m_data << static_cast<quint32>(bytes.size());
        Raw(bytes);
    }
    /// The checksum of everything written since \a from.
    void ChecksumSince(qsizetype from) { m_data << Checksum(m_bytes.constData() + from, m_bytes.size() - from); }

    qsizetype Size() const { return m_bytes.size(); }
    const QByteArray& Bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    QDataStream m_data;
};

QByteArray EncodeBody(const ZAXHostDocumentRecord& record, quint32 classIndex)
{
    Writer body;
    body << classIndex << record.id << record.parent << record.place << static_cast<quint32>(record.references.size());
    for (const ZAXGeoGeometryRef& reference : record.references)
        body << reference.GetId();
    body.Sized(record.payload);
    return body.Bytes();
}

/// Reads from a piece of a file; what reaches over its end gives zeros and IsGood() false.
class Reader
{
public:
    explicit Reader(QByteArrayView bytes, qsizetype position = 0) : m_bytes(bytes), m_position(position) {}

    template <typename T>
    T Number()
    {
        const QByteArrayView bytes = Take(sizeof(T));
        return bytes.isEmpty() ? T(0) : qFromBigEndian<T>(bytes.data());
    }
    QByteArray Sized() { return Take(Number<quint32>()).toByteArray(); }
    QByteArrayView Take(qsizetype size)
    {
        if (!m_isGood || size > Left()) {
            m_isGood = false;
            return {};
        }
        return m_bytes.sliced(std::exchange(m_position, m_position + size), size);
    }

    qsizetype Position() const { return m_position; }
    qsizetype Left() const { return m_bytes.size() - m_position; }
    bool IsGood() const { return m_isGood; }

private:
    QByteArrayView m_bytes;
    qsizetype m_position;
    bool m_isGood = true;
};

class Decoder
{
public:
    explicit Decoder(QByteArrayView bytes) : m_bytes(bytes), m_reader(bytes) {}

    ZAXHostResult Decode(ZAXHostDocumentImage& image)
    {
        if (const auto result = ReadHeader(); !result)
            return result;
        while (true) {
            const qsizetype start = m_reader.Position();
            const auto tag = m_reader.Number<quint32>();
            if (tag == endTag)
                break;
            if (!m_reader.IsGood())
                return Damaged(start, Tr("the file ends too early"));
            if (tag != objectTag)
                return Damaged(start, Tr("an object was expected"));
            if (const auto result = ReadObject(start); !result)
                return result;
        }
        if (const auto result = ReadEnd(); !result)
            return result;
        image = std::move(m_image);
        return ZAXHostResult::Done();
    }

private:
    ZAXHostResult Damaged(qsizetype position, const QString& what) const
    {
        return ZAXHostResult::Failed(
            Tr("The document is damaged at byte %1: %2.").arg(QString::number(position), what));
    }

    /// Reads a checksum and compares it with everything since \a from.
    bool IsSumRight(qsizetype from)
    {
        const qsizetype end = m_reader.Position();
        const auto sum = m_reader.Number<quint32>();
        return m_reader.IsGood() && sum == Checksum(m_bytes.data() + from, end - from);
    }

    ZAXHostResult ReadHeader()
    {
        if (m_bytes.isEmpty())
            return ZAXHostResult::Failed(Tr("The document is empty."));
        if (m_reader.Take(magicSize) != QByteArrayView(magic, magicSize))
            return ZAXHostResult::Failed(Tr("This is not a document of this program, or one that was changed by a "
                                            "transfer as text."));
        m_reader.Number<quint16>();
        const auto leastReader = m_reader.Number<quint16>();
        if (leastReader > formatVersion)
            return ZAXHostResult::Failed(
                Tr("The document was written by a newer program: reading it takes format %1, this program knows "
                   "format %2.")
                    .arg(QString::number(leastReader), QString::number(formatVersion)));
        m_image.documentId = QUuid::fromRfc4122(m_reader.Take(16));
        m_image.lastId = m_reader.Number<quint64>();
        const auto classes = m_reader.Number<quint32>();
        for (quint32 i = 0; i < classes && m_reader.IsGood(); ++i) {
            m_classNames.append(m_reader.Sized());
            m_image.versions.insert(m_classNames.constLast(), static_cast<int>(m_reader.Number<quint32>()));
        }
        if (!IsSumRight(0))
            return Damaged(0, Tr("the header is not what was written"));
        return ZAXHostResult::Done();
    }

    ZAXHostResult ReadObject(qsizetype start)
    {
        const QByteArrayView body = m_reader.Take(m_reader.Number<quint32>());
        if (!IsSumRight(start))
            return Damaged(start, Tr("the object is not what was written"));
        Reader reader(body);
        ZAXHostDocumentRecord record;
        const auto classIndex = reader.Number<quint32>();
        record.className = m_classNames.value(classIndex);
        record.id = reader.Number<quint64>();
        record.parent = reader.Number<quint64>();
        record.place = reader.Number<quint32>();
        const auto references = reader.Number<quint32>();
        if (references > static_cast<quint64>(reader.Left()) / sizeof(quint64))
            return Damaged(start, Tr("the object has more references than room for them"));
        for (quint32 i = 0; i < references; ++i)
            record.references.append(ZAXGeoGeometryRef::FromId(reader.Number<quint64>()));
        record.payload = reader.Sized();
        if (!reader.IsGood() || reader.Left() > 0 || record.className.isEmpty())
            return Damaged(start, Tr("the object cannot be read"));
        return Place(start, std::move(record));
    }

    /// Adds \a record where it says it belongs: under an object read before it, behind its siblings read so far.
    ZAXHostResult Place(qsizetype start, ZAXHostDocumentRecord record)
    {
        if (record.id == 0 || record.id > m_image.lastId)
            return Damaged(start, Tr("the object has an id that was never given"));
        if (m_nesting.contains(record.id))
            return Damaged(start, Tr("two objects have the id %1").arg(record.id));
        if (record.parent != 0 && !m_nesting.contains(record.parent))
            return Damaged(start, Tr("the parent of the object does not precede it"));
        if (record.place != m_children[record.parent]++)
            return Damaged(start, Tr("the objects are not in their order"));
        const int nesting = m_nesting.value(record.parent) + 1;
        if (nesting > ZAXHostDocumentCodec::maximumNesting)
            return Damaged(start, Tr("the objects are nested too deeply"));
        m_nesting.insert(record.id, nesting);
        m_image.records.append(std::move(record));
        return ZAXHostResult::Done();
    }

    ZAXHostResult ReadEnd()
    {
        const qsizetype start = m_reader.Position();
        const auto count = m_reader.Number<quint64>();
        const auto size = m_reader.Number<quint64>();
        if (!IsSumRight(0))
            return Damaged(start, Tr("the document is not what was written"));
        if (count != static_cast<quint64>(m_image.records.size()))
            return Damaged(start, Tr("objects are missing"));
        if (size != static_cast<quint64>(m_reader.Position()) || m_reader.Left() > 0)
            return Damaged(m_reader.Position(), Tr("there is something behind the end"));
        return ZAXHostResult::Done();
    }

    QByteArrayView m_bytes;
    Reader m_reader;
    ZAXHostDocumentImage m_image;
    QList<QByteArray> m_classNames;
    QHash<quint64, int> m_nesting;
    QHash<quint64, quint32> m_children;
};

} // namespace

QByteArray ZAXHostDocumentCodec::Encode(const ZAXHostDocumentImage& image)
{
    Writer writer;
    writer.Raw(QByteArray(magic, magicSize));
    writer << formatVersion << leastReaderVersion;
    writer.Raw(image.documentId.toRfc4122());
    writer << image.lastId;
    auto classNames = image.versions.keys();
    std::ranges::sort(classNames);
    writer << static_cast<quint32>(classNames.size());
    for (const QByteArray& className : std::as_const(classNames)) {
        writer.Sized(className);
        writer << static_cast<quint32>(image.versions.value(className));
    }
    writer.ChecksumSince(0);
    for (const ZAXHostDocumentRecord& record : image.records) {
        const qsizetype start = writer.Size();
        const auto classIndex = std::ranges::lower_bound(classNames, record.className) - classNames.begin();
        writer << objectTag;
        writer.Sized(EncodeBody(record, static_cast<quint32>(classIndex)));
        writer.ChecksumSince(start);
    }
    writer << endTag << static_cast<quint64>(image.records.size());
    writer << static_cast<quint64>(writer.Size() + static_cast<qsizetype>(sizeof(quint64)) + checksumSize);
    writer.ChecksumSince(0);
    return writer.Bytes();
}

ZAXHostResult ZAXHostDocumentCodec::Decode(const QByteArray& bytes, ZAXHostDocumentImage& image)
{
    return Decoder(bytes).Decode(image);
}
