#include "ZAXMatCatalogueWriter.h"

#include "ZAXMatDefinitionPrivate.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace {

bool IsAscii(QByteArrayView bytes)
{
    return std::ranges::all_of(bytes, [](char byte) { return quint8(byte) < 0x80; });
}

/// Whether a character of a text stands for itself.
bool IsPlain(char16_t character)
{
    return character >= 0x20 && character < 0xd800 && character != '"' && character != '\\';
}

} // namespace

ZAXMatCatalogueWriter::ZAXMatCatalogueWriter(QIODevice& device, qsizetype pieceSize)
    : m_device(device), m_pieceSize(pieceSize)
{
}

bool ZAXMatCatalogueWriter::HandOn()
{
    const bool isTaken = m_device.write(m_text) == m_text.size();
    // Keeps its memory.
    m_text.resize(0);
    return isTaken;
}

/// Begins the next line.
void ZAXMatCatalogueWriter::AppendLine(int depth)
{
    static constexpr char lineAndSpace[] = "\n                ";
    m_text.append(lineAndSpace, 1 + qsizetype(depth) * 4);
}

/// Lets Qt print \a value; false for an array or object, and for what is left out of the object that it is put into.
bool ZAXMatCatalogueWriter::AppendByQt(const QJsonValue& value)
{
    if (value.isArray() || value.isObject() || value.isUndefined())
        return false;
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    m_text.append(array.constData() + 1, array.size() - 2);
    return true;
}

void ZAXMatCatalogueWriter::AppendString(const QString& string)
{
    if (!std::ranges::all_of(string, [](QChar character) { return IsPlain(character.unicode()); })) {
        AppendByQt(string);
        return;
    }
    m_text.append('"');
    m_text.append(string.toUtf8());
    m_text.append('"');
}

/// The text that \a bytes are as UTF-8.
void ZAXMatCatalogueWriter::AppendBytes(const QByteArray& bytes)
{
    if (!std::ranges::all_of(bytes, [](char byte) { return IsPlain(quint8(byte)) && quint8(byte) < 0x80; })) {
        AppendString(QString::fromUtf8(bytes));
        return;
    }
    m_text.append('"');
    m_text.append(bytes);
    m_text.append('"');
}

/// Begins a member on a line of its own. False for a name beyond ASCII.
bool ZAXMatCatalogueWriter::AppendName(const QByteArray& name, int depth)
{
    if (!m_text.endsWith('{'))
        m_text.append(',');
    AppendLine(depth);
    AppendBytes(name);
    m_text.append(": ", 2);
    return IsAscii(name);
}

void ZAXMatCatalogueWriter::AppendNumber(double number)
{
    // Where doubles are no longer told from integers, and of the two zeros, Qt decides.
    constexpr double large = 1e15;
    if (!(std::abs(number) < large) || number == 0)
        AppendByQt(number);
    else if (number == std::trunc(number))
        m_text.append(QByteArray::number(static_cast<qlonglong>(number)));
    else
        m_text.append(QByteArray::number(number, 'g', QLocale::FloatingPointShortest));
}

bool ZAXMatCatalogueWriter::AppendValue(const ZAXMatValue& stored)
{
    const QVariant value = stored.ToVariant();
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        m_text.append("null", 4);
        return true;
    case QMetaType::Bool:
        m_text.append(value.toBool() ? "true" : "false");
        return true;
    case QMetaType::Int:
    case QMetaType::LongLong:
        m_text.append(QByteArray::number(value.toLongLong()));
        return true;
    case QMetaType::Double:
        AppendNumber(value.toDouble());
        return true;
    case QMetaType::QString:
        AppendString(*static_cast<const QString*>(value.constData()));
        return true;
    default:
        return AppendByQt(QJsonValue::fromVariant(value));
    }
}

bool ZAXMatCatalogueWriter::AppendRecord(const ZAXMatDefinition& record)
{
    const auto& data = ZAXMatDefinitionPrivate::Of(record);
    const ZAXMatValues& values = data.values;
    m_text.append('{');
    AppendName("key", 2);
    AppendBytes(data.key);
    AppendName("materialKey", 2);
    AppendBytes(data.materialKey);
    AppendName("name", 2);
    AppendString(data.name);
    AppendName("properties", 2);
    m_text.append('{');
    for (const ZAXMatValues::Extension& extension : values.GetExtensions()) {
        if (!AppendName(extension.key, 3))
            return false;
        m_text.append('{');
        for (std::size_t i = extension.begin; i < extension.end; ++i) {
            if (!AppendName(values.GetProperty(i), 4) || !AppendValue(values.GetValue(i)))
                return false;
        }
        AppendLine(3);
        m_text.append('}');
    }
    AppendLine(2);
    m_text.append('}');
    AppendName("type", 2);
    m_text.append(QByteArray::number(static_cast<int>(data.type)));
    AppendLine(1);
    m_text.append('}');
    return true;
}

ZAXMatCatalogueWriter::Result ZAXMatCatalogueWriter::Write(std::vector<Member> members)
{
    // Materials and packagings come one after the other, each in order as a rule.
    const auto second = std::ranges::is_sorted_until(members, {}, &Member::first);
    if (std::ranges::is_sorted(second, members.end(), {}, &Member::first))
        std::ranges::inplace_merge(members, second, {}, &Member::first);
    else
        std::ranges::stable_sort(members, {}, &Member::first);
    m_text = "{";
    for (auto member = members.begin(); member != members.end(); ++member) {
        const auto next = std::next(member);
        if (next != members.end() && next->first == member->first)
            continue;
        if (!AppendName(member->first, 1) || !AppendRecord(*member->second))
            return Result::Unusual;
        if (m_text.size() >= m_pieceSize && !HandOn())
            return Result::Refused;
    }
    AppendLine(0);
    m_text.append("}\n", 2);
    return HandOn() ? Result::Written : Result::Refused;
}
