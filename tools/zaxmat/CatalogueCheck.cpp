#include "CatalogueCheck.h"

#include "Properties.h"
#include "Records.h"
#include "Text.h"
#include "Values.h"

#include "ZAXMatDefinition.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"
#include "ZAXSysDefinedValue.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>

namespace zaxmat {

namespace {

using Kind = JsonNode::Kind;

constexpr std::array<QLatin1String, 5> recordMembers{QLatin1String("key"), QLatin1String("materialKey"),
                                                     QLatin1String("name"), QLatin1String("properties"),
                                                     QLatin1String("type")};

bool IsRecordMember(const QString& name)
{
    return std::ranges::find(recordMembers, name) != recordMembers.end();
}

/// The text of the member \a name of an object; empty for none, and for what is no text.
QString TextOf(const JsonNode& object, QLatin1String name)
{
    const JsonNode* const member = object.Find(name);
    return member && member->kind == Kind::String ? member->text : QString();
}

QString KeyOf(const JsonMember& record)
{
    return TextOf(record.value, QLatin1String("key"));
}

/// The type of a record; empty for one that is neither a material nor a stock form.
std::optional<ZAXMatDefinition::Type> TypeOf(const JsonNode& record)
{
    const JsonNode* const type = record.Find(QLatin1String("type"));
    if (!type || type->kind != Kind::Number)
        return std::nullopt;
    const double number = type->text.toDouble();
    if (number == double(ZAXMatDefinition::Material))
        return ZAXMatDefinition::Material;
    if (number == double(ZAXMatDefinition::Packaging))
        return ZAXMatDefinition::Packaging;
    return std::nullopt;
}

bool IsAscii(const QString& text)
{
    return std::ranges::all_of(text, [](QChar character) { return character.unicode() < 0x80; });
}

QVariant ScalarOf(const JsonNode& value)
{
    switch (value.kind) {
    case Kind::String:
        return value.text;
    case Kind::Number:
        return value.text.toDouble();
    case Kind::Bool:
        return value.text == QLatin1String("true");
    default:
        return {};
    }
}

QString ShownValue(const JsonNode& value)
{
    switch (value.kind) {
    case Kind::String:
        return Quoted(value.text);
    case Kind::Array:
        return Text::tr("a list");
    case Kind::Object:
        return Text::tr("an object");
    default:
        return value.text;
    }
}

bool IsQuantity(const QMetaProperty& property)
{
    return property.metaType() == QMetaType::fromType<ZAXSysLengthValue>() ||
           property.metaType() == QMetaType::fromType<ZAXSysDensityValue>();
}

bool IsNumeric(const QMetaProperty& property)
{
    const int type = property.metaType().id();
    return !property.isEnumType() &&
           (type == QMetaType::Double || type == QMetaType::Float || type == QMetaType::Int ||
            type == QMetaType::UInt || type == QMetaType::LongLong || type == QMetaType::ULongLong);
}

/// Whether a record should hold \a value, which is not null, for \a property.
bool IsRightKind(const QMetaProperty& property, const JsonNode& value)
{
    const bool isText = value.kind == Kind::String;
    const bool isNumber = value.kind == Kind::Number;
    if (property.isEnumType() || IsQuantity(property))
        return (isText || isNumber) && IsAccepted(property, ScalarOf(value));
    if (IsNumeric(property))
        return isNumber;
    switch (property.metaType().id()) {
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return isText;
    case QMetaType::Bool:
        return value.kind == Kind::Bool;
    default:
        return value.kind != Kind::Array && value.kind != Kind::Object && IsAccepted(property, ScalarOf(value));
    }
}

QString WantedKind(const QMetaProperty& property)
{
    if (property.isEnumType())
        return Text::tr("one of its names");
    if (property.metaType() == QMetaType::fromType<ZAXSysLengthValue>())
        return Text::tr("a length");
    if (property.metaType() == QMetaType::fromType<ZAXSysDensityValue>())
        return Text::tr("a density");
    if (IsNumeric(property))
        return Text::tr("a number");
    if (property.metaType().id() == QMetaType::Bool)
        return Text::tr("true or false");
    if (property.metaType().id() == QMetaType::QString || property.metaType().id() == QMetaType::QByteArray)
        return Text::tr("a text");
    return Text::tr("a value that the property takes");
}

/// The right kind of JSON for \a value, where that says the same; empty where it does not.
std::optional<QByteArray> RightKindOf(const QMetaProperty& property, const JsonNode& value)
{
    const bool isText = value.kind == Kind::String;
    if (property.metaType().id() == QMetaType::QString && value.kind == Kind::Number)
        return JsonString(value.text);
    if (property.metaType().id() == QMetaType::Bool && isText &&
        (value.text == QLatin1String("true") || value.text == QLatin1String("false")))
        return value.text.toLatin1();
    bool isNumber = false;
    const double number = value.text.toDouble(&isNumber);
    if (isText && IsNumeric(property) && isNumber && std::isfinite(number))
        return NumberText(number).toLatin1();
    return std::nullopt;
}

/// The members of an object that go.
using Removals = std::map<const JsonNode*, QSet<qsizetype>>;

/// Cuts \a removed out of \a object, with one comma each.
QList<TextEdit> RemovalEdits(const JsonNode& object, const QSet<qsizetype>& removed)
{
    QList<TextEdit> edits;
    const auto& members = object.members;
    const auto count = static_cast<qsizetype>(members.size());
    const auto at = [&members](qsizetype i) -> const JsonMember& { return members[static_cast<size_t>(i)]; };
    for (qsizetype first = 0; first < count; ++first) {
        if (!removed.contains(first))
            continue;
        qsizetype next = first + 1;
        while (next < count && removed.contains(next))
            ++next;
        const bool isAtEnd = next == count;
        const qsizetype begin = isAtEnd && first > 0 ? at(first - 1).value.end : at(first).nameBegin;
        const qsizetype end = isAtEnd ? at(count - 1).value.end : at(next).nameBegin;
        edits.append({begin, end - begin, QByteArray()});
        first = next;
    }
    return edits;
}

/// Looks through the records of a catalogue.
class Checker
{
public:
    Checker(const QByteArray& bytes, const JsonNode& root) : m_bytes(bytes), m_root(root), m_positions(bytes) {}

    CatalogueCheck Check()
    {
        FindDuplicates();
        for (const JsonMember& member : m_root.members)
            CheckRecord(member);
        FindTwins();
        std::ranges::stable_sort(m_result.findings, {}, [](const Finding& finding) {
            return std::pair(finding.position.line, finding.position.column);
        });
        m_result.mended = Mended();
        m_result.unknownExtensions = m_unknownExtensions.values();
        m_result.unknownExtensions.sort();
        return m_result;
    }

private:
    Finding& Add(const char* problem, qsizetype offset, const QString& message)
    {
        Finding finding;
        finding.problem = QLatin1String(problem);
        finding.position = m_positions.At(offset);
        finding.message = message;
        return m_result.findings.emplace_back(finding);
    }

    Finding& AddFor(const JsonMember& record, const char* problem, qsizetype offset, const QString& message)
    {
        Finding& finding = Add(problem, offset, message);
        const QString key = KeyOf(record);
        finding.key = key.isEmpty() ? record.name : key;
        finding.name = TextOf(record.value, QLatin1String("name"));
        return finding;
    }

    QString LineText(qsizetype offset) const { return QString::number(m_positions.At(offset).line); }

    void Replace(const JsonNode& value, const QByteArray& replacement)
    {
        m_edits.append({value.begin, value.end - value.begin, replacement});
    }

    void FindDuplicates()
    {
        QHash<QString, QList<const JsonMember*>> byKey;
        for (const JsonMember& member : m_root.members) {
            if (const QString key = KeyOf(member); !key.isEmpty())
                byKey[key].append(&member);
        }
        for (const JsonMember& member : m_root.members) {
            const auto records = byKey.constFind(KeyOf(member));
            if (records == byKey.cend() || records->first() == &member)
                continue;
            const JsonMember& first = *records->first();
            const bool isSame = member.value.IsSame(first.value);
            const QString text = isSame ? Text::tr("the record repeats the one in line %1")
                                        : Text::tr("the record has the key of another one, in line %1");
            AddFor(member, "duplicate-key", member.nameBegin, text.arg(LineText(first.nameBegin))).isFixable = isSame;
            if (isSame)
                m_removals[&m_root].insert(&member - m_root.members.data());
        }
        FindNamesOf(byKey);
    }

    /// Finds the members of the root that are not named by the key of their record.
    void FindNamesOf(const QHash<QString, QList<const JsonMember*>>& byKey)
    {
        const QSet<qsizetype> removed = m_removals[&m_root];
        QHash<QString, int> kept;
        for (const JsonMember& member : m_root.members) {
            if (!removed.contains(&member - m_root.members.data()))
                ++kept[KeyOf(member)];
        }
        QSet<QString> otherNames;
        for (const JsonMember& member : m_root.members) {
            if (const QString key = KeyOf(member); key.isEmpty() || kept.value(key) > 1)
                otherNames.insert(member.name);
        }
        for (const JsonMember& member : m_root.members) {
            const QString key = KeyOf(member);
            if (key.isEmpty() || key == member.name || removed.contains(&member - m_root.members.data()))
                continue;
            const bool isFixable = byKey.contains(key) && kept.value(key) == 1 && !otherNames.contains(key);
            AddFor(member, "member-name", member.nameBegin,
                   Text::tr("the member is named %1, but the key of its record is %2")
                       .arg(Quoted(member.name), Quoted(key)))
                .isFixable = isFixable;
            if (isFixable)
                m_edits.append({member.nameBegin, member.nameEnd - member.nameBegin, JsonString(key)});
        }
    }

    void CheckRecord(const JsonMember& record)
    {
        if (record.value.kind != Kind::Object) {
            AddFor(record, "no-record", record.value.begin,
                   Text::tr("%1 is no record, and is dropped by readers").arg(ShownValue(record.value)));
            return;
        }
        CheckNamesOfMembers(record, record.value, QString());
        CheckKey(record);
        CheckMembers(record);
        const auto type = TypeOf(record.value);
        if (!type) {
            const JsonNode* const given = record.value.Find(QLatin1String("type"));
            AddFor(record, "unknown-type", given ? given->begin : record.value.begin,
                   given ? Text::tr("the type is %1, but must be 0 for a material or 1 for a stock form")
                               .arg(ShownValue(*given))
                         : Text::tr("the record has no type; it must be 0 for a material or 1 for a stock form"));
            return;
        }
        if (type == ZAXMatDefinition::Packaging)
            CheckMaterialOf(record);
        CheckProperties(record, *type);
    }

    /// Finds the members that \a object has twice.
    void CheckNamesOfMembers(const JsonMember& record, const JsonNode& object, const QString& property)
    {
        QHash<QString, const JsonMember*> firsts;
        for (const JsonMember& member : object.members) {
            const JsonMember*& first = firsts[member.name];
            if (!first) {
                first = &member;
                continue;
            }
            const bool isSame = member.value.IsSame(first->value);
            const QString text = isSame ? Text::tr("%1 repeats the member in line %2")
                                        : Text::tr("%1 is there twice with different values, first in line %2");
            Finding& finding = AddFor(record, "duplicate-member", member.nameBegin,
                                      text.arg(Quoted(member.name), LineText(first->nameBegin)));
            finding.property = property;
            finding.isFixable = isSame;
            if (isSame)
                m_removals[&object].insert(&member - object.members.data());
        }
    }

    void CheckKey(const JsonMember& record)
    {
        const JsonNode* const key = record.value.Find(QLatin1String("key"));
        const qsizetype offset = key ? key->begin : record.value.begin;
        if (!key || KeyOf(record).isEmpty()) {
            AddFor(record, "no-key", offset, Text::tr("the record has no key, and is dropped by readers"));
        } else if (!IsAscii(key->text)) {
            AddFor(record, "key-letters", offset,
                   Text::tr("the key %1 holds letters outside ASCII, and is lost when the application writes the "
                            "catalogue")
                       .arg(Quoted(key->text)));
        }
    }

    void CheckMembers(const JsonMember& record)
    {
        for (const JsonMember& member : record.value.members) {
            if (!IsRecordMember(member.name))
                AddFor(record, "unknown-member", member.nameBegin,
                       Text::tr("a record has no member %1; the application drops it when it writes the catalogue")
                           .arg(Quoted(member.name)));
        }
        for (const auto name : {QLatin1String("name"), QLatin1String("materialKey")}) {
            const JsonNode* const text = record.value.Find(name);
            if (text && text->kind != Kind::String)
                AddFor(record, "wrong-kind", text->begin,
                       Text::tr("%1 is %2, but must be a text").arg(Quoted(name), ShownValue(*text)));
        }
    }

    void CheckMaterialOf(const JsonMember& stockForm)
    {
        const QString materialKey = TextOf(stockForm.value, QLatin1String("materialKey"));
        if (Materials().contains(materialKey))
            return;
        const JsonNode* const given = stockForm.value.Find(QLatin1String("materialKey"));
        AddFor(
            stockForm, "no-material", given ? given->begin : stockForm.value.begin,
            materialKey.isEmpty()
                ? Text::tr("the stock form belongs to no material")
                : Text::tr("the stock form belongs to the material %1, which there is not").arg(Quoted(materialKey)));
    }

    const QSet<QString>& Materials()
    {
        if (!m_materials) {
            m_materials.emplace();
            for (const JsonMember& member : m_root.members) {
                if (TypeOf(member.value) == ZAXMatDefinition::Material)
                    m_materials->insert(KeyOf(member));
            }
        }
        return *m_materials;
    }

    void CheckProperties(const JsonMember& record, ZAXMatDefinition::Type type)
    {
        const JsonNode* const properties = record.value.Find(QLatin1String("properties"));
        if (!properties)
            return;
        if (properties->kind != Kind::Object) {
            AddFor(record, "wrong-kind", properties->begin,
                   Text::tr("the properties are %1, but must be an object").arg(ShownValue(*properties)));
            return;
        }
        CheckNamesOfMembers(record, *properties, QString());
        ZAXMatDefinition kind;
        kind.SetType(type);
        for (const JsonMember& extension : properties->members)
            CheckExtension(record, extension, ClassOf(kind, extension.name.toUtf8()));
    }

    void CheckExtension(const JsonMember& record, const JsonMember& extension, const QMetaObject* type)
    {
        if (extension.value.kind != Kind::Object) {
            AddFor(record, "wrong-kind", extension.value.begin,
                   Text::tr("the properties under %1 are %2, but must be an object")
                       .arg(Quoted(extension.name), ShownValue(extension.value)));
            return;
        }
        CheckNamesOfMembers(record, extension.value, extension.name);
        if (!type) {
            m_unknownExtensions.insert(extension.name);
            return;
        }
        for (const JsonMember& value : extension.value.members) {
            if (Finding* const finding = CheckValue(record, extension, value, type))
                finding->property = extension.name.isEmpty() ? value.name : extension.name + u'.' + value.name;
        }
    }

    Finding* CheckValue(const JsonMember& record, const JsonMember& extension, const JsonMember& value,
                        const QMetaObject* type)
    {
        const QMetaProperty property = FindProperty(type, value.name.toUtf8());
        const bool isNull = value.value.kind == Kind::Null;
        if (!property.isValid()) {
            Finding& finding = AddFor(record, "unknown-property", value.nameBegin,
                                      Text::tr("there is no property %1").arg(Quoted(value.name)));
            finding.isFixable = isNull;
            if (isNull)
                m_removals[&extension.value].insert(&value - extension.value.members.data());
            return &finding;
        }
        if (isNull)
            return nullptr;
        if (!IsRightKind(property, value.value)) {
            Finding& finding = AddFor(
                record, "wrong-kind", value.value.begin,
                Text::tr("%1 is %2, but must be %3").arg(value.name, ShownValue(value.value), WantedKind(property)));
            const auto right = RightKindOf(property, value.value);
            finding.isFixable = right.has_value();
            if (right)
                Replace(value.value, *right);
            return &finding;
        }
        const QString why = extension.name.isEmpty() ? LimitOf(property, ScalarOf(value.value)) : QString();
        return why.isEmpty() ? nullptr
                             : &AddFor(record, "not-positive", value.value.begin,
                                       Text::tr("%1 is %2, but %3").arg(value.name, ShownValue(value.value), why));
    }

    struct Twin
    {
        QString type;
        double thickness = 0;
        const JsonMember* record = nullptr;
    };

    /// Finds the materials that documents could not tell apart.
    void FindTwins()
    {
        std::vector<Twin> materials;
        for (const JsonMember& record : m_root.members) {
            const bool isRemoved = m_removals[&m_root].contains(&record - m_root.members.data());
            if (const auto twin = TwinOf(record); twin && !isRemoved)
                materials.push_back(*twin);
        }
        std::ranges::stable_sort(materials, {}, [](const Twin& twin) { return std::tie(twin.type, twin.thickness); });
        for (size_t i = 1; i < materials.size(); ++i) {
            const Twin& a = materials[i - 1];
            const Twin& b = materials[i];
            if (a.type != b.type || !IsSameThickness(a.thickness, b.thickness))
                continue;
            const bool isInOrder = a.record->nameBegin < b.record->nameBegin;
            const JsonMember& first = isInOrder ? *a.record : *b.record;
            const JsonMember& second = isInOrder ? *b.record : *a.record;
            AddFor(second, "same-material", second.nameBegin,
                   Text::tr("%1 of %2 is also the material %3, in line %4")
                       .arg(a.type, ZAXSysLengthValue(b.thickness).ToString(), Quoted(KeyOf(first)),
                            LineText(first.nameBegin)));
        }
    }

    std::optional<Twin> TwinOf(const JsonMember& record) const
    {
        const JsonNode* const properties = record.value.Find(QLatin1String("properties"));
        const JsonNode* const base = properties ? properties->Find(QLatin1String("")) : nullptr;
        if (!base || KeyOf(record).isEmpty() || TypeOf(record.value) != ZAXMatDefinition::Material)
            return std::nullopt;
        const QString type = TextOf(*base, QLatin1String(ZAXMatMaterial::Property_materialType));
        const JsonNode* const given = base->Find(QLatin1String(ZAXMatMaterial::Property_thickness));
        ZAXMatDefinition material;
        material.SetValue(ZAXMatMaterial::Property_thickness, given ? ScalarOf(*given) : QVariant());
        const auto thickness = ThicknessOf(material);
        if (type.isEmpty() || !thickness)
            return std::nullopt;
        return Twin{type, *thickness, &record};
    }

    QByteArray Mended() const
    {
        QList<TextEdit> all = m_edits;
        for (const auto& [object, removed] : m_removals)
            all.append(RemovalEdits(*object, removed));
        std::ranges::sort(all, {}, [](const TextEdit& edit) { return std::pair(edit.offset, -edit.length); });
        // What goes needs no mending.
        QList<TextEdit> edits;
        qsizetype done = 0;
        std::ranges::copy_if(all, std::back_inserter(edits), [&done](const TextEdit& edit) {
            const bool isOutside = edit.offset >= done;
            done = std::max(done, edit.offset + edit.length);
            return isOutside;
        });
        return Edited(m_bytes, edits);
    }

    const QByteArray& m_bytes;
    const JsonNode& m_root;
    TextPositions m_positions;
    CatalogueCheck m_result;
    Removals m_removals;
    QList<TextEdit> m_edits;
    QSet<QString> m_unknownExtensions;
    std::optional<QSet<QString>> m_materials;
};

/// How the mistake is put right; empty when it cannot be.
std::optional<TextEdit> EditFor(const JsonError& error, const QByteArray& bytes)
{
    const qsizetype before = QByteArrayView(bytes).first(std::min(error.offset, bytes.size())).trimmed().end() -
                             QByteArrayView(bytes).begin();
    const bool isBehindBracket = before > 0 && (bytes[before - 1] == '}' || bytes[before - 1] == ']');
    switch (error.kind) {
    case JsonError::Kind::CommaBeforeEnd:
        return TextEdit{before - 1, 1, QByteArray()};
    case JsonError::Kind::MissingComma:
        return TextEdit{before, 0, QByteArray(",")};
    case JsonError::Kind::MissingBrace:
    case JsonError::Kind::MissingBracket:
        // Behind anything else the text may have gone on.
        if (!isBehindBracket)
            return std::nullopt;
        return TextEdit{before, 0, QByteArray(error.kind == JsonError::Kind::MissingBrace ? "\n}" : "\n]")};
    case JsonError::Kind::TextBehindEnd: {
        const QByteArray rest = bytes.sliced(error.offset);
        const auto holdsNothing = [](char character) { return QByteArrayView("}],\t\r\n ").contains(character); };
        if (!std::ranges::all_of(rest, holdsNothing))
            return std::nullopt;
        return TextEdit{error.offset, bytes.trimmed().size() - error.offset, QByteArray()};
    }
    case JsonError::Kind::Other:
        break;
    }
    return std::nullopt;
}

bool HoldsNoObject(const JsonMember& value)
{
    return value.value.kind != Kind::Object;
}

bool IsWholeExtension(const JsonMember& extension)
{
    return extension.value.kind == Kind::Object && std::ranges::all_of(extension.value.members, HoldsNoObject);
}

/// Whether \a record holds what every record does and nothing else, as one does that lost no bracket on the way.
bool IsWholeRecord(const JsonMember& record)
{
    QSet<QString> names;
    for (const JsonMember& member : record.value.members)
        names.insert(member.name);
    const JsonNode* const properties = record.value.Find(QLatin1String("properties"));
    return names.size() == static_cast<qsizetype>(record.value.members.size()) &&
           std::ranges::all_of(names, IsRecordMember) && !KeyOf(record).isEmpty() && TypeOf(record.value) &&
           names.contains(QLatin1String("name")) && properties && properties->kind == Kind::Object &&
           std::ranges::all_of(properties->members, IsWholeExtension);
}

bool IsWholeCatalogue(const JsonNode& root)
{
    return root.kind == Kind::Object && std::ranges::all_of(root.members, IsWholeRecord);
}

CatalogueCheck Unparsable(const QByteArray& bytes, const JsonError& error)
{
    const auto mended = MendSyntax(bytes);
    Finding finding;
    finding.problem = QLatin1String("syntax");
    finding.position = TextPositions(bytes).At(error.offset);
    finding.message = error.message;
    finding.isFixable = mended.has_value();
    return {{finding}, mended.value_or(bytes), {}};
}

} // namespace

std::optional<QByteArray> MendSyntax(const QByteArray& bytes)
{
    constexpr int most = 100;
    QByteArray mended = bytes;
    for (int i = 0; i < most; ++i) {
        const JsonText text = ParseJsonText(mended);
        if (!text.error)
            return IsWholeCatalogue(text.root) ? std::optional(mended) : std::nullopt;
        const auto edit = EditFor(*text.error, mended);
        if (!edit)
            return std::nullopt;
        mended = Edited(mended, {*edit});
    }
    return std::nullopt;
}

CatalogueCheck CheckCatalogue(const QByteArray& bytes)
{
    const JsonText text = ParseJsonText(bytes);
    if (text.error)
        return Unparsable(bytes, *text.error);
    if (text.root.kind != Kind::Object) {
        Finding finding;
        finding.problem = QLatin1String("syntax");
        finding.message = Text::tr("the file holds no JSON object");
        return {{finding}, bytes, {}};
    }
    return Checker(bytes, text.root).Check();
}

} // namespace zaxmat
