#ifndef ZAXPROBEDOCUMENTS_H
#define ZAXPROBEDOCUMENTS_H

#include <QByteArray>
#include <QList>

/// Makes files as the document codec writes them, piece by piece, and so that every piece can be wrong: all checksums
/// are right, whatever they cover.
class ZAXProbeDocumentFile
{
public:
    /// The classes of the file, each with its version and the index of its base.
    struct Class
    {
        QByteArray name;
        quint32 version = 1;
        qint32 base = -1;
    };

    struct Object
    {
        quint32 classIndex = 0;
        quint64 id = 1;
        quint64 parent = 0;
        quint32 place = 0;
        QList<quint64> references = {};
        QByteArray payload = {};

        /// The body of the record.
        QByteArray Body() const;
    };

    /// Starts with a header whose document id is 00000000-0000-0000-0000-00000000abcd.
    explicit ZAXProbeDocumentFile(const QList<Class>& classes = {Class{"ZAXProbePart", 2, -1}}, quint64 lastId = 1000,
                                  quint16 leastReader = 1, quint16 format = 1);

    ZAXProbeDocumentFile& Add(const Object& object);
    /// A record with any \a body.
    ZAXProbeDocumentFile& AddBody(const QByteArray& body);
    /// Any bytes.
    ZAXProbeDocumentFile& AddBytes(const QByteArray& bytes);
    /// The end record, which counts the objects added so far and the size of the file.
    ZAXProbeDocumentFile& End();
    ZAXProbeDocumentFile& End(quint64 count, quint64 size);

    const QByteArray& Bytes() const { return m_bytes; }
    qsizetype Size() const { return m_bytes.size(); }

private:
    QByteArray m_bytes;
    quint64 m_count = 0;
};

/// \a value as the files hold it, big endian.
QByteArray Number16(quint16 value);
QByteArray Number32(quint32 value);
QByteArray Number64(quint64 value);
/// The CRC-32 of \a bytes, as of gzip and PNG.
quint32 Crc32(const QByteArray& bytes);

#endif
