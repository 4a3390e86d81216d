#include "ZAXGeoStream.h"

#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoStreamDevice.h"

#include <QMetaClassInfo>
#include <QMetaObject>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <optional>

namespace {

/// Copies the \a size bytes of a text between the processor's byte order and the stream's.
void CopyText(const void* from, qsizetype size, void* to)
{
    const auto* source = static_cast<const char*>(from);
    auto* target = static_cast<char*>(to);
    for (qsizetype i = 0; i < size; i += sizeof(char16_t))
        qToBigEndian(qFromUnaligned<char16_t>(source + i), target + i);
}

} // namespace

class ZAXGeoStreamPrivate
{
public:
    ZAXGeoStreamPrivate(ZAXGeoContainer* container, QIODevice::OpenMode mode, const QByteArray& payload)
        : container(container)
    {
        device.setData(payload);
        device.open(mode);
        openMode = device.openMode();
        data.setDevice(&device);
        Pin();
    }

    static ZAXGeoStreamPrivate& Get(const ZAXGeoStream& stream) { return *stream.d_ptr; }

    void Pin()
    {
        data.setVersion(QDataStream::Qt_6_4);
        data.setByteOrder(QDataStream::BigEndian);
        data.setFloatingPointPrecision(QDataStream::DoublePrecision);
    }

    /// What a geometry did to the data stream is undone.
    void Restart()
    {
        if (data.device() != &device || device.openMode() != openMode || device.isTransactionStarted()) {
            device.close();
            device.open(openMode);
            data.setDevice(&device);
        }
        device.seek(0);
        data.resetStatus();
        Pin();
    }

    /// Whether the data stream is at work as it was made, so that fields may go past it.
    bool IsPlain(QIODevice::OpenMode wanted) const
    {
        return openMode.testFlags(wanted) && data.status() == QDataStream::Ok &&
               data.byteOrder() == QDataStream::BigEndian && data.version() == QDataStream::Qt_6_4 &&
               data.floatingPointPrecision() == QDataStream::DoublePrecision && data.device() == &device &&
               device.openMode() == openMode && !device.isTransactionStarted();
    }

    /// Room for \a size bytes at the present position, which moves behind them; null where only the data stream can
    /// write.
    char* Extend(qsizetype size)
    {
        if (!IsPlain(QIODevice::WriteOnly))
            return nullptr;
        QByteArray& bytes = device.buffer();
        const auto start = static_cast<qsizetype>(device.pos());
        if (bytes.size() < start + size)
            bytes.resize(start + size);
        device.MoveTo(start + size);
        return bytes.data() + start;
    }

    /// The next \a size bytes; null where there are fewer, or only the data stream can read them.
    const char* Ahead(qsizetype size) const
    {
        if (!IsPlain(QIODevice::ReadOnly))
            return nullptr;
        const auto start = static_cast<qsizetype>(device.pos());
        return size <= device.data().size() - start ? device.data().constData() + start : nullptr;
    }
    void Skip(qsizetype size) { device.MoveTo(device.pos() + size); }

    template <typename T>
    bool WriteNumber(T value)
    {
        char* const to = Extend(sizeof(T));
        if (to)
            qToBigEndian(value, to);
        return to;
    }
    template <typename T>
    bool ReadNumber(T& value)
    {
        const char* const from = Ahead(sizeof(T));
        if (!from)
            return false;
        value = qFromBigEndian<T>(from);
        Skip(sizeof(T));
        return true;
    }

    /// What lies ahead behind its length.
    struct Piece
    {
        /// Null for what is.
        const char* bytes;
        qsizetype size;
    };
    /// The text or bytes ahead, all of which are there; none where the data stream must read them.
    std::optional<Piece> NextPiece() const
    {
        const char* const from = Ahead(sizeof(quint32));
        if (!from)
            return {};
        const auto size = qFromBigEndian<quint32>(from);
        if (size == nullSize)
            return Piece{nullptr, 0};
        const qsizetype left = device.data().constData() + device.data().size() - from - qsizetype(sizeof(quint32));
        if (size > longSize || static_cast<qsizetype>(size) > left)
            return {};
        return Piece{from + sizeof(quint32), static_cast<qsizetype>(size)};
    }
    void Skip(const Piece& piece) { Skip(static_cast<qsizetype>(sizeof(quint32)) + piece.size); }

    /// What QDataStream writes in the place of the length of what is null.
    static constexpr quint32 nullSize = 0xffffffff;
    /// What is longer is left to the data stream.
    static constexpr quint32 longSize = 1024 * 1024;

    ZAXGeoContainer* container;
    /// As the device has it once it is open.
    QIODevice::OpenMode openMode;
    ZAXGeoStreamDevice device;
    QDataStream data;
    std::optional<QHash<QByteArray, int>> versions;
    std::function<ZAXGeoGeometryRef(const ZAXGeoGeometryRef&)> map;
    std::function<bool(const ZAXGeoGeometryRef&)> isUnavailable;
};

ZAXGeoStream::ZAXGeoStream(ZAXGeoContainer* container)
    : d_ptr(std::make_unique<ZAXGeoStreamPrivate>(container, QIODevice::WriteOnly, QByteArray()))
{
}

ZAXGeoStream::ZAXGeoStream(ZAXGeoContainer* container, const QByteArray& payload,
                           const QList<ZAXGeoGeometryRef>& references)
    : d_ptr(std::make_unique<ZAXGeoStreamPrivate>(container, QIODevice::ReadOnly, payload))
{
    d_ptr->device.SetReferences(references);
}

ZAXGeoStream::~ZAXGeoStream() = default;

void ZAXGeoStream::Restart()
{
    d_ptr->Restart();
    d_ptr->device.buffer().resize(0);
    d_ptr->device.SetReferences({});
}

void ZAXGeoStream::Restart(const QByteArray& payload, const QList<ZAXGeoGeometryRef>& references)
{
    d_ptr->Restart();
    d_ptr->device.buffer() = payload;
    d_ptr->device.SetReferences(references);
}

ZAXGeoContainer* ZAXGeoStream::GetContainer() const
{
    return d_ptr->container;
}

int ZAXGeoStream::GetVersion(const QMetaObject* type) const
{
    if (!d_ptr->versions)
        return GetCurrentVersion(type);
    const QByteArrayView name(type->className());
    return d_ptr->versions->value(QByteArray::fromRawData(name.data(), name.size()), 1);
}

void ZAXGeoStream::SetVersions(const QHash<QByteArray, int>& versions)
{
    d_ptr->versions = versions;
}

int ZAXGeoStream::GetCurrentVersion(const QMetaObject* type)
{
    // Only an entry of the class itself counts: a derived class without one does not take its base's version over.
    const int index = type->indexOfClassInfo("version");
    return index >= type->classInfoOffset() ? QByteArray(type->classInfo(index).value()).toInt() : 1;
}

ZAXGeoGeometryRef ZAXGeoStream::GetMappedReference(const ZAXGeoGeometryRef& reference) const
{
    const ZAXGeoGeometryRef mapped = MapReference(reference);
    const bool isPlaceholder =
        d_ptr->container && ZAXGeoContainerPrivate::Get(*d_ptr->container).placeholders.contains(mapped.GetId());
    if (isPlaceholder || (d_ptr->isUnavailable && mapped.IsValid() && d_ptr->isUnavailable(mapped)))
        return {};
    return mapped;
}

ZAXGeoGeometryRef ZAXGeoStream::MapReference(const ZAXGeoGeometryRef& reference) const
{
    return d_ptr->map && reference.IsValid() ? d_ptr->map(reference) : reference;
}

void ZAXGeoStream::SetReferenceMap(const std::function<ZAXGeoGeometryRef(const ZAXGeoGeometryRef&)>& map)
{
    d_ptr->map = map;
}

void ZAXGeoStream::SetUnavailable(const std::function<bool(const ZAXGeoGeometryRef&)>& isUnavailable)
{
    d_ptr->isUnavailable = isUnavailable;
}

QDataStream& ZAXGeoStream::GetDataStream()
{
    return d_ptr->data;
}

QByteArray ZAXGeoStream::GetPayload() const
{
    // What is read may lie in something larger that does not last.
    return QByteArrayView(d_ptr->device.data()).toByteArray();
}

QByteArrayView ZAXGeoStream::ViewPayload() const
{
    return d_ptr->device.data();
}

QList<ZAXGeoGeometryRef> ZAXGeoStream::GetReferences() const
{
    return d_ptr->device.GetReferences();
}

ZAXGeoStream& operator<<(ZAXGeoStream& stream, bool value)
{
    if (!ZAXGeoStreamPrivate::Get(stream).WriteNumber(static_cast<qint8>(value)))
        stream.GetDataStream() << value;
    return stream;
}

ZAXGeoStream& operator>>(ZAXGeoStream& stream, bool& value)
{
    qint8 number = 0;
    if (ZAXGeoStreamPrivate::Get(stream).ReadNumber(number))
        value = number != 0;
    else
        stream.GetDataStream() >> value;
    return stream;
}

ZAXGeoStream& operator<<(ZAXGeoStream& stream, qint32 value)
{
    if (!ZAXGeoStreamPrivate::Get(stream).WriteNumber(value))
        stream.GetDataStream() << value;
    return stream;
}

ZAXGeoStream& operator>>(ZAXGeoStream& stream, qint32& value)
{
    if (!ZAXGeoStreamPrivate::Get(stream).ReadNumber(value))
        stream.GetDataStream() >> value;
    return stream;
}

ZAXGeoStream& operator<<(ZAXGeoStream& stream, double value)
{
    if (!ZAXGeoStreamPrivate::Get(stream).WriteNumber(std::bit_cast<quint64>(value)))
        stream.GetDataStream() << value;
    return stream;
}

ZAXGeoStream& operator>>(ZAXGeoStream& stream, double& value)
{
    quint64 bits = 0;
    if (ZAXGeoStreamPrivate::Get(stream).ReadNumber(bits))
        value = std::bit_cast<double>(bits);
    else
        stream.GetDataStream() >> value;
    return stream;
}

ZAXGeoStream& operator<<(ZAXGeoStream& stream, const QString& value)
{
    const qsizetype size = value.size() * static_cast<qsizetype>(sizeof(QChar));
    const bool isShort = !value.isNull() && size <= ZAXGeoStreamPrivate::longSize;
    char* const to =
        isShort ? ZAXGeoStreamPrivate::Get(stream).Extend(static_cast<qsizetype>(sizeof(quint32)) + size) : nullptr;
    if (!to) {
        stream.GetDataStream() << value;
        return stream;
    }
    qToBigEndian(static_cast<quint32>(size), to);
    CopyText(value.utf16(), size, to + sizeof(quint32));
    return stream;
}

ZAXGeoStream& operator>>(ZAXGeoStream& stream, QString& value)
{
    auto& d = ZAXGeoStreamPrivate::Get(stream);
    const auto piece = d.NextPiece();
    if (!piece || piece->size % qsizetype(sizeof(QChar)) > 0) {
        stream.GetDataStream() >> value;
        return stream;
    }
    value = piece->bytes ? QString(piece->size / qsizetype(sizeof(QChar)), Qt::Uninitialized) : QString();
    if (piece->size > 0)
        CopyText(piece->bytes, piece->size, value.data());
    d.Skip(*piece);
    return stream;
}

ZAXGeoStream& operator<<(ZAXGeoStream& stream, const QByteArray& value)
{
    const bool isShort = !value.isNull() && value.size() <= ZAXGeoStreamPrivate::longSize;
    char* const to =
        isShort ? ZAXGeoStreamPrivate::Get(stream).Extend(static_cast<qsizetype>(sizeof(quint32)) + value.size())
                : nullptr;
    if (!to) {
        stream.GetDataStream() << value;
        return stream;
    }
    qToBigEndian(static_cast<quint32>(value.size()), to);
    std::copy(value.cbegin(), value.cend(), to + sizeof(quint32));
    return stream;
}

ZAXGeoStream& operator>>(ZAXGeoStream& stream, QByteArray& value)
{
    auto& d = ZAXGeoStreamPrivate::Get(stream);
    const auto piece = d.NextPiece();
    if (!piece) {
        stream.GetDataStream() >> value;
        return stream;
    }
    value = piece->bytes ? QByteArray(piece->bytes, piece->size) : QByteArray();
    d.Skip(*piece);
    return stream;
}
