#ifndef ZAXDOCUMENTBYTES_H
#define ZAXDOCUMENTBYTES_H

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QList>
#include <QString>

#include <zlib.h>

/// A document file spelled byte by byte, as docs/formats.md describes it, without the code under test. It writes what
/// it is told, right or wrong.
class ZAXDocumentBytes
{
public:
    struct Class
    {
        QByteArray name;
        quint32 version;
        qint32 base;
    };

    explicit ZAXDocumentBytes(quint64 lastId, const QList<Class>& classes, quint16 leastReader = 1)
    {
        m_data.setVersion(QDataStream::Qt_6_4);
        m_bytes.reserve(4096);
        Raw(QByteArray("\x89ZAX\r\n\x1a\n", 8));
        m_data << quint16(1) << leastReader;
        Raw(QByteArray::fromHex("5a41585a41584a0181020304a5b6c7d8"));
        m_data << lastId << quint32(classes.size());
        for (const Class& type : classes) {
            Sized(type.name);
            m_data << type.version << type.base;
        }
        Checksum(0);
    }

    /// The fields of a feature without fields of its own.
    static QByteArray Feature(const QString& label, bool isVisible = true)
    {
        QByteArray payload;
        QDataStream data(&payload, QIODevice::WriteOnly);
        data.setVersion(QDataStream::Qt_6_4);
        data << label << isVisible;
        return payload;
    }

    static QByteArray Body(quint32 classIndex, quint64 id, quint64 parent, quint32 place,
                           const QList<quint64>& references, const QByteArray& payload)
    {
        QByteArray body;
        QDataStream data(&body, QIODevice::WriteOnly);
        data << classIndex << id << parent << place << quint32(references.size());
        for (const quint64 reference : references)
            data << reference;
        data << quint32(payload.size());
        return body + payload;
    }

    ZAXDocumentBytes& Object(quint32 classIndex, quint64 id, quint64 parent, quint32 place,
                             const QByteArray& payload = Feature(QString()), const QList<quint64>& references = {})
    {
        return Frame(Body(classIndex, id, parent, place, references, payload));
    }

    ZAXDocumentBytes& Frame(const QByteArray& body)
    {
        const qsizetype start = m_bytes.size();
        Raw("OBJ ");
        Sized(body);
        Checksum(start);
        ++m_objects;
        return *this;
    }

    ZAXDocumentBytes& Raw(const QByteArray& bytes)
    {
        m_data.writeRawData(bytes.constData(), int(bytes.size()));
        return *this;
    }

    QByteArray End() { return End(m_objects, quint64(m_bytes.size()) + 24); }

    QByteArray End(quint64 objects, quint64 size)
    {
        Raw("END ");
        m_data << objects << size;
        Checksum(0);
        return m_bytes;
    }

    QByteArray Bytes() const { return m_bytes; }

private:
    void Sized(const QByteArray& bytes)
    {
        m_data << quint32(bytes.size());
        Raw(bytes);
    }

    void Checksum(qsizetype from)
    {
        m_data << quint32(
            crc32_z(0, reinterpret_cast<const Bytef*>(m_bytes.constData() + from), size_t(m_bytes.size() - from)));
    }

    QByteArray m_bytes;
    QDataStream m_data{&m_bytes, QIODevice::WriteOnly};
    quint64 m_objects = 0;
};

#endif
