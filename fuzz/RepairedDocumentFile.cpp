// A document file whose magic bytes, lengths and checksums are put right first, so that everything else in it is met:
// the tables of classes, ids and parents that lead nowhere, and payloads that are not what their classes read.

#include "DocumentFuzz.h"
#include "FuzzInput.h"

#include <QtEndian>

#include <zlib.h>

namespace {

/// Goes through a file and writes a right one with the same content.
class Repair
{
public:
    explicit Repair(FuzzInput input) : m_input(input) {}

    QByteArray Run()
    {
        Header();
        while (!m_input.IsEmpty() && Object())
            ++m_objects;
        m_bytes.append("END ", 4);
        Append(m_objects);
        Append(static_cast<quint64>(m_bytes.size()) + sizeof(quint64) + sizeof(quint32));
        Checksum(0);
        return m_bytes;
    }

private:
    template <typename T>
    void Append(T number)
    {
        const T bigEndian = qToBigEndian(number);
        m_bytes.append(reinterpret_cast<const char*>(&bigEndian), sizeof(T));
    }
    void Checksum(qsizetype from)
    {
        Append(static_cast<quint32>(crc32_z(0, reinterpret_cast<const Bytef*>(m_bytes.constData() + from),
                                            static_cast<size_t>(m_bytes.size() - from))));
    }
    quint32 Number() { return qFromBigEndian<quint32>(m_input.Bytes(4).leftJustified(4, '\0').constData()); }

    /// Versions, the document's id and the classes, with as many of these as fit.
    void Header()
    {
        m_input.Bytes(12);
        m_bytes.append(QByteArray::fromHex("895a41580d0a1a0a00010001"));
        m_bytes.append(m_input.Bytes(24).leftJustified(24, '\0'));
        const quint32 classes = Number() % 32;
        Append(classes);
        for (quint32 i = 0; i < classes; ++i) {
            const QByteArray name = m_input.Bytes(Number() % 64);
            Append(static_cast<quint32>(name.size()));
            m_bytes.append(name);
            // Versions that are no version are left to be met elsewhere.
            Append(Number() % 256);
            const auto base = static_cast<qint32>(Number());
            Append(base < 0 ? -1 : base % static_cast<qint32>(i + 1) - 1);
        }
        m_input.Bytes(4);
        Checksum(0);
    }

    /// One object; false for its end.
    bool Object()
    {
        if (m_input.Bytes(4).startsWith("END"))
            return false;
        const qsizetype start = m_bytes.size();
        const QByteArray body = Body(m_input.Bytes(Number() % 4096));
        m_input.Bytes(4);
        m_bytes.append("OBJ ", 4);
        Append(static_cast<quint32>(body.size()));
        m_bytes.append(body);
        Checksum(start);
        return true;
    }

    /// The fields of an object, with the lengths of its references and of its payload put right.
    static QByteArray Body(QByteArray body)
    {
        constexpr qsizetype fixed = 24;
        constexpr qsizetype least = fixed + 8;
        if (body.size() < least)
            return body;
        const auto room = static_cast<quint32>(body.size() - least) / 8;
        const quint32 references = std::min(qFromBigEndian<quint32>(body.constData() + fixed), room);
        qToBigEndian(references, body.data() + fixed);
        const qsizetype payload = least + qsizetype(references) * 8;
        qToBigEndian(static_cast<quint32>(body.size() - payload), body.data() + payload - 4);
        return body;
    }

    FuzzInput m_input;
    QByteArray m_bytes;
    quint64 m_objects = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CheckDocument(Repair(FuzzInput(data, size)).Run());
    return 0;
}
