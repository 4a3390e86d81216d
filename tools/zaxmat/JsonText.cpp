#include "JsonText.h"

#include "Text.h"

#include <QSet>

#include <QJsonArray>
#include <QJsonDocument>

#ifdef __SSE2__
#define RAPIDJSON_SSE2
#endif
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace zaxmat {

namespace {

constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF";

bool IsBetweenTokens(char character)
{
    return QByteArrayView(" \t\r\n,:").contains(character);
}

/// Builds the tree from what the parser of the library meets.
class TreeBuilder
{
public:
    TreeBuilder(const QByteArray& bytes, const rapidjson::MemoryStream& stream, qsizetype start, JsonNode& root)
        : m_bytes(bytes), m_stream(stream), m_start(start), m_tokenEnd(start), m_root(root)
    {
    }

    bool Null() { return Add(JsonNode::Kind::Null, QString()); }
    bool Bool(bool value) { return Add(JsonNode::Kind::Bool, value ? QLatin1String("true") : QLatin1String("false")); }
    bool RawNumber(const char* text, rapidjson::SizeType size, bool)
    {
        return Add(JsonNode::Kind::Number, QString::fromLatin1(text, static_cast<qsizetype>(size)));
    }
    bool String(const char* text, rapidjson::SizeType size, bool)
    {
        return Add(JsonNode::Kind::String, QString::fromUtf8(text, static_cast<qsizetype>(size)));
    }
    bool Key(const char* text, rapidjson::SizeType size, bool)
    {
        const qsizetype begin = TokenBegin();
        m_tokenEnd = Position();
        m_open.back()->members.push_back(
            {QString::fromUtf8(text, static_cast<qsizetype>(size)), begin, m_tokenEnd, {}});
        return true;
    }
    bool StartObject() { return Open(JsonNode::Kind::Object); }
    bool EndObject(rapidjson::SizeType) { return Close(); }
    bool StartArray() { return Open(JsonNode::Kind::Array); }
    bool EndArray(rapidjson::SizeType) { return Close(); }
    // Numbers come as their digits.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(int64_t) { return false; }
    bool Uint64(uint64_t) { return false; }
    bool Double(double) { return false; }

private:
    qsizetype Position() const { return m_start + static_cast<qsizetype>(m_stream.Tell()); }

    qsizetype TokenBegin() const
    {
        const auto* const begin = std::find_if_not(m_bytes.begin() + m_tokenEnd, m_bytes.end(), IsBetweenTokens);
        return begin - m_bytes.begin();
    }

    JsonNode& NextPlace()
    {
        if (m_open.empty())
            return m_root;
        JsonNode& parent = *m_open.back();
        return parent.kind == JsonNode::Kind::Object ? parent.members.back().value : parent.items.emplace_back();
    }

    JsonNode& Place(JsonNode::Kind kind)
    {
        JsonNode& node = NextPlace();
        node.kind = kind;
        node.begin = TokenBegin();
        // The parser tells of a bracket before it takes it.
        const bool isBracket = kind == JsonNode::Kind::Object || kind == JsonNode::Kind::Array;
        node.end = m_tokenEnd = isBracket ? node.begin + 1 : Position();
        return node;
    }

    bool Add(JsonNode::Kind kind, const QString& text)
    {
        Place(kind).text = text;
        return true;
    }

    bool Open(JsonNode::Kind kind)
    {
        constexpr size_t deepest = 1024;
        m_open.push_back(&Place(kind));
        return m_open.size() <= deepest;
    }

    bool Close()
    {
        m_open.back()->end = m_tokenEnd = Position() + 1;
        m_open.pop_back();
        return true;
    }

    QByteArrayView m_bytes;
    const rapidjson::MemoryStream& m_stream;
    qsizetype m_start;
    qsizetype m_tokenEnd;
    JsonNode& m_root;
    // A value that is still open is the last of its parent, so that it does not move.
    std::vector<JsonNode*> m_open;
};

/// Looks for members of one name in an object by the hashes of the names.
class NameHashes : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, NameHashes>
{
public:
    bool Key(const char* text, rapidjson::SizeType size, bool)
    {
        m_hashes.push_back(std::hash<std::string_view>()({text, size}));
        return true;
    }
    bool StartObject()
    {
        m_begins.push_back(m_hashes.size());
        return true;
    }
    /// False, which ends the parsing, for an object that has two equal ones.
    bool EndObject(rapidjson::SizeType)
    {
        const auto begin = m_hashes.begin() + static_cast<std::ptrdiff_t>(m_begins.back());
        m_begins.pop_back();
        std::sort(begin, m_hashes.end());
        const bool isRepeated = std::adjacent_find(begin, m_hashes.end()) != m_hashes.end();
        m_hashes.erase(begin, m_hashes.end());
        return !isRepeated;
    }

private:
    /// Of the objects that are open, one behind the other.
    std::vector<size_t> m_hashes;
    /// Where those of each object begin.
    std::vector<size_t> m_begins;
};

JsonError::Kind KindOf(rapidjson::ParseErrorCode code, QByteArrayView bytes, qsizetype offset)
{
    const bool isAtEnd = offset >= bytes.size();
    const char next = isAtEnd ? '\0' : bytes[offset];
    const QByteArrayView before = bytes.first(std::min(offset, bytes.size())).trimmed();
    switch (code) {
    case rapidjson::kParseErrorObjectMissName:
        return next == '}' && before.endsWith(',') ? JsonError::Kind::CommaBeforeEnd : JsonError::Kind::Other;
    case rapidjson::kParseErrorValueInvalid:
        return next == ']' && before.endsWith(',') ? JsonError::Kind::CommaBeforeEnd : JsonError::Kind::Other;
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
        if (isAtEnd)
            return JsonError::Kind::MissingBrace;
        return next == '"' ? JsonError::Kind::MissingComma : JsonError::Kind::Other;
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
        return isAtEnd ? JsonError::Kind::MissingBracket : JsonError::Kind::Other;
    case rapidjson::kParseErrorDocumentRootNotSingular:
        return JsonError::Kind::TextBehindEnd;
    default:
        return JsonError::Kind::Other;
    }
}

QString MessageOf(rapidjson::ParseErrorCode code)
{
    switch (code) {
    case rapidjson::kParseErrorDocumentEmpty:
        return Text::tr("the file is empty");
    case rapidjson::kParseErrorDocumentRootNotSingular:
        return Text::tr("something follows the end of the catalogue");
    case rapidjson::kParseErrorValueInvalid:
        return Text::tr("a value is missing, or is none");
    case rapidjson::kParseErrorObjectMissName:
        return Text::tr("the name of a member is missing");
    case rapidjson::kParseErrorObjectMissColon:
        return Text::tr("a colon is missing behind the name of a member");
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
        return Text::tr("a comma or a closing brace is missing");
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
        return Text::tr("a comma or a closing bracket is missing");
    case rapidjson::kParseErrorStringMissQuotationMark:
        return Text::tr("a text is not closed by a quotation mark");
    case rapidjson::kParseErrorStringInvalidEncoding:
        return Text::tr("a text is no UTF-8");
    case rapidjson::kParseErrorStringEscapeInvalid:
        return Text::tr("a text holds a control character, or a backslash before a letter that needs none");
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
        return Text::tr("a text holds the number of no character");
    case rapidjson::kParseErrorNumberTooBig:
        return Text::tr("a number is too big");
    case rapidjson::kParseErrorNumberMissFraction:
    case rapidjson::kParseErrorNumberMissExponent:
        return Text::tr("a number lacks its last digits");
    case rapidjson::kParseErrorTermination:
        return Text::tr("objects nest too deeply");
    default:
        return QString::fromLatin1(rapidjson::GetParseError_En(code));
    }
}

std::optional<JsonError> Parse(const QByteArray& bytes, JsonNode& root)
{
    const qsizetype start = bytes.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    rapidjson::MemoryStream stream(bytes.constData() + start, static_cast<size_t>(bytes.size() - start));
    TreeBuilder builder(bytes, stream, start, root);
    constexpr unsigned flags =
        rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseValidateEncodingFlag;
    rapidjson::Reader reader;
    const rapidjson::ParseResult result = reader.Parse<flags>(stream, builder);
    if (!result.IsError())
        return std::nullopt;
    const qsizetype offset = start + static_cast<qsizetype>(result.Offset());
    const JsonError::Kind kind = KindOf(result.Code(), bytes, offset);
    const QString message = kind == JsonError::Kind::CommaBeforeEnd
                                ? Text::tr("a comma stands before a closing bracket")
                                : MessageOf(result.Code());
    return JsonError{kind, offset, message};
}

/// What Qt, which reads the catalogues, finds wrong with a text that other parsers take.
std::optional<JsonError> QtError(const QByteArray& bytes)
{
    QJsonParseError error;
    QJsonDocument::fromJson(bytes, &error);
    if (error.error == QJsonParseError::NoError)
        return std::nullopt;
    // The parser's offset lies behind the byte that it stumbled over.
    return JsonError{JsonError::Kind::Other, std::max(error.offset - 1, 0), error.errorString()};
}

bool IsSameMember(const JsonMember& a, const JsonMember& b)
{
    return a.name == b.name && a.value.IsSame(b.value);
}

bool IsSameItem(const JsonNode& a, const JsonNode& b)
{
    return a.IsSame(b);
}

} // namespace

const JsonNode* JsonNode::Find(QLatin1String name) const
{
    const auto found = std::ranges::find(members, name, &JsonMember::name);
    return found != members.end() ? &found->value : nullptr;
}

bool JsonNode::IsSame(const JsonNode& other) const
{
    return kind == other.kind && text == other.text && std::ranges::equal(members, other.members, IsSameMember) &&
           std::ranges::equal(items, other.items, IsSameItem);
}

JsonText ParseJsonText(const QByteArray& bytes)
{
    JsonText text;
    text.error = Parse(bytes, text.root);
    if (!text.error)
        text.error = QtError(bytes);
    return text;
}

bool MayRepeatMembers(const QByteArray& bytes)
{
    const qsizetype start = bytes.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
    rapidjson::MemoryStream stream(bytes.constData() + start, static_cast<size_t>(bytes.size() - start));
    NameHashes names;
    rapidjson::Reader reader;
    // What Qt takes does not nest too deeply for recursion.
    return reader.Parse<rapidjson::kParseNumbersAsStringsFlag>(stream, names).IsError();
}

const JsonMember* FindRepeatedMember(const JsonNode& node)
{
    QSet<QString> names;
    for (const JsonMember& member : node.members) {
        if (names.contains(member.name))
            return &member;
        names.insert(member.name);
        if (const JsonMember* const repeated = FindRepeatedMember(member.value))
            return repeated;
    }
    for (const JsonNode& item : node.items) {
        if (const JsonMember* const repeated = FindRepeatedMember(item))
            return repeated;
    }
    return nullptr;
}

TextPositions::TextPositions(const QByteArray& bytes) : m_bytes(bytes), m_lineStarts{0}
{
    for (qsizetype found = bytes.indexOf('\n'); found >= 0; found = bytes.indexOf('\n', found + 1))
        m_lineStarts.push_back(found + 1);
}

TextPosition TextPositions::At(qsizetype offset) const
{
    const qsizetype place = std::min(offset, m_bytes.size());
    const auto next = std::ranges::upper_bound(m_lineStarts, place);
    const qsizetype lineStart = *std::prev(next);
    QByteArrayView before = QByteArrayView(m_bytes).sliced(lineStart, place - lineStart);
    // Editors do not show the mark.
    if (lineStart == 0 && before.startsWith(byteOrderMark))
        before = before.sliced(byteOrderMark.size());
    return {next - m_lineStarts.begin(), QString::fromUtf8(before).size() + 1};
}

QByteArray Edited(const QByteArray& bytes, QList<TextEdit> edits)
{
    std::ranges::sort(edits, {}, &TextEdit::offset);
    QByteArray result;
    result.reserve(bytes.size());
    qsizetype done = 0;
    for (const TextEdit& edit : std::as_const(edits)) {
        result += QByteArrayView(bytes).sliced(done, edit.offset - done);
        result += edit.replacement;
        done = edit.offset + edit.length;
    }
    result += QByteArrayView(bytes).sliced(done);
    return result;
}

QByteArray JsonString(const QString& text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.sliced(1, array.size() - 2);
}

} // namespace zaxmat
