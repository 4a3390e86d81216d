#ifndef ZAXMATCATALOGUEREADER_H
#define ZAXMATCATALOGUEREADER_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"
#include "ZAXMatValues.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>

class QIODevice;

/// Reads the text of a catalogue straight into records, without the tree of a QJsonDocument in between and without the
/// text as a whole, as long as it holds what catalogues hold. Whatever else stands in it, malformed or not, is left to
/// QJsonDocument: nobody but Qt decides about it, and about what to report.
class ZAXMatCatalogueReader
{
public:
    using Records = QList<ZAXMatDefinition>;

    /// Reads \a device, which is open and must outlive this, from where it stands, at first \a pieceSize bytes at a
    /// time.
    explicit ZAXMatCatalogueReader(QIODevice& device, qsizetype pieceSize = defaultPieceSize);

    /// The records as ZAXMatDefinition::FromJson() reads them from the members of the root object, in the order of
    /// the members' names. Null for a text with a member that no record has, an array, two members of the same name in
    /// one object, a key or name of a property beyond ASCII, or what is unusual otherwise. A device that fails ends
    /// there; it has to be asked.
    std::optional<Records> Read();

private:
    /// So that a piece stays in the processor's cache while it is read.
    static constexpr qsizetype defaultPieceSize = 262144;

    /// A text in quotes, as it stands there.
    struct Text
    {
        QByteArrayView bytes;
        bool isAscii = true;
        bool hasEscapes = false;

        bool IsPlain() const { return isAscii && !hasEscapes; }
    };

    /// A text that was met, as it is and as a value.
    struct Known
    {
        QString string;
        ZAXMatValue value;
    };

    template <typename ReadPart>
    bool ReadWhole(ReadPart readPart);
    bool ReadMore();
    void SkipSpace();
    bool Take(char wanted);
    bool TakeWord(QByteArrayView word);
    template <typename ReadMember>
    bool ReadObject(ReadMember readMember);
    bool ReadText(Text& text);
    bool ReadName(Text& name);
    bool ReadSeparator(bool& isLast);
    bool ReadKey(QByteArray& key);
    bool ReadKnown(const Known*& known);
    bool ReadString(QString& string);
    bool ReadType(ZAXMatDefinition::Type& type);
    bool ReadNumber(ZAXMatValue& number);
    bool ReadLongNumber(ZAXMatValue& number);
    bool ReadValue(ZAXMatValue& value);
    bool ReadValues(ZAXMatValues& values);
    bool ReadRecord(ZAXMatDefinition& record);

    QIODevice& m_device;
    bool m_isAtEnd = false;
    /// Holds the text from the part on that is being read, as far as it is known.
    QByteArray m_piece;
    const char* m_part;
    const char* m_at;
    /// A zero byte stands there, which nothing takes: no other check for the end is needed.
    const char* m_end;
    ZAXMatValuesBuilder m_values;
    /// The same few texts stand in many records, which share them.
    std::array<Known, 512> m_known;
};

#endif
