#include "RecordScan.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zaxmat {

namespace {

/// Thrown for what is left to the parser.
struct Unusual
{
};

/// Bytes of a string that stand for themselves: ASCII but control characters, quotation mark and backslash.
constexpr std::array<bool, 256> plainBytes = [] {
    std::array<bool, 256> plain = {};
    for (int i = 0x20; i < 0x7f; ++i)
        plain[i] = i != '"' && i != '\\';
    return plain;
}();

class Scanner
{
public:
    explicit Scanner(QByteArrayView text) : m_at(text.data()), m_end(text.data() + text.size()) {}

    std::vector<RecordPlace> ScanCatalogue()
    {
        std::vector<RecordPlace> places;
        QByteArrayView previous;
        Take('{');
        if (!TryTake('}')) {
            do {
                SkipSpace();
                const char* const begin = m_at;
                const QByteArrayView name = TakePlainString();
                // In their order, no two can have the same name.
                Require(previous < name);
                previous = name;
                Take(':');
                places.push_back(TakeRecord());
                Require(places.back().key == name);
                places.back().member = QByteArrayView(begin, m_at);
            } while (TryTake(','));
            Take('}');
        }
        SkipSpace();
        Require(m_at == m_end);
        return places;
    }

private:
    static void Require(bool isUsual)
    {
        if (!isUsual)
            throw Unusual();
    }

    char Peek() const
    {
        Require(m_at != m_end);
        return *m_at;
    }

    void SkipSpace()
    {
        while (m_at != m_end && (*m_at == ' ' || *m_at == '\n' || *m_at == '\r' || *m_at == '\t'))
            ++m_at;
    }

    bool TryTake(char byte)
    {
        SkipSpace();
        if (m_at == m_end || *m_at != byte)
            return false;
        ++m_at;
        return true;
    }

    void Take(char byte) { Require(TryTake(byte)); }

    /// A string of bytes that stand for themselves.
    QByteArrayView TakePlainString()
    {
        Take('"');
        const char* const begin = m_at;
        while (m_at != m_end && plainBytes[static_cast<unsigned char>(*m_at)])
            ++m_at;
        const QByteArrayView string(begin, m_at);
        Take('"');
        return string;
    }

    RecordPlace TakeRecord()
    {
        RecordPlace place;
        SkipSpace();
        const char* const begin = m_at;
        bool hasKey = false;
        bool hasMaterialKey = false;
        bool hasType = false;
        Take('{');
        do {
            const QByteArrayView name = TakePlainString();
            Take(':');
            if (name == QByteArrayView("key")) {
                Require(!std::exchange(hasKey, true));
                place.key = TakePlainString();
            } else if (name == QByteArrayView("materialKey")) {
                Require(!std::exchange(hasMaterialKey, true));
                place.materialKey = TakePlainString();
            } else if (name == QByteArrayView("type")) {
                Require(!std::exchange(hasType, true));
                place.isMaterial = TakeIsMaterial();
            } else {
                SkipValue(0);
            }
        } while (TryTake(','));
        Take('}');
        Require(hasType && !place.key.isEmpty());
        place.text = QByteArrayView(begin, m_at);
        return place;
    }

    bool TakeIsMaterial()
    {
        SkipSpace();
        const char digit = Peek();
        Require(digit == '0' || digit == '1');
        ++m_at;
        Require(IsBehindValue(Peek()));
        return digit == '0';
    }

    void SkipValue(int depth)
    {
        constexpr int deepest = 32;
        Require(depth < deepest);
        SkipSpace();
        switch (Peek()) {
        case '{':
            return SkipMembers('}', depth);
        case '[':
            return SkipMembers(']', depth);
        case '"':
            return SkipString();
        case 't':
            return SkipWord("true");
        case 'f':
            return SkipWord("false");
        case 'n':
            return SkipWord("null");
        default:
            return SkipNumber();
        }
    }

    /// The inside of an object or an array.
    void SkipMembers(char last, int depth)
    {
        ++m_at;
        if (TryTake(last))
            return;
        do {
            if (last == '}') {
                SkipSpace();
                Require(Peek() == '"');
                SkipString();
                Take(':');
            }
            SkipValue(depth + 1);
        } while (TryTake(','));
        Take(last);
    }

    void SkipWord(QByteArrayView word)
    {
        Require(m_end - m_at >= word.size() && QByteArrayView(m_at, word.size()) == word);
        m_at += word.size();
    }

    void SkipString()
    {
        ++m_at;
        while (Peek() != '"') {
            const auto byte = static_cast<unsigned char>(*m_at);
            if (plainBytes[byte])
                ++m_at;
            else if (byte == '\\')
                SkipEscape();
            else
                SkipLetter(byte);
        }
        ++m_at;
    }

    void SkipEscape()
    {
        ++m_at;
        if (Peek() == 'u')
            return SkipControlCharacter();
        Require(QByteArrayView("\"\\/bfnrt").contains(Peek()));
        ++m_at;
    }

    /// The number of a control character. Others could be written as they are, and be looked for like that.
    void SkipControlCharacter()
    {
        ++m_at;
        Require(m_end - m_at >= 4 && QByteArrayView(m_at, 2) == QByteArrayView("00") &&
                (m_at[2] == '0' || m_at[2] == '1'));
        m_at += 3;
        Require(IsDigit(*m_at) || (*m_at >= 'a' && *m_at <= 'f'));
        ++m_at;
    }

    /// A letter beyond ASCII in UTF-8.
    void SkipLetter(unsigned char first)
    {
        const auto tail = [this](int bytes, unsigned char low = 0x80, unsigned char high = 0xbf) {
            ++m_at;
            for (int i = 0; i < bytes; ++i) {
                const auto byte = static_cast<unsigned char>(Peek());
                Require(i == 0 ? byte >= low && byte <= high : byte >= 0x80 && byte <= 0xbf);
                ++m_at;
            }
        };
        if (first >= 0xc2 && first <= 0xdf)
            return tail(1);
        if (first >= 0xe0 && first <= 0xef)
            return tail(2, first == 0xe0 ? 0xa0 : 0x80, first == 0xed ? 0x9f : 0xbf);
        Require(first >= 0xf0 && first <= 0xf4);
        tail(3, first == 0xf0 ? 0x90 : 0x80, first == 0xf4 ? 0x8f : 0xbf);
    }

    void SkipDigits()
    {
        Require(IsDigit(Peek()));
        while (m_at != m_end && IsDigit(*m_at))
            ++m_at;
    }

    static bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

    static bool IsBehindValue(char byte) { return QByteArrayView(",}] \n\r\t").contains(byte); }

    void SkipExponent()
    {
        ++m_at;
        if (Peek() == '-' || Peek() == '+')
            ++m_at;
        const char* const begin = m_at;
        SkipDigits();
        Require(m_at - begin <= 2);
    }

    void SkipNumber()
    {
        // With more digits, also in its exponent, the number might be too large.
        constexpr qsizetype longest = 40;
        const char* const begin = m_at;
        if (Peek() == '-')
            ++m_at;
        if (Peek() == '0')
            ++m_at;
        else
            SkipDigits();
        if (Peek() == '.') {
            ++m_at;
            SkipDigits();
        }
        if (Peek() == 'e' || Peek() == 'E')
            SkipExponent();
        Require(m_at - begin < longest && IsBehindValue(Peek()));
    }

    const char* m_at;
    const char* m_end;
};

} // namespace

std::optional<std::vector<RecordPlace>> ScanRecords(QByteArrayView text)
{
    try {
        return Scanner(text).ScanCatalogue();
    } catch (const Unusual&) {
        return std::nullopt;
    }
}

} // namespace zaxmat
