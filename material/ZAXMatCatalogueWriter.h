#ifndef ZAXMATCATALOGUEWRITER_H
#define ZAXMATCATALOGUEWRITER_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"
#include "ZAXMatValue.h"

#include <QByteArray>
#include <QString>

#include <utility>
#include <vector>

class QIODevice;

/// Writes the text of a catalogue straight from its records, without the tree of a QJsonDocument in between and without
/// the text as a whole: to the byte what QJsonDocument makes of an object whose members are ZAXMatDefinition::ToJson()
/// of the records.
class ZAXMatCatalogueWriter
{
public:
    /// A member's name, and its record.
    using Member = std::pair<QByteArray, const ZAXMatDefinition*>;

    enum class Result
    {
        Written,
        /// A name of a member, extension or property goes beyond ASCII, so that their order is Qt's business, or a
        /// value is no single one. The device may have got a part of the text.
        Unusual,
        /// The device does not take the text, or not all of it.
        Refused,
    };

    /// Writes to \a device, which is open and must outlive this, about \a pieceSize bytes at a time.
    explicit ZAXMatCatalogueWriter(QIODevice& device, qsizetype pieceSize = defaultPieceSize);

    /// Writes the text of \a members; of those of the same name the last one counts.
    Result Write(std::vector<Member> members);

private:
    /// So that a piece stays in the processor's cache until it is written.
    static constexpr qsizetype defaultPieceSize = 262144;

    bool HandOn();
    bool AppendRecord(const ZAXMatDefinition& record);
    bool AppendName(const QByteArray& name, int depth);
    void AppendBytes(const QByteArray& bytes);
    void AppendString(const QString& string);
    void AppendNumber(double number);
    bool AppendValue(const ZAXMatValue& stored);
    bool AppendByQt(const QJsonValue& value);
    void AppendLine(int depth);

    QIODevice& m_device;
    const qsizetype m_pieceSize;
    /// What the device has not got yet.
    QByteArray m_text;
};

#endif
