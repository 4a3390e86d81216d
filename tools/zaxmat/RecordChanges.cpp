#include "RecordChanges.h"

#include "Properties.h"
#include "Records.h"
#include "Text.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace zaxmat {

namespace {

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

/// A value as a catalogue's file has it.
QString JsonValueText(const QVariant& value)
{
    const QByteArray array = QJsonDocument(QJsonArray{QJsonValue::fromVariant(value)}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.sliced(1, array.size() - 2));
}

} // namespace

QList<RecordChange> RecordChanges(const QList<ZAXMatDefinition>& before, const QList<ZAXMatDefinition>& after)
{
    const auto old = ByIdentity(before);
    const auto now = ByIdentity(after);
    QList<RecordChange> changes;
    for (const ZAXMatDefinition& record : after) {
        const ZAXMatDefinition* const was = old.value(IdentityOf(record));
        const QList<FieldDifference> fields = was ? DifferencesOf(*was, record) : QList<FieldDifference>();
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

std::pair<Cell, Cell> ValueCells(const ZAXMatDefinition& record, const FieldDifference& field, LengthUnit unit)
{
    const QMetaProperty property =
        field.property.isEmpty() ? QMetaProperty() : FindProperty(ClassOf(record, field.extension), field.property);
    QString before = ValueText(property, field.before, unit);
    QString after = ValueText(property, field.after, unit);
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

Table ChangesTable(const QList<RecordChange>& changes, LengthUnit unit)
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
        const Cell name(isMaterial ? MaterialTitle(record, unit) : record.GetName(), QJsonValue(record.GetName()));
        const Cell key = QString::fromLatin1(record.GetKey());
        const Cell nothing{QString(), QJsonValue()};
        if (change.fields.isEmpty())
            table.AddRow({word, type, name, nothing, nothing, nothing, key});
        for (const FieldDifference& field : change.fields) {
            const auto [before, after] = ValueCells(record, field, unit);
            table.AddRow({word, type, name, field.field, before, after, key});
        }
    }
    return table;
}

} // namespace zaxmat
