#include "ZAXHostDocumentCodec.h"

#include "ZAXHostChecksum.h"

#include <QCoreApplication>
#include <QHash>
#include <QVarLengthArray>
#include <QtEndian>

#include <algorithm>

namespace {

// The first byte is no ASCII, and the line ends of both worlds and the end-of-file sign follow: a transfer that takes
// the file for text breaks it visibly.
constexpr char magic[] = "\x89ZAX\r\n\x1a\n";
constexpr qsizetype magicSize = sizeof(magic) - 1;
constexpr quint16 formatVersion = 1;
constexpr quint16 leastReaderVersion = 1;
constexpr quint32 objectTag = 0x4f424a20; // "OBJ "
constexpr quint32 endTag = 0x454e4420;    // "END "
constexpr qsizetype tagSize = sizeof(quint32);
constexpr qsizetype checksumSize = sizeof(quint32);
constexpr qsizetype endSize = tagSize + 2 * sizeof(quint64) + checksumSize;
/// Up to the class table.
constexpr qsizetype headSize = magicSize + 2 * sizeof(quint16) + 16 + sizeof(quint64) + sizeof(quint32);
constexpr qsizetype frameHeadSize = tagSize + sizeof(quint32);
/// Up to the references.
constexpr qsizetype bodyHeadSize = 3 * sizeof(quint32) + 2 * sizeof(quint64);

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostDocument", text);
}

quint32 Checksum(const char* bytes, qsizetype size)
{
    return ZAXHostChecksum::Of(QByteArrayView(bytes, size));
}

/// Writes into bytes whose number is known beforehand.
class Writer
{
public:
    explicit Writer(qsizetype size) : m_bytes(size, Qt::Uninitialized), m_end(m_bytes.data()) {}

    template <typename T>
    Writer& operator<<(T value)
    {
        qToBigEndian(value, m_end);
        m_end += sizeof(T);
        return *this;
    }
    void Raw(QByteArrayView bytes) { m_end = std::copy(bytes.begin(), bytes.end(), m_end); }
    /// A length and the bytes.
    void Sized(QByteArrayView bytes)
    {
        *this << static_cast<quint32>(bytes.size());
        Raw(bytes);
    }
    /// The checksum of everything written since \a from.
    void ChecksumSince(qsizetype from) { *this << Checksum(m_bytes.constData() + from, Size() - from); }

    qsizetype Size() const { return m_end - m_bytes.constData(); }
    const QByteArray& Bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    char* m_end;
};

qsizetype SizedSize(const QByteArray& bytes)
{
    return static_cast<qsizetype>(sizeof(quint32)) + bytes.size();
}

qsizetype BodySize(const ZAXHostDocumentRecord& record)
{
    return bodyHeadSize + record.references.size() * static_cast<qsizetype>(sizeof(quint64)) +
           SizedSize(record.payload);
}

qsizetype SizeOf(const ZAXHostDocumentImage& image)
{
    qsizetype size = headSize + checksumSize + endSize;
    for (const ZAXHostDocumentClass& type : image.classes)
        size += SizedSize(type.name) + 2 * static_cast<qsizetype>(sizeof(quint32));
    for (const ZAXHostDocumentRecord& record : image.records)
        size += frameHeadSize + BodySize(record) + checksumSize;
    return size;
}

void Write(Writer& writer, const ZAXHostDocumentRecord& record)
{
    const qsizetype start = writer.Size();
    writer << objectTag << static_cast<quint32>(BodySize(record));
    writer << record.classIndex << record.id << record.parent << record.place
           << static_cast<quint32>(record.references.size());
    for (const ZAXGeoGeometryRef& reference : record.references)
        writer << reference.GetId();
    writer.Sized(record.payload);
    writer.ChecksumSince(start);
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
    QByteArrayView Sized()
    {
        const auto size = Number<quint32>();
        return Take(size);
    }
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

/// Reads a file from front to back. What is not whole is noted and passed over, up to the next frame that is.
class Decoder
{
public:
    /// With \a expected, objects are not kept but compared.
    explicit Decoder(QByteArrayView bytes, const ZAXHostDocumentImage* expected = nullptr)
        : m_bytes(bytes), m_reader(bytes), m_expected(expected)
    {
        if (!expected)
            m_image.records.reserve(UsualCount());
    }

    ZAXHostResult Decode(ZAXHostDocumentImage& image)
    {
        if (const auto result = ReadHeader(); !result)
            return result;
        qsizetype position = m_reader.Position();
        while (position < m_bytes.size() && !m_isEnded)
            position = ReadFrame(position);
        if (!m_isEnded)
            NoteDamage(m_bytes.size(), 0, QT_TRANSLATE_NOOP("ZAXHostDocument", "the file ends too early"));
        else if (position < m_bytes.size())
            NoteDamage(position, m_bytes.size() - position,
                       QT_TRANSLATE_NOOP("ZAXHostDocument", "there is something behind the end"));
        image = std::move(m_image);
        return ZAXHostResult::Done();
    }

    /// Whether all is there that was expected, and nothing else.
    bool IsAsExpected() const { return m_isAsExpected && m_count == m_expected->records.size(); }

private:
    /// How many objects the file usually has.
    qsizetype UsualCount() const { return m_expected ? m_expected->records.size() : m_bytes.size() / 256; }

    /// Notes a damage, of an object if that is known. What follows on a damage and tells no more is part of that one.
    void NoteDamage(qsizetype position, qsizetype size, const char* what, quint64 id = 0,
                    const QByteArray& className = {})
    {
        if (id == 0 && !m_image.damages.isEmpty()) {
            auto& last = m_image.damages.last();
            if (last.id == 0 && last.position + last.size == position) {
                last.size += size;
                return;
            }
        }
        m_image.damages.append({position, size, id, className, what});
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
        m_image.documentId = QUuid::fromRfc4122(m_reader.Take(16));
        m_image.lastId = m_reader.Number<quint64>();
        const auto classes = m_reader.Number<quint32>();
        for (quint32 i = 0; i < classes && m_reader.IsGood(); ++i) {
            const QByteArray name = m_reader.Sized().toByteArray();
            const auto version = static_cast<int>(m_reader.Number<quint32>());
            const auto base = static_cast<qint32>(m_reader.Number<quint32>());
            m_image.classes.append({name, version, base});
        }
        const qsizetype end = m_reader.Position();
        const auto sum = m_reader.Number<quint32>();
        const bool isWhole = m_reader.IsGood() && sum == Checksum(m_bytes.data(), end);
        // A newer format may have a header that only its readers can check.
        if (leastReader > formatVersion) {
            return ZAXHostResult::Failed(
                Tr("The document was written by a newer program: reading it takes format %1, this program knows "
                   "format %2.")
                    .arg(QString::number(leastReader), QString::number(formatVersion)));
        }
        if (!isWhole || !AreClassesInOrder())
            return ZAXHostResult::Failed(ZAXHostDocumentDamage{
                0, 0, 0, {}, QT_TRANSLATE_NOOP("ZAXHostDocument", "the header is not what was written")}
                                             .GetMessage());
        return ZAXHostResult::Done();
    }

    bool AreClassesInOrder() const
    {
        for (qsizetype i = 0; i < m_image.classes.size(); ++i) {
            const qint32 base = m_image.classes.at(i).base;
            if (base < -1 || base >= i || m_image.classes.at(i).version < 0)
                return false;
        }
        return true;
    }

    /// Reads the frame at \a start, or notes why it cannot; returns where the next one starts.
    qsizetype ReadFrame(qsizetype start)
    {
        Reader reader(m_bytes, start);
        const auto tag = reader.Number<quint32>();
        if (tag == endTag && reader.Left() >= endSize - tagSize)
            return ReadEnd(start);
        const qsizetype next = tag == objectTag ? EndOfObject(start) : -1;
        if (next >= 0) {
            ReadObject(start, next);
            return next;
        }
        const qsizetype behind = BehindFrame(start);
        const qsizetype found = behind >= 0 ? behind : FindFrame(start + 1);
        NoteDamage(start, found - start, QT_TRANSLATE_NOOP("ZAXHostDocument", "the object is not what was written"));
        return found;
    }

    /// Where the object frame at \a start ends; -1 when it is not whole.
    qsizetype EndOfObject(qsizetype start)
    {
        Reader reader(m_bytes, start + tagSize);
        const auto size = reader.Number<quint32>();
        if (!reader.IsGood() || size > static_cast<quint64>(reader.Left()))
            return -1;
        reader.Take(size);
        // Damage can look like the start of ever so many frames; checking them must not take for ever.
        m_checked += size;
        if (m_checked > 16 * m_bytes.size())
            return -1;
        const qsizetype end = reader.Position();
        const auto sum = reader.Number<quint32>();
        return reader.IsGood() && sum == Checksum(m_bytes.data() + start, end - start) ? reader.Position() : -1;
    }

    /// Where the frame behind the damaged one at \a start begins, if the length of that one still tells; -1 if not.
    /// What its data hold must not be taken for objects.
    qsizetype BehindFrame(qsizetype start)
    {
        Reader reader(m_bytes, start + tagSize);
        const auto size = reader.Number<quint32>();
        if (!reader.IsGood() || size + quint64(checksumSize) > static_cast<quint64>(reader.Left()))
            return -1;
        const qsizetype behind = reader.Position() + size + checksumSize;
        return IsFrame(behind) ? behind : -1;
    }

    /// Where the next frame starts from \a position on: one that others follow up to the end, as data may look like
    /// a frame too, or else the first one.
    qsizetype FindFrame(qsizetype position)
    {
        if (m_isEndInReach) {
            qsizetype found = position;
            while (found < m_bytes.size() && !(RunsToEnd(found) && IsFrame(found)))
                ++found;
            m_isEndInReach = found < m_bytes.size();
            if (m_isEndInReach)
                return found;
        }
        while (position < m_bytes.size() && !IsFrame(position))
            ++position;
        return position;
    }

    /// Whether frames, as far as their lengths tell, follow each other from \a position up to the end.
    bool RunsToEnd(qsizetype position)
    {
        for (; m_steps < m_bytes.size(); ++m_steps) {
            Reader reader(m_bytes, position);
            const auto tag = reader.Number<quint32>();
            if (tag != objectTag)
                return tag == endTag && m_bytes.size() - position == endSize;
            reader.Take(reader.Number<quint32>());
            reader.Take(checksumSize);
            if (!reader.IsGood())
                return false;
            position = reader.Position();
        }
        return false;
    }

    /// Whether a whole object, or what looks like the end of the file, is at \a position.
    bool IsFrame(qsizetype position)
    {
        const auto tag = Reader(m_bytes, position).Number<quint32>();
        return tag == endTag ? m_bytes.size() - position == endSize : tag == objectTag && EndOfObject(position) >= 0;
    }

    void ReadObject(qsizetype start, qsizetype next)
    {
        Reader reader(m_bytes.first(next - checksumSize), start + tagSize + static_cast<qsizetype>(sizeof(quint32)));
        ZAXHostDocumentRecord record;
        record.classIndex = reader.Number<quint32>();
        record.id = reader.Number<quint64>();
        record.parent = reader.Number<quint64>();
        record.place = reader.Number<quint32>();
        const auto references = reader.Number<quint32>();
        const bool hasRoom = references <= static_cast<quint64>(reader.Left()) / sizeof(quint64);
        if (references > 0 && hasRoom)
            record.references.reserve(references);
        for (quint32 i = 0; i < references && hasRoom; ++i)
            record.references.append(ZAXGeoGeometryRef::FromId(reader.Number<quint64>()));
        const QByteArrayView payload = reader.Sized();
        record.payload = QByteArray::fromRawData(payload.data(), payload.size());
        const char* why = nullptr;
        if (!hasRoom)
            why = QT_TRANSLATE_NOOP("ZAXHostDocument", "the object has more references than room for them");
        else if (!reader.IsGood() || reader.Left() > 0 || record.classIndex >= m_image.classes.size())
            why = QT_TRANSLATE_NOOP("ZAXHostDocument", "the object cannot be read");
        else
            why = Place(record);
        if (why)
            NoteDamage(start, next - start, why, record.id, m_image.classes.value(record.classIndex).name);
    }

    /// Adds \a record where it says it belongs: under an object read before it, behind its siblings read so far.
    /// Returns why it is not what a writer would have written; null if it is.
    const char* Place(ZAXHostDocumentRecord& record)
    {
        if (record.id == 0 || record.id > m_image.lastId)
            return QT_TRANSLATE_NOOP("ZAXHostDocument", "the object has an id that was never given");
        const bool isExpected =
            !m_expected || (m_count < m_expected->records.size() && record == m_expected->records.at(m_count));
        if (m_isAscending && !(isExpected && record.id > m_highest && DepthOf(record.parent) >= 0))
            RememberBranches();
        return m_isAscending ? PlaceAscending(record) : PlaceAnywhere(record, isExpected);
    }

    /// How many objects stand above the children of \a id; negative when that is not above the last object, or it.
    qsizetype DepthOf(quint64 id) const
    {
        qsizetype depth = m_path.size() - 1;
        while (depth >= 0 && m_path[depth].id != id)
            --depth;
        return depth;
    }

    /// Place() for an object with the highest id so far, below the last one or one above that: none of those that were
    /// read before needs to be looked up.
    const char* PlaceAscending(ZAXHostDocumentRecord& record)
    {
        const qsizetype depth = DepthOf(record.parent);
        if (depth >= ZAXHostDocumentCodec::maximumNesting)
            return QT_TRANSLATE_NOOP("ZAXHostDocument", "the objects are nested too deeply");
        const bool isInOrder = record.place == m_path[depth].next;
        m_path[depth].next = record.place + 1;
        m_path.resize(depth + 1);
        m_path.append({record.id, 0});
        m_highest = record.id;
        Keep(std::move(record), true);
        // What is missing was noted where it was damaged; if nothing was, the writer was at fault.
        return isInOrder || !m_image.damages.isEmpty()
                   ? nullptr
                   : QT_TRANSLATE_NOOP("ZAXHostDocument", "the objects are not in their order");
    }

    /// From now on, all that were read are looked up.
    void RememberBranches()
    {
        m_isAscending = false;
        m_branches.reserve(UsualCount());
        const auto& records = m_expected ? m_expected->records : m_image.records;
        std::for_each(records.cbegin(), records.cbegin() + m_count, [this](const ZAXHostDocumentRecord& record) {
            Branch& parent = m_branches[record.parent];
            parent.next = record.place + 1;
            const int nesting = parent.nesting + 1;
            m_branches.insert(record.id, {nesting, 0});
        });
    }

    const char* PlaceAnywhere(ZAXHostDocumentRecord& record, bool isExpected)
    {
        const auto own = m_branches.constFind(record.id);
        if (own != m_branches.cend() && own->nesting > 0)
            return QT_TRANSLATE_NOOP("ZAXHostDocument", "two objects have the id %1");
        if (record.parent == record.id || own != m_branches.cend())
            return QT_TRANSLATE_NOOP("ZAXHostDocument", "the object %1 stands behind or below itself");
        const auto parent = m_branches.find(record.parent);
        const bool hasParent = record.parent == 0 || (parent != m_branches.end() && parent->nesting > 0);
        // What has lost its parent will stand in a folder at the top.
        const int nesting = !hasParent ? 2 : record.parent == 0 ? 1 : parent->nesting + 1;
        if (nesting > ZAXHostDocumentCodec::maximumNesting)
            return QT_TRANSLATE_NOOP("ZAXHostDocument", "the objects are nested too deeply");
        quint32& next = parent != m_branches.end() ? parent->next : m_branches[record.parent].next;
        const bool isInOrder = record.place == next;
        next = record.place + 1;
        m_branches.insert(record.id, {nesting, 0});
        Keep(std::move(record), isExpected);
        // What is missing was noted where it was damaged; if nothing was, the writer was at fault.
        if (!hasParent && m_image.damages.isEmpty())
            return QT_TRANSLATE_NOOP("ZAXHostDocument", "the parent of the object %1 does not precede it");
        if (!isInOrder && m_image.damages.isEmpty())
            return QT_TRANSLATE_NOOP("ZAXHostDocument", "the objects are not in their order");
        return nullptr;
    }

    void Keep(ZAXHostDocumentRecord&& record, bool isExpected)
    {
        if (!m_expected)
            m_image.records.append(std::move(record));
        m_isAsExpected = m_isAsExpected && isExpected;
        ++m_count;
    }

    qsizetype ReadEnd(qsizetype start)
    {
        Reader reader(m_bytes, start + tagSize);
        const auto count = reader.Number<quint64>();
        const auto size = reader.Number<quint64>();
        const auto sum = reader.Number<quint32>();
        m_isEnded = true;
        // With damage before it, the end cannot be right.
        if (!m_image.damages.isEmpty())
            return reader.Position();
        if (sum != Checksum(m_bytes.data(), start + endSize - checksumSize))
            NoteDamage(start, endSize, QT_TRANSLATE_NOOP("ZAXHostDocument", "the end is not what was written"));
        else if (count != static_cast<quint64>(m_count))
            NoteDamage(start, endSize, QT_TRANSLATE_NOOP("ZAXHostDocument", "objects are missing"));
        else if (size != static_cast<quint64>(reader.Position()))
            NoteDamage(start, endSize,
                       QT_TRANSLATE_NOOP("ZAXHostDocument", "the file is longer or shorter than what was written"));
        return reader.Position();
    }

    QByteArrayView m_bytes;
    Reader m_reader;
    const ZAXHostDocumentImage* m_expected;
    ZAXHostDocumentImage m_image;
    qsizetype m_count = 0;
    bool m_isAsExpected = true;
    struct Branch
    {
        /// How deep the object is nested; 0 for one that was not read but as a parent.
        int nesting = 0;
        /// The place of the next child.
        quint32 next = 0;
    };
    QHash<quint64, Branch> m_branches;
    /// Ids have only grown until now, and m_branches is empty.
    bool m_isAscending = true;
    quint64 m_highest = 0;
    /// The last object and those above it, from the top on, each with the place of its next child.
    struct Step
    {
        quint64 id;
        quint32 next;
    };
    QVarLengthArray<Step, 32> m_path{{0, 0}};
    qsizetype m_checked = 0;
    /// How many frames were followed to see whether they lead to the end; this must not take for ever either.
    qsizetype m_steps = 0;
    bool m_isEndInReach = true;
    bool m_isEnded = false;
};

} // namespace

quint32 ZAXHostDocumentImage::AddClass(const QList<ZAXHostDocumentClass>& chain)
{
    qint32 base = -1;
    for (auto type = chain.crbegin(); type != chain.crend(); ++type) {
        const ZAXHostDocumentClass entry{type->name, type->version, base};
        base = static_cast<qint32>(classes.indexOf(entry));
        if (base < 0) {
            base = static_cast<qint32>(classes.size());
            classes.append(entry);
        }
    }
    return static_cast<quint32>(base);
}

QList<ZAXHostDocumentClass> ZAXHostDocumentImage::GetChain(quint32 index) const
{
    QList<ZAXHostDocumentClass> chain;
    for (auto i = static_cast<qint32>(index); i >= 0; i = classes.at(i).base)
        chain.append(classes.at(i));
    return chain;
}

QString ZAXHostDocumentDamage::GetMessage() const
{
    const QString text = Tr(what);
    return Tr("The document is damaged at byte %1: %2.")
        .arg(QString::number(position), text.contains(QLatin1String("%1")) ? text.arg(id) : text);
}

QHash<QByteArray, int> ZAXHostDocumentImage::GetVersions(quint32 index) const
{
    QHash<QByteArray, int> versions;
    const auto chain = GetChain(index);
    for (const ZAXHostDocumentClass& type : chain)
        versions.insert(type.name, type.version);
    return versions;
}

QByteArray ZAXHostDocumentCodec::Encode(const ZAXHostDocumentImage& image)
{
    Writer writer(SizeOf(image));
    writer.Raw(QByteArrayView(magic, magicSize));
    writer << formatVersion << leastReaderVersion;
    writer.Raw(image.documentId.toRfc4122());
    writer << image.lastId << static_cast<quint32>(image.classes.size());
    for (const ZAXHostDocumentClass& type : image.classes) {
        writer.Sized(type.name);
        writer << static_cast<quint32>(type.version) << static_cast<quint32>(type.base);
    }
    writer.ChecksumSince(0);
    for (const ZAXHostDocumentRecord& record : image.records)
        Write(writer, record);
    writer << endTag << static_cast<quint64>(image.records.size());
    writer << static_cast<quint64>(writer.Size() + static_cast<qsizetype>(sizeof(quint64)) + checksumSize);
    writer.ChecksumSince(0);
    return writer.Bytes();
}

ZAXHostResult ZAXHostDocumentCodec::Decode(const QByteArray& bytes, ZAXHostDocumentImage& image)
{
    const auto result = Decoder(bytes).Decode(image);
    if (result)
        image.data = bytes;
    return result;
}

ZAXHostResult ZAXHostDocumentCodec::Check(const QByteArray& bytes, const ZAXHostDocumentImage& image)
{
    Decoder decoder(bytes, &image);
    ZAXHostDocumentImage read;
    if (const auto result = decoder.Decode(read); !result)
        return result;
    if (!read.damages.isEmpty())
        return ZAXHostResult::Failed(read.damages.constFirst().GetMessage());
    const bool isSame = decoder.IsAsExpected() && read.documentId == image.documentId && read.lastId == image.lastId &&
                        read.classes == image.classes;
    return isSame ? ZAXHostResult::Done() : ZAXHostResult::Failed(Tr("its bytes do not read back."));
}
