#include "ZAXMatCatalogueReader.h"

#include "ZAXMatDefinitionPrivate.h"

#include <algorithm>
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

/// The classes of all bytes. Control characters, byte-order marks and what needs surrogates are left to Qt.
constexpr std::array<CharacterClass, 256> MakeClasses()
{
    std::array<CharacterClass, 256> classes{};
    for (std::size_t byte = 0x20; byte < 0xef; ++byte)
        classes[byte] = byte < 0x80 ? Plain : Beyond;
    classes['"'] = Other;
    classes['\\'] = Backslash;
    return classes;
}

constexpr std::array<CharacterClass, 256> classes = MakeClasses();

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

ZAXMatCatalogueReader::ZAXMatCatalogueReader(const QByteArray& text)
    : m_at(text.constData()), m_end(text.constData() + text.size())
{
    // A QByteArray ends with a zero byte, which nothing below takes: no other check for the end is needed.
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
    if (m_end - m_at < word.size() || std::memcmp(m_at, word.data(), std::size_t(word.size())) != 0)
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
    if (Take('}'))
        return true;
    do {
        Text name;
        if (!ReadText(name) || !name.IsPlain() || !Take(':') || !readMember(name.bytes))
            return false;
    } while (Take(','));
    return Take('}');
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
    text.bytes = QByteArrayView(begin, m_at);
    return *m_at++ == '"';
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
    if (place.bytes.isNull() || place.bytes != text.bytes) {
        place.bytes = text.bytes;
        place.string = text.hasEscapes ? QString::fromUtf8(Unescaped(text.bytes)) : QString::fromUtf8(text.bytes);
        place.value = ZAXMatValue(QVariant(place.string));
    }
    known = &place;
    return text.isAscii || !place.string.contains(QChar::ReplacementCharacter);
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

/// A number of up to 15 digits: they make a whole number, and that divided by a power of ten the nearest double, since
/// both are exact.
bool ZAXMatCatalogueReader::ReadNumber(ZAXMatValue& number)
{
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
        if (fraction == 0)
            return false;
    }
    if (whole + fraction > 15 || IsDigit(*m_at) || *m_at == 'e' || *m_at == 'E' || *m_at == '.')
        return false;
    const double value = static_cast<double>(digits) / powersOfTen[std::size_t(fraction)];
    // Qt makes an integer of a number such as 2.0.
    if (static_cast<double>(wholePart) == value)
        number = ZAXMatValue(isNegative ? -wholePart : wholePart);
    else
        number = ZAXMatValue(isNegative ? -value : value);
    return true;
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
    std::vector<QByteArrayView> names;
    Records records;
    const auto readMember = [&](QByteArrayView name) {
        names.push_back(name);
        return ReadRecord(records.emplace_back());
    };
    if (!ReadObject(readMember))
        return std::nullopt;
    SkipSpace();
    if (m_at != m_end)
        return std::nullopt;
    // As catalogues are written.
    if (std::ranges::adjacent_find(names, std::ranges::greater_equal()) == names.end())
        return records;

    std::vector<qsizetype> order(names.size());
    std::iota(order.begin(), order.end(), 0);
    const auto nameOf = [&names](qsizetype position) { return names[std::size_t(position)]; };
    std::ranges::sort(order, {}, nameOf);
    if (std::ranges::adjacent_find(order, {}, nameOf) != order.end())
        return std::nullopt;
    Records ordered;
    ordered.reserve(records.size());
    std::ranges::transform(order, std::back_inserter(ordered),
                           [&](qsizetype position) { return records.at(position); });
    return ordered;
}
