#include "ZAXMatCatalogueReader.h"

#include "ZAXMatDefinitionPrivate.h"

#include <QIODevice>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

namespace {

enum CharacterClass : quint8
{
    Other,     ///< ends or spoils a text
    Plain,     ///< stands for itself
    Beyond,    ///< begins or continues a character beyond ASCII
    Backslash, ///< begins an escape sequence
};

/// The classes of all bytes. Control characters and what UTF-8 does not begin with are left to Qt.
constexpr std::array<CharacterClass, 256> MakeClasses()
{
    std::array<CharacterClass, 256> classes{};
    for (std::size_t byte = 0x20; byte < 0xf5; ++byte)
        classes[byte] = byte < 0x80 ? Plain : Beyond;
    classes['"'] = Other;
    classes['\\'] = Backslash;
    return classes;
}

constexpr std::array<CharacterClass, 256> classes = MakeClasses();

constexpr QByteArrayView byteOrderMark("\xef\xbb\xbf");

constexpr char escapes[] = "\"\\/bfnrt";
constexpr char escaped[] = "\"\\/\b\f\n\r\t";

QByteArray Unescaped(QByteArrayView bytes)
{
    QByteArray text;
    text.reserve(bytes.size());
    for (const auto* byte = bytes.begin(); byte != bytes.end(); ++byte)
        text.append(*byte == '\\' ? escaped[std::strchr(escapes, *++byte) - escapes] : *byte);
    return text;
}

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

constexpr std::array powersOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

} // namespace

ZAXMatCatalogueReader::ZAXMatCatalogueReader(QIODevice& device, qsizetype pieceSize)
    : m_device(device), m_piece(pieceSize, '\0'), m_part(m_piece.constData()), m_at(m_part), m_end(m_part)
{
}

/// Reads a part of the text: once more, and from its start, whenever the piece ends in it.
template <typename ReadPart>
bool ZAXMatCatalogueReader::ReadWhole(ReadPart readPart)
{
    m_part = m_at;
    while (!readPart()) {
        if (m_at != m_end || !ReadMore())
            return false;
    }
    return true;
}

/// Makes place for more of the text behind the part that is being read, and starts again with that. False at the end.
bool ZAXMatCatalogueReader::ReadMore()
{
    if (m_isAtEnd)
        return false;
    const qsizetype kept = m_end - m_part;
    std::memmove(m_piece.data(), m_part, std::size_t(kept));
    if (kept > m_piece.size() / 2)
        m_piece.resize(2 * m_piece.size());
    qsizetype size = kept;
    while (size < m_piece.size() && !m_isAtEnd) {
        const qint64 read = m_device.read(m_piece.data() + size, m_piece.size() - size);
        m_isAtEnd = read <= 0;
        size += qMax(read, 0);
    }
    // There is room for it behind a QByteArray, too.
    m_piece.data()[size] = '\0';
    m_part = m_piece.constData();
    m_at = m_part;
    m_end = m_part + size;
    return size > kept;
}

void ZAXMatCatalogueReader::SkipSpace()
{
    while (*m_at == ' ' || *m_at == '\n' || *m_at == '\r' || *m_at == '\t')
        ++m_at;
}

/// Takes the next character behind white space if it is \a wanted.
bool ZAXMatCatalogueReader::Take(char wanted)
{
    SkipSpace();
    if (*m_at != wanted)
        return false;
    ++m_at;
    return true;
}

bool ZAXMatCatalogueReader::TakeWord(QByteArrayView word)
{
    if (m_end - m_at < word.size()) {
        // The rest of it may come with the next piece.
        m_at = m_end;
        return false;
    }
    if (std::memcmp(m_at, word.data(), std::size_t(word.size())) != 0)
        return false;
    m_at += word.size();
    return true;
}

/// Reads an object, \a readMember reading the value of each member by its name.
template <typename ReadMember>
bool ZAXMatCatalogueReader::ReadObject(ReadMember readMember)
{
    if (!Take('{'))
        return false;
    bool isLast = Take('}');
    while (!isLast) {
        Text name;
        if (!ReadName(name) || !readMember(name.bytes) || !ReadSeparator(isLast))
            return false;
    }
    return true;
}

/// Reads what stands behind a member: something between it and the next one, or the end of the object.
bool ZAXMatCatalogueReader::ReadSeparator(bool& isLast)
{
    isLast = !Take(',');
    return !isLast || Take('}');
}

bool ZAXMatCatalogueReader::ReadText(Text& text)
{
    if (!Take('"'))
        return false;
    const char* const begin = m_at;
    while (const CharacterClass characterClass = classes[quint8(*m_at)]) {
        text.isAscii &= characterClass != Beyond;
        if (characterClass == Backslash) {
            text.hasEscapes = true;
            ++m_at;
            if (*m_at == '\0' || !std::strchr(escapes, *m_at))
                return false;
        }
        ++m_at;
    }
    if (*m_at != '"')
        return false;
    text.bytes = QByteArrayView(begin, m_at++);
    return true;
}

/// Reads the name of a member and what separates it from the value.
bool ZAXMatCatalogueReader::ReadName(Text& name)
{
    return ReadText(name) && name.IsPlain() && Take(':');
}

bool ZAXMatCatalogueReader::ReadKey(QByteArray& key)
{
    Text text;
    if (!ReadText(text) || !text.IsPlain())
        return false;
    key = QByteArray(text.bytes.data(), text.bytes.size());
    return true;
}

/// Reads a text, which \a known tells of until the next one is read.
bool ZAXMatCatalogueReader::ReadKnown(const Known*& known)
{
    Text text;
    if (!ReadText(text))
        return false;
    std::size_t hash = 0;
    for (const char byte : text.bytes)
        hash = hash * 31 + quint8(byte);
    Known& place = m_known[hash % m_known.size()];
    // Of most texts no string is made: an equal one is there.
    if (!text.IsPlain() || place.string.isNull() || place.string != QLatin1StringView(text.bytes)) {
        QString string = QString::fromUtf8(text.hasEscapes ? Unescaped(text.bytes) : text.bytes);
        if (place.string.isNull() || place.string != string) {
            place.string = std::move(string);
            place.value = ZAXMatValue(QVariant(place.string));
        }
    }
    known = &place;
    // What stands for bytes that are no UTF-8 and what Qt drops from the start of a text are for Qt to tell.
    return text.isAscii ||
           !(place.string.contains(QChar::ReplacementCharacter) || text.bytes.startsWith(byteOrderMark));
}

bool ZAXMatCatalogueReader::ReadString(QString& string)
{
    const Known* known = nullptr;
    if (!ReadKnown(known))
        return false;
    string = known->string;
    return true;
}

bool ZAXMatCatalogueReader::ReadType(ZAXMatDefinition::Type& type)
{
    ZAXMatValue number;
    SkipSpace();
    if (!ReadNumber(number))
        return false;
    const std::optional<qlonglong> value = number.ToInteger();
    type = static_cast<ZAXMatDefinition::Type>(value.value_or(0));
    return value == static_cast<int>(type);
}

/// A number of up to 15 digits makes a whole number, and that divided by a power of ten the nearest double, since both
/// are exact.
bool ZAXMatCatalogueReader::ReadNumber(ZAXMatValue& number)
{
    const char* const start = m_at;
    const bool isNegative = *m_at == '-';
    m_at += isNegative ? 1 : 0;
    const char* const begin = m_at;
    qlonglong digits = 0;
    const auto takeDigits = [&] {
        const char* const first = m_at;
        for (; IsDigit(*m_at) && m_at - begin <= 16; ++m_at)
            digits = digits * 10 + (*m_at - '0');
        return m_at - first;
    };
    const auto whole = takeDigits();
    if (whole == 0 || (whole > 1 && *begin == '0'))
        return false;
    const qlonglong wholePart = digits;
    qsizetype fraction = 0;
    if (*m_at == '.') {
        ++m_at;
        fraction = takeDigits();
        if (fraction == 0 && !IsDigit(*m_at))
            return false;
    }
    if (whole + fraction > 15 || IsDigit(*m_at) || *m_at == 'e' || *m_at == 'E') {
        m_at = start;
        return ReadLongNumber(number);
    }
    const double value = static_cast<double>(digits) / powersOfTen[std::size_t(fraction)];
    // Qt makes an integer of a number such as 2.0.
    if (static_cast<double>(wholePart) == value)
        number = ZAXMatValue(isNegative ? -wholePart : wholePart);
    else
        number = ZAXMatValue(isNegative ? -value : value);
    return true;
}

/// Any other number that begins as one: with digits, of which the first one is no zero if there are more, and at least
/// one behind the decimal point.
bool ZAXMatCatalogueReader::ReadLongNumber(ZAXMatValue& number)
{
    const char* const begin = m_at;
    const auto takeDigits = [this] {
        while (IsDigit(*m_at))
            ++m_at;
    };
    m_at += *m_at == '-' ? 1 : 0;
    takeDigits();
    bool isWhole = *m_at != '.';
    m_at += isWhole ? 0 : 1;
    takeDigits();
    if (*m_at == 'e' || *m_at == 'E') {
        isWhole = false;
        ++m_at;
        m_at += *m_at == '+' || *m_at == '-' ? 1 : 0;
        if (!IsDigit(*m_at))
            return false;
        takeDigits();
    }
    const QByteArray text = QByteArray::fromRawData(begin, m_at - begin);
    bool isInteger = false;
    const qlonglong integer = isWhole ? text.toLongLong(&isInteger) : 0;
    if (isInteger) {
        number = ZAXMatValue(integer);
        return true;
    }
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    // From there on whole numbers are none of 64 bits.
    constexpr double tooLarge = 0x1p63;
    if (isNumber && value == std::trunc(value) && value >= -tooLarge && value < tooLarge)
        number = ZAXMatValue(static_cast<qlonglong>(value));
    else
        number = ZAXMatValue(value);
    return isNumber;
}

bool ZAXMatCatalogueReader::ReadValue(ZAXMatValue& value)
{
    SkipSpace();
    switch (*m_at) {
    case '"': {
        const Known* known = nullptr;
        if (!ReadKnown(known))
            return false;
        value = known->value;
        return true;
    }
    case 'n':
        value = ZAXMatValue(nullptr);
        return TakeWord("null");
    case 't':
        value = ZAXMatValue(true);
        return TakeWord("true");
    case 'f':
        value = ZAXMatValue(false);
        return TakeWord("false");
    default:
        return ReadNumber(value);
    }
}

bool ZAXMatCatalogueReader::ReadValues(ZAXMatValues& values)
{
    m_values.Clear();
    const auto readValue = [this](QByteArrayView property) {
        ZAXMatValue value;
        if (!ReadValue(value))
            return false;
        m_values.AddValue(property, std::move(value));
        return true;
    };
    const auto readTable = [&](QByteArrayView extension) {
        m_values.AddExtension(extension);
        return ReadObject(readValue);
    };
    if (!ReadObject(readTable) || !m_values.Arrange())
        return false;
    values = m_values.Take();
    return true;
}

bool ZAXMatCatalogueReader::ReadRecord(ZAXMatDefinition& record)
{
    ZAXMatDefinitionPrivate& data = ZAXMatDefinitionPrivate::Of(record);
    unsigned members = 0;
    // False for a member that was there before.
    const auto isNew = [&members](unsigned member) {
        const bool isNew = (members & member) == 0;
        members |= member;
        return isNew;
    };
    return ReadObject([&](QByteArrayView name) {
        if (name == "key")
            return isNew(1) && ReadKey(data.key);
        if (name == "materialKey")
            return isNew(2) && ReadKey(data.materialKey);
        if (name == "name")
            return isNew(4) && ReadString(data.name);
        if (name == "type")
            return isNew(8) && ReadType(data.type);
        return name == "properties" && isNew(16) && ReadValues(data.values);
    });
}

std::optional<ZAXMatCatalogueReader::Records> ZAXMatCatalogueReader::Read()
{
    QList<QByteArray> names;
    Records records;
    bool isLast = false;
    const auto readStart = [&] {
        if (!Take('{'))
            return false;
        isLast = Take('}');
        return isLast || m_at != m_end;
    };
    const auto readMember = [&] {
        Text name;
        ZAXMatDefinition& record = records.emplace_back();
        if (!ReadName(name) || !ReadRecord(record) || !ReadSeparator(isLast)) {
            records.removeLast();
            return false;
        }
        // As a rule it is the record's key, and shared with that.
        const QByteArray& key = ZAXMatDefinitionPrivate::Of(record).key;
        names.append(name.bytes == key ? key : name.bytes.toByteArray());
        return true;
    };
    if (!ReadWhole(readStart))
        return std::nullopt;
    while (!isLast) {
        if (!ReadWhole(readMember))
            return std::nullopt;
    }
    do {
        SkipSpace();
        m_part = m_at;
    } while (m_at == m_end && ReadMore());
    if (m_at != m_end)
        return std::nullopt;
    // As catalogues are written.
    if (std::ranges::adjacent_find(names, std::ranges::greater_equal()) == names.end())
        return records;

    std::vector<qsizetype> order(std::size_t(names.size()));
    std::iota(order.begin(), order.end(), 0);
    const auto nameOf = [&names](qsizetype position) -> const QByteArray& { return names.at(position); };
    std::ranges::sort(order, {}, nameOf);
    if (std::ranges::adjacent_find(order, {}, nameOf) != order.end())
        return std::nullopt;
    Records ordered;
    ordered.reserve(records.size());
    std::ranges::transform(order, std::back_inserter(ordered),
                           [&](qsizetype position) { return records.at(position); });
    return ordered;
}
