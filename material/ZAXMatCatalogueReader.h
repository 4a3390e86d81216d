#ifndef ZAXMATCATALOGUEREADER_H
#define ZAXMATCATALOGUEREADER_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"
#include "ZAXMatValues.h"

#include <QString>

#include <array>
#include <optional>

/// Reads the text of a catalogue straight into records, without the tree of a QJsonDocument in between, as long as it
/// holds what catalogues hold. Whatever else stands in it, malformed or not, is left to QJsonDocument: nobody but Qt
/// decides about it, and about what to report.
class ZAXMatCatalogueReader
{
public:
    using Records = QList<ZAXMatDefinition>;

    /// \a text must outlive this.
    explicit ZAXMatCatalogueReader(const QByteArray& text);

    /// The records as ZAXMatDefinition::FromJson() reads them from the members of the root object, in the order of
    /// the members' names. Null for a text with a member that no record has, an array, two members of the same name in
    /// one object, a key or name of a property beyond ASCII, a number with an exponent or more than 15 digits, or what
    /// is unusual otherwise.
    std::optional<Records> Read();

private:
    /// A text in quotes, as it stands there.
    struct Text
    {
        QByteArrayView bytes;
        bool isAscii = true;
        bool hasEscapes = false;

        bool IsPlain() const { return isAscii && !hasEscapes; }
    };

    void SkipSpace();
    bool Take(char wanted);
    bool TakeWord(QByteArrayView word);
    template <typename ReadMember>
    bool ReadObject(ReadMember readMember);
    bool ReadText(Text& text);
    bool ReadKey(QByteArray& key);
    struct Known;
    bool ReadKnown(const Known*& known);
    bool ReadString(QString& string);
    bool ReadType(ZAXMatDefinition::Type& type);
    bool ReadNumber(ZAXMatValue& number);
    bool ReadValue(ZAXMatValue& value);
    bool ReadValues(ZAXMatValues& values);
    bool ReadRecord(ZAXMatDefinition& record);

    /// A text that was met, and what it says.
    struct Known
    {
        QByteArrayView bytes;
        QString string;
        ZAXMatValue value;
    };

    const char* m_at;
    const char* const m_end;
    ZAXMatValuesBuilder m_values;
    /// The same few texts stand in many records, which share them.
    std::array<Known, 512> m_known;
};

#endif
