#include "ZAXProbeDocuments.h"

#include <QtEndian>

namespace {

template <typename T>
QByteArray BigEndian(T value)
{
    QByteArray bytes(sizeof(T), '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

} // namespace

QByteArray Number16(quint16 value)
{
    return BigEndian(value);
}

QByteArray Number32(quint32 value)
{
    return BigEndian(value);
}

QByteArray Number64(quint64 value)
{
    return BigEndian(value);
}

quint32 Crc32(const QByteArray& bytes)
{
    quint32 crc = 0xffffffffU;
    for (const char byte : bytes) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xedb88320U & (0U - (crc & 1U)));
    }
    return ~crc;
}

QByteArray ZAXProbeDocumentFile::Object::Body() const
{
    QByteArray body = Number32(classIndex) + Number64(id) + Number64(parent) + Number32(place) +
                      Number32(static_cast<quint32>(references.size()));
    for (const quint64 reference : references)
        body += Number64(reference);
    return body + Number32(static_cast<quint32>(payload.size())) + payload;
}

ZAXProbeDocumentFile::ZAXProbeDocumentFile(const QList<Class>& classes, quint64 lastId, quint16 leastReader,
                                           quint16 format)
    : m_bytes(QByteArray::fromHex("895a41580d0a1a0a") + Number16(format) + Number16(leastReader) +
              QByteArray::fromHex("0000000000000000000000000000abcd") + Number64(lastId) +
              Number32(static_cast<quint32>(classes.size())))
{
    for (const Class& entry : classes)
        m_bytes += Number32(static_cast<quint32>(entry.name.size())) + entry.name + Number32(entry.version) +
                   Number32(static_cast<quint32>(entry.base));
    m_bytes += Number32(Crc32(m_bytes));
}

ZAXProbeDocumentFile& ZAXProbeDocumentFile::Add(const Object& object)
{
    return AddBody(object.Body());
}

ZAXProbeDocumentFile& ZAXProbeDocumentFile::AddBody(const QByteArray& body)
{
    const QByteArray record = "OBJ " + Number32(static_cast<quint32>(body.size())) + body;
    ++m_count;
    return AddBytes(record + Number32(Crc32(record)));
}

ZAXProbeDocumentFile& ZAXProbeDocumentFile::AddBytes(const QByteArray& bytes)
{
    m_bytes += bytes;
    return *this;
}

ZAXProbeDocumentFile& ZAXProbeDocumentFile::End()
{
    return End(m_count, static_cast<quint64>(m_bytes.size()) + 24);
}

ZAXProbeDocumentFile& ZAXProbeDocumentFile::End(quint64 count, quint64 size)
{
    m_bytes += "END " + Number64(count) + Number64(size);
    return AddBytes(Number32(Crc32(m_bytes)));
}
