#ifndef ZAXMAT_JSONTEXT_H
#define ZAXMAT_JSONTEXT_H

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace zaxmat {

struct JsonMember;

/// A value of a JSON text with its place there. Unlike a QJsonValue it keeps the order of members, and those whose
/// names an object has twice.
struct JsonNode
{
    enum class Kind
    {
        Null,
        Bool,
        Number,
        String,
        Array,
        Object,
    };

    Kind kind = Kind::Null;
    /// The bytes of the value: from \a begin up to, but not including, \a end.
    qsizetype begin = 0;
    qsizetype end = 0;
    /// The text of a string, the digits of a number as they stand, "true" or "false".
    QString text;
    std::vector<JsonMember> members;
    std::vector<JsonNode> items;

    /// The first member of that name; null when there is none.
    const JsonNode* Find(QLatin1String name) const;
    /// Whether both are the same value, wherever they stand and however they are spelt; members in the same order.
    bool IsSame(const JsonNode& other) const;
};

/// A member of an object.
struct JsonMember
{
    QString name;
    /// The bytes of the name, quotation marks included.
    qsizetype nameBegin = 0;
    qsizetype nameEnd = 0;
    JsonNode value;
};

/// Why a text is no JSON.
struct JsonError
{
    enum class Kind
    {
        Other,
        CommaBeforeEnd, ///< \a offset is at the bracket behind a comma
        MissingComma,   ///< \a offset is at the next member or value
        MissingBrace,   ///< the text ends, and an object is still open
        MissingBracket, ///< the text ends, and an array is still open
        TextBehindEnd,  ///< \a offset is at what follows the whole value
    };

    Kind kind = Kind::Other;
    /// The byte that the parser stumbled over.
    qsizetype offset = 0;
    QString message;
};

/// A parsed JSON text.
struct JsonText
{
    /// What the text holds; not to be used when there is an error.
    JsonNode root;
    std::optional<JsonError> error;
};

/// Parses UTF-8, with or without a byte order mark. Objects and arrays nest at most 1024 deep.
JsonText ParseJsonText(const QByteArray& bytes);

/// Whether an object in \a bytes, which Qt has parsed, may have two members of one name: false for nearly all texts in
/// which none has, at a fraction of the time that it takes to parse them.
bool MayRepeatMembers(const QByteArray& bytes);

/// The first member in \a node, or below it, whose name its object has twice; null when there is none.
const JsonMember* FindRepeatedMember(const JsonNode& node);

/// A place in a text, counted from 1 as editors do. The column counts UTF-16 units.
struct TextPosition
{
    qsizetype line = 1;
    qsizetype column = 1;
};

/// Where the bytes of a text stand for someone with an editor.
class TextPositions
{
public:
    explicit TextPositions(const QByteArray& bytes);

    /// The position of the byte at \a offset; of the end for an offset behind it.
    TextPosition At(qsizetype offset) const;

private:
    QByteArray m_bytes;
    std::vector<qsizetype> m_lineStarts;
};

/// Replaces \a length bytes at \a offset by \a replacement.
struct TextEdit
{
    qsizetype offset = 0;
    qsizetype length = 0;
    QByteArray replacement;
};

/// \a bytes after \a edits, which do not overlap and all count in the text as it was.
QByteArray Edited(const QByteArray& bytes, QList<TextEdit> edits);

/// \a text as a JSON string, in UTF-8 with its quotation marks.
QByteArray JsonString(const QString& text);

} // namespace zaxmat

#endif
