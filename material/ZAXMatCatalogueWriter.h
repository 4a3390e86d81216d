#ifndef ZAXMATCATALOGUEWRITER_H
#define ZAXMATCATALOGUEWRITER_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"
#include "ZAXMatValue.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <utility>
#include <vector>

/// Writes the text of a catalogue straight from its records, without the tree of a QJsonDocument in between: to the
/// byte what QJsonDocument makes of an object whose members are ZAXMatDefinition::ToJson() of the records.
class ZAXMatCatalogueWriter
{
public:
    /// A member's name, and its record.
    using Member = std::pair<QByteArray, const ZAXMatDefinition*>;

    /// The text of \a members; of those of the same name the last one counts. Null when a name of a member, extension
    /// or property goes beyond ASCII, as their order is Qt's business then, or when a value is no single one.
    std::optional<QByteArray> Write(std::vector<Member> members);

private:
    bool AppendRecord(const ZAXMatDefinition& record);
    bool AppendName(const QByteArray& name, int depth);
    void AppendBytes(const QByteArray& bytes);
    void AppendString(const QString& string);
    void AppendNumber(double number);
    bool AppendValue(const ZAXMatValue& stored);
    bool AppendByQt(const QJsonValue& value);
    void AppendLine(int depth);

    QByteArray m_text;
};

#endif
