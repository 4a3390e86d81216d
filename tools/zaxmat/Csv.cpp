#include "Csv.h"

#include "Text.h"

#include <QStringDecoder>

#include <csv.h>

#include <algorithm>
#include <array>
#include <optional>

namespace zaxmat {

namespace {

/// Where the line that starts at \a start ends: behind its line break.
qsizetype LineEnd(QByteArrayView bytes, qsizetype start)
{
    const auto* const end = std::find_if(bytes.begin() + start, bytes.end(),
                                         [](char character) { return character == '\n' || character == '\r'; });
    if (end == bytes.end())
        return bytes.size();
    const qsizetype lineBreak = end - bytes.begin();
    return bytes.sliced(lineBreak).startsWith("\r\n") ? lineBreak + 2 : lineBreak + 1;
}

/// The lines of \a bytes with their line breaks.
QList<QByteArrayView> LinesOf(QByteArrayView bytes)
{
    QList<QByteArrayView> lines;
    for (qsizetype start = 0; start < bytes.size();) {
        const qsizetype end = LineEnd(bytes, start);
        lines.append(bytes.sliced(start, end - start));
        start = end;
    }
    return lines;
}

bool IsUtf8(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return !decoder.hasError();
}

void RequireUtf8(const QList<QByteArrayView>& lines)
{
    const auto bad = std::ranges::find_if_not(lines, IsUtf8);
    if (bad != lines.end())
        throw CsvError(bad - lines.begin() + 1, Text::tr("this is no UTF-8; save the file as CSV in UTF-8"));
}

char SeparatorOf(QByteArrayView titles)
{
    bool isQuoted = false;
    const auto isOutsideQuotes = [&isQuoted](char character) {
        isQuoted = isQuoted != (character == '"');
        return !isQuoted;
    };
    QByteArray outside;
    std::ranges::copy_if(titles, std::back_inserter(outside), isOutsideQuotes);
    constexpr std::array separators{'\t', ';'};
    const auto* const found =
        std::ranges::find_if(separators, [&](char separator) { return outside.contains(separator); });
    return found != separators.end() ? *found : ',';
}

bool IsBlank(QByteArrayView line)
{
    constexpr QByteArrayView blanks = " \t\r\n";
    return std::ranges::all_of(line, [&](char c) { return blanks.contains(c); });
}

/// The separator that a line "sep=;" tells.
std::optional<char> SeparatorToldBy(QByteArrayView line)
{
    QByteArrayView text = line;
    while (text.endsWith('\n') || text.endsWith('\r'))
        text.chop(1);
    if (text.size() >= 2 && text.startsWith('"') && text.endsWith('"'))
        text = text.sliced(1, text.size() - 2);
    constexpr QByteArrayView mark = "sep=";
    const bool isMark =
        text.size() == mark.size() + 1 && text.first(mark.size()).compare(mark, Qt::CaseInsensitive) == 0;
    constexpr QByteArrayView separators = ",;\t";
    return isMark && separators.contains(text.back()) ? std::optional(text.back()) : std::nullopt;
}

/// The parser of the library, one line at a time, so that every row knows its line.
class Parser
{
public:
    explicit Parser(CsvTable& table) : m_table(table)
    {
        csv_init(&m_parser, CSV_STRICT | CSV_STRICT_FINI | CSV_EMPTY_IS_NULL);
        csv_set_delim(&m_parser, static_cast<unsigned char>(table.separator));
        // Spaces belong to the cell.
        csv_set_space_func(&m_parser, [](unsigned char) { return 0; });
    }
    ~Parser() { csv_free(&m_parser); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    void Parse(QByteArrayView line)
    {
        ++m_line;
        if (!m_isInRow && IsBlank(line))
            return;
        if (!m_isInRow)
            m_row = {m_line, {}};
        m_isInRow = true;
        const auto size = static_cast<size_t>(line.size());
        if (csv_parse(&m_parser, line.data(), size, AddCell, EndRow, this) != size)
            throw CsvError(m_line, Text::tr("a quotation mark stands inside a cell; a cell that holds quotation marks "
                                            "is put in quotation marks, and those inside are doubled"));
    }

    void Finish()
    {
        if (csv_fini(&m_parser, AddCell, EndRow, this) != 0)
            throw CsvError(m_row.line, Text::tr("a quotation mark of the row that starts here is never closed"));
    }

private:
    static void AddCell(void* text, size_t size, void* self)
    {
        const QString cell =
            text ? QString::fromUtf8(static_cast<const char*>(text), static_cast<qsizetype>(size)) : QString();
        static_cast<Parser*>(self)->m_row.cells.append(text && cell.isNull() ? QLatin1String("") : cell);
    }

    static void EndRow(int, void* self)
    {
        auto& parser = *static_cast<Parser*>(self);
        parser.m_table.rows.append(parser.m_row);
        parser.m_isInRow = false;
    }

    CsvTable& m_table;
    csv_parser m_parser{};
    qsizetype m_line = 0;
    CsvRow m_row;
    bool m_isInRow = false;
};

bool NeedsQuotationMarks(const QByteArray& text)
{
    constexpr QByteArrayView special = ",;\t\"\r\n";
    return text.isEmpty() || text.startsWith(' ') || text.endsWith(' ') ||
           std::ranges::any_of(special, [&](char character) { return text.contains(character); });
}

QByteArray InQuotationMarks(const QByteArray& text)
{
    const auto size = static_cast<size_t>(text.size());
    QByteArray quoted(static_cast<qsizetype>(csv_write(nullptr, 0, text.constData(), size)), Qt::Uninitialized);
    csv_write(quoted.data(), static_cast<size_t>(quoted.size()), text.constData(), size);
    return quoted;
}

QByteArray CellText(const QString& cell)
{
    const QByteArray text = cell.toUtf8();
    return !cell.isNull() && NeedsQuotationMarks(text) ? InQuotationMarks(text) : text;
}

} // namespace

CsvTable ReadCsv(const QByteArray& bytes)
{
    constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF";
    const QByteArrayView text =
        QByteArrayView(bytes).sliced(bytes.startsWith(byteOrderMark) ? byteOrderMark.size() : 0);
    const QList<QByteArrayView> lines = LinesOf(text);
    RequireUtf8(lines);
    CsvTable table;
    const auto told = lines.isEmpty() ? std::nullopt : SeparatorToldBy(lines.first());
    const auto titles = std::ranges::find_if_not(lines, IsBlank);
    if (titles != lines.end())
        table.separator = told.value_or(SeparatorOf(*titles));
    Parser parser(table);
    for (qsizetype i = 0; i < lines.size(); ++i)
        parser.Parse(told && i == 0 ? QByteArrayView("\n") : lines[i]);
    parser.Finish();
    return table;
}

QByteArray CsvLine(const QStringList& cells, char separator)
{
    QByteArrayList texts;
    std::ranges::transform(cells, std::back_inserter(texts), CellText);
    // A blank line would be no row.
    if (texts == QByteArrayList{QByteArray()})
        texts = {QByteArray("\"\"")};
    return texts.join(separator) + "\r\n";
}

} // namespace zaxmat
