#include "RecordChanges.h"

#include "Properties.h"
#include "Records.h"
#include "Text.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <algorithm>

namespace zaxmat {

namespace {

/// Whether a record would take both for the same value.
bool IsSameValue(const QVariant& a, const QVariant& b)
{
    if (IsMissing(a) || IsMissing(b))
        return IsMissing(a) && IsMissing(b);
    ZAXMatDefinition first;
    first.SetValue("value", a);
    ZAXMatDefinition second;
    second.SetValue("value", b);
    return first == second;
}

void CompareOwn(const QByteArray& field, const QVariant& before, const QVariant& after, QList<FieldChange>& changes)
{
    if (before != after)
        changes.append({{}, field, true, before, after});
}

/// The properties under \a extension of either record, those of \a after last.
QList<QByteArray> PropertiesOfBoth(const ZAXMatDefinition& before, const ZAXMatDefinition& after,
                                   const QByteArray& extension)
{
    QList<QByteArray> properties = PropertiesOf(before, extension);
    const QSet<QByteArray> known(properties.begin(), properties.end());
    const QList<QByteArray> more = PropertiesOf(after, extension);
    std::ranges::copy_if(more, std::back_inserter(properties),
                         [&](const QByteArray& property) { return !known.contains(property); });
    return properties;
}

QList<QByteArray> ExtensionsOfBoth(const ZAXMatDefinition& before, const ZAXMatDefinition& after)
{
    QList<QByteArray> extensions = ExtensionsOf(before);
    const QList<QByteArray> more = ExtensionsOf(after);
    std::ranges::copy_if(more, std::back_inserter(extensions),
                         [before = extensions](const QByteArray& extension) { return !before.contains(extension); });
    std::ranges::sort(extensions);
    return extensions;
}

using Identity = std::pair<int, QByteArray>;

Identity IdentityOf(const ZAXMatDefinition& record)
{
    return {record.GetType(), record.GetKey()};
}

QHash<Identity, const ZAXMatDefinition*> ByIdentity(const QList<ZAXMatDefinition>& records)
{
    QHash<Identity, const ZAXMatDefinition*> hash;
    hash.reserve(records.size());
    for (const ZAXMatDefinition& record : records)
        hash.insert(IdentityOf(record), &record);
    return hash;
}

Emphasis EmphasisOf(RecordChange::Kind kind)
{
    switch (kind) {
    case RecordChange::Kind::Added:
        return Emphasis::Added;
    case RecordChange::Kind::Removed:
        return Emphasis::Removed;
    case RecordChange::Kind::Changed:
        break;
    }
    return Emphasis::Changed;
}

QString ChangeTitle(RecordChange::Kind kind)
{
    switch (kind) {
    case RecordChange::Kind::Added:
        return Text::tr("added");
    case RecordChange::Kind::Removed:
        return Text::tr("removed");
    case RecordChange::Kind::Changed:
        break;
    }
    return Text::tr("changed");
}

QString FieldName(const FieldChange& field)
{
    const QString name = QString::fromLatin1(field.field);
    return field.extension.isEmpty() ? name : QString::fromLatin1(field.extension) + u'.' + name;
}

/// A value as a catalogue's file has it.
QString JsonValueText(const QVariant& value)
{
    const QByteArray array = QJsonDocument(QJsonArray{QJsonValue::fromVariant(value)}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.sliced(1, array.size() - 2));
}

/// The two values of \a field of \a record.
std::pair<Cell, Cell> ValueCells(const ZAXMatDefinition& record, const FieldChange& field)
{
    const QMetaProperty property =
        field.isOwn ? QMetaProperty() : FindProperty(ClassOf(record, field.extension), field.field);
    QString before = ValueText(property, field.before);
    QString after = ValueText(property, field.after);
    // The number 5 and the text "5".
    if (before == after) {
        before = JsonValueText(field.before);
        after = JsonValueText(field.after);
    }
    const auto json = [](const QVariant& value) {
        return IsMissing(value) ? QJsonValue() : QJsonValue::fromVariant(value);
    };
    return {Cell(before, json(field.before)), Cell(after, json(field.after))};
}

} // namespace

QList<FieldChange> FieldChanges(const ZAXMatDefinition& before, const ZAXMatDefinition& after)
{
    QList<FieldChange> changes;
    CompareOwn("name", before.GetName(), after.GetName(), changes);
    CompareOwn("type", int(before.GetType()), int(after.GetType()), changes);
    CompareOwn("materialKey", QString::fromLatin1(before.GetMaterialKey()), QString::fromLatin1(after.GetMaterialKey()),
               changes);
    if (before == after)
        return changes;
    const QList<QByteArray> extensions = ExtensionsOfBoth(before, after);
    for (const QByteArray& extension : extensions) {
        const QList<QByteArray> properties = PropertiesOfBoth(before, after, extension);
        for (const QByteArray& property : properties) {
            const QVariant old = before.GetValue(property, extension);
            const QVariant now = after.GetValue(property, extension);
            if (!IsSameValue(old, now))
                changes.append({extension, property, false, old, now});
        }
    }
    return changes;
}

QList<RecordChange> RecordChanges(const QList<ZAXMatDefinition>& before, const QList<ZAXMatDefinition>& after)
{
    const auto old = ByIdentity(before);
    const auto now = ByIdentity(after);
    QList<RecordChange> changes;
    for (const ZAXMatDefinition& record : after) {
        const ZAXMatDefinition* const was = old.value(IdentityOf(record));
        const QList<FieldChange> fields = was ? FieldChanges(*was, record) : QList<FieldChange>();
        if (!was)
            changes.append({RecordChange::Kind::Added, record, {}});
        else if (!fields.isEmpty())
            changes.append({RecordChange::Kind::Changed, record, fields});
    }
    for (const ZAXMatDefinition& record : before) {
        if (!now.contains(IdentityOf(record)))
            changes.append({RecordChange::Kind::Removed, record, {}});
    }
    return changes;
}

QString ChangeWord(RecordChange::Kind kind)
{
    switch (kind) {
    case RecordChange::Kind::Added:
        return QLatin1String("added");
    case RecordChange::Kind::Removed:
        return QLatin1String("removed");
    case RecordChange::Kind::Changed:
        break;
    }
    return QLatin1String("changed");
}

Table ChangesTable(const QList<RecordChange>& changes)
{
    constexpr auto left = Table::Alignment::Left;
    Table table({{Text::tr("Change"), left, QLatin1String("change")},
                 {{}, left, QLatin1String("type")},
                 {Text::tr("Record"), left, QLatin1String("name")},
                 {Text::tr("Property"), left, QLatin1String("property")},
                 {Text::tr("Old"), left, QLatin1String("old")},
                 {Text::tr("New"), left, QLatin1String("new")},
                 {Text::tr("Key"), left, QLatin1String("key")}});
    for (const RecordChange& change : changes) {
        const ZAXMatDefinition& record = change.record;
        const bool isMaterial = record.GetType() == ZAXMatDefinition::Material;
        const Cell word(ChangeTitle(change.kind), QJsonValue(ChangeWord(change.kind)), EmphasisOf(change.kind));
        const Cell type(QString(), QJsonValue(isMaterial ? QLatin1String("material") : QLatin1String("stock form")));
        const Cell name(isMaterial ? MaterialTitle(record) : record.GetName(), QJsonValue(record.GetName()));
        const Cell key = QString::fromLatin1(record.GetKey());
        const Cell nothing{QString(), QJsonValue()};
        if (change.fields.isEmpty())
            table.AddRow({word, type, name, nothing, nothing, nothing, key});
        for (const FieldChange& field : change.fields) {
            const auto [before, after] = ValueCells(record, field);
            table.AddRow({word, type, name, FieldName(field), before, after, key});
        }
    }
    return table;
}

} // namespace zaxmat
