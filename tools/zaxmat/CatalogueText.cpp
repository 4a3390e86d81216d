#include "CatalogueText.h"

#include "CatalogueFile.h"
#include "CatalogueRecord.h"
#include "Failure.h"
#include "JsonText.h"
#include "Text.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <map>

namespace zaxmat {

namespace {

/// Of members with the same name only the last one is read, and only that would be written again.
/// \throws Failure (FileFailure) when \a part, a JSON value in the text \a bytes, has some, or holds what only Qt takes
/// for JSON, so that nobody can tell.
void RequireNothingTwice(const QString& path, const QByteArray& bytes, QByteArrayView part)
{
    const QByteArray value = QByteArray::fromRawData(part.data(), part.size());
    if (!MayRepeatMembers(value))
        return;
    const JsonText text = ParseJsonText(value);
    if (text.error) {
        const TextPosition position = TextPositions(bytes).At(part.data() - bytes.data() + text.error->offset);
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The catalogue %1 cannot be changed without loss: %2 (line %3, column %4). Nothing was "
                               "written. \"zaxmat check\" tells more.")
                          .arg(QuotedPath(path), text.error->message, QString::number(position.line),
                               QString::number(position.column)));
    }
    const JsonMember* const repeated = FindRepeatedMember(text.root);
    if (!repeated)
        return;
    const TextPosition position = TextPositions(bytes).At(part.data() - bytes.data() + repeated->nameBegin);
    throw Failure(
        ExitCode::FileFailure,
        Text::tr("The catalogue %1 holds %2 twice (line %3, column %4), and writing it would lose one of them. "
                 "Nothing was written. \"zaxmat check\" tells more.")
            .arg(QuotedPath(path), Quoted(repeated->name), QString::number(position.line),
                 QString::number(position.column)));
}

/// Carries out edits on the text of a catalogue that could be scanned.
class Splice
{
public:
    Splice(const QString& path, const QByteArray& bytes, const std::vector<RecordPlace>& places)
        : m_path(path), m_bytes(bytes), m_places(places)
    {
    }

    /// Takes over what is to become of a record. False when that is not for this class.
    bool Add(const RecordEdit& edit)
    {
        const ZAXMatDefinition& either = edit.after.IsValid() ? edit.after : edit.before;
        const QByteArray key = either.GetKey();
        const auto place = std::ranges::lower_bound(m_places, QByteArrayView(key), {}, &RecordPlace::key);
        const bool isThere = place != m_places.end() && place->key == QByteArrayView(key);
        // Another record of that key, and a name that is not the key's own bytes.
        if (isThere ? place->isMaterial != (either.GetType() == ZAXMatDefinition::Material) : !IsPlain(key))
            return false;
        if (edit.after.IsValid())
            m_texts[key] = isThere ? TextOf(edit.after, place->text) : TextOf(edit.after, {});
        else if (isThere)
            m_texts[key] = QByteArray();
        m_hasOthers = m_hasOthers || !isThere || !edit.after.IsValid();
        return true;
    }

    QByteArray GetText() const { return m_hasOthers ? WithOtherRecords() : WithOtherValues(); }

private:
    static bool IsPlain(const QByteArray& key)
    {
        return std::ranges::all_of(
            key, [](char byte) { return byte >= ' ' && byte < '\x7f' && byte != '"' && byte != '\\'; });
    }

    /// The text of \a record, which stands in the place of \a previous, if that is not empty.
    QByteArray TextOf(const ZAXMatDefinition& record, QByteArrayView previous) const
    {
        QJsonObject object;
        if (!previous.isEmpty()) {
            RequireNothingTwice(m_path, m_bytes, previous);
            object = QJsonDocument::fromJson(QByteArray::fromRawData(previous.data(), previous.size())).object();
        }
        const QJsonDocument document(RecordToJson(record, object));
        const QByteArrayView model = previous.isEmpty() && !m_places.empty() ? m_places.front().text : previous;
        if (!model.isEmpty() && !model.contains('\n'))
            return document.toJson(QJsonDocument::Compact);
        // As deep as the records stand, and with the line breaks of the file.
        const QByteArrayView lineBreak = model.contains("\r\n") ? "\r\n    " : "\n    ";
        return document.toJson(QJsonDocument::Indented).trimmed().replace(QByteArrayView("\n"), lineBreak);
    }

    /// The text when all records stay where they are.
    QByteArray WithOtherValues() const
    {
        QList<TextEdit> edits;
        for (const auto& [key, text] : m_texts) {
            const auto place = std::ranges::lower_bound(m_places, QByteArrayView(key), {}, &RecordPlace::key);
            edits.append({place->text.data() - m_bytes.data(), place->text.size(), text});
        }
        return Edited(m_bytes, edits);
    }

    /// The text when some go or come: all that stay keep every byte, but what stands between them may differ.
    QByteArray WithOtherRecords() const
    {
        QByteArrayList members;
        auto text = m_texts.begin();
        const auto addUpTo = [&](const QByteArray* key) {
            for (; text != m_texts.end() && (!key || text->first < *key); ++text)
                members.append('"' + text->first + "\": " + text->second);
        };
        for (const RecordPlace& place : m_places) {
            const QByteArray key = place.key.toByteArray();
            addUpTo(&key);
            const bool isChanged = text != m_texts.end() && text->first == key;
            if (!isChanged)
                members.append(place.member.toByteArray());
            else if (!text->second.isEmpty())
                members.append(BeforeText(place) + text->second);
            if (isChanged)
                ++text;
        }
        addUpTo(nullptr);
        if (members.isEmpty())
            return QByteArray("{\n}\n");
        const auto [head, between, tail] = Frame();
        return head + members.join(between) + tail;
    }

    /// The name of the member, up to the record itself.
    static QByteArray BeforeText(const RecordPlace& place)
    {
        return place.member.first(place.text.data() - place.member.data()).toByteArray();
    }

    struct Surroundings
    {
        QByteArray head;
        QByteArray between;
        QByteArray tail;
    };

    /// What stands before, between and behind the members.
    Surroundings Frame() const
    {
        if (m_places.empty())
            return {QByteArray("{\n    "), QByteArray(",\n    "), QByteArray("\n}\n")};
        const auto offsetOf = [this](const char* at) { return at - m_bytes.data(); };
        const QByteArrayView first = m_places.front().member;
        const QByteArrayView last = m_places.back().member;
        const QByteArray head = m_bytes.first(offsetOf(first.begin()));
        const QByteArray tail = m_bytes.sliced(offsetOf(last.end()));
        if (m_places.size() == 1)
            return {head, ',' + head.sliced(head.indexOf('{') + 1), tail};
        const QByteArrayView second = m_places[1].member;
        return {head, m_bytes.mid(offsetOf(first.end()), second.begin() - first.end()), tail};
    }

    QString m_path;
    const QByteArray& m_bytes;
    const std::vector<RecordPlace>& m_places;
    /// What becomes of records, by their keys; empty for one that goes.
    std::map<QByteArray, QByteArray> m_texts;
    /// Whether records come or go.
    bool m_hasOthers = false;
};

std::optional<QByteArray> Spliced(const QString& path, const QByteArray& bytes, const QList<RecordEdit>& edits,
                                  const std::vector<RecordPlace>& places)
{
    Splice splice(path, bytes, places);
    if (!std::ranges::all_of(edits, [&](const RecordEdit& edit) { return splice.Add(edit); }))
        return std::nullopt;
    return splice.GetText();
}

} // namespace

QByteArray EditedCatalogue(const QString& path, const QByteArray& bytes, const QList<RecordEdit>& edits)
{
    return EditedCatalogue(path, bytes, edits, ScanRecords(bytes));
}

QByteArray EditedCatalogue(const QString& path, const QByteArray& bytes, const QList<RecordEdit>& edits,
                           const std::optional<std::vector<RecordPlace>>& places)
{
    if (auto text = places ? Spliced(path, bytes, edits, *places) : std::nullopt)
        return *text;
    const QJsonObject root = ParseCatalogue(path, bytes);
    RequireNothingTwice(path, bytes, bytes);
    return QJsonDocument(Edited(root, edits)).toJson(QJsonDocument::Indented);
}

} // namespace zaxmat
