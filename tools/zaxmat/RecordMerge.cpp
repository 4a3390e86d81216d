#include "RecordMerge.h"

#include "Catalogue.h"
#include "Failure.h"
#include "Properties.h"
#include "RecordDifference.h"
#include "Text.h"

#include <QMap>
#include <QMultiHash>
#include <QSet>

#include <algorithm>
#include <utility>

namespace zaxmat {

namespace {

/// What tells the records of a catalogue apart.
using Identity = std::pair<ZAXMatDefinition::Type, QByteArray>;

template <typename Record>
Identity IdentityOf(const Record& record)
{
    return {record.GetType(), record.GetKey()};
}

const ZAXMatDefinition& EitherOf(const RecordEdit& edit)
{
    return edit.after.IsValid() ? edit.after : edit.before;
}

/// Whether each member of \a root is named by the key of its record, so that no two have the same key.
bool IsNamedByKeys(const QJsonObject& root)
{
    for (auto member = root.begin(); member != root.end(); ++member) {
        if (CatalogueRecord(member.value().toObject()).GetKey() != member.key().toUtf8())
            return false;
    }
    return true;
}

/// Where the records of a catalogue stand.
class Members
{
public:
    explicit Members(const QJsonObject& root) : m_root(root)
    {
        if (IsNamedByKeys(root))
            return;
        for (auto member = root.begin(); member != root.end(); ++member) {
            const CatalogueRecord record(member.value().toObject());
            if (record.IsValid())
                m_names.insert(IdentityOf(record), member.key());
        }
    }

    /// The names of the members that hold the record.
    QStringList NamesOf(const Identity& identity) const
    {
        if (!m_names.isEmpty())
            return m_names.values(identity);
        const QString name = QString::fromLatin1(identity.second);
        const CatalogueRecord record(m_root.value(name).toObject());
        return record.IsValid() && IdentityOf(record) == identity ? QStringList{name} : QStringList();
    }

private:
    QJsonObject m_root;
    /// Empty when the names are the keys.
    QMultiHash<Identity, QString> m_names;
};

ZAXMatDefinition RecordIn(const Catalogue& catalogue, const ZAXMatDefinition& record)
{
    return record.GetType() == ZAXMatDefinition::Material ? catalogue.GetMaterial(record.GetKey())
                                                          : catalogue.GetStockForm(record.GetKey());
}

/// New stock forms of materials that the other side removed.
QList<RecordConflict> WithoutMaterial(const QList<RecordEdit>& edits, const Catalogue& base, const Catalogue& theirs)
{
    QList<RecordConflict> conflicts;
    for (const RecordEdit& edit : edits) {
        const QByteArray key = edit.after.GetMaterialKey();
        if (!edit.before.IsValid() && edit.after.GetType() == ZAXMatDefinition::Packaging &&
            base.GetMaterial(key).IsValid() && !theirs.GetMaterial(key).IsValid())
            conflicts.append({{}, edit.after, {}, Text::tr("its material is no longer in the file")});
    }
    return conflicts;
}

/// Stock forms that the other side put under materials which \a edits remove.
QList<RecordConflict> LosingTheirMaterial(const QList<RecordEdit>& edits, const Catalogue& theirs)
{
    QSet<QByteArray> removedMaterials;
    QSet<Identity> edited;
    for (const RecordEdit& edit : edits) {
        edited.insert(IdentityOf(EitherOf(edit)));
        if (!edit.after.IsValid() && edit.before.GetType() == ZAXMatDefinition::Material)
            removedMaterials.insert(edit.before.GetKey());
    }
    QList<RecordConflict> conflicts;
    for (const CatalogueRecord& stockForm : theirs.ReadStockForms()) {
        if (removedMaterials.contains(stockForm.GetMaterialKey()) && !edited.contains(IdentityOf(stockForm)))
            conflicts.append({{}, {}, stockForm.ToDefinition(), Text::tr("its material is removed here")});
    }
    return conflicts;
}

/// Where \a record stands in \a root, the member of its key when it is not there yet.
QString MemberOf(const ZAXMatDefinition& record, const QJsonObject& root, const Members& members)
{
    const QStringList found = members.NamesOf(IdentityOf(record));
    const QString key = QString::fromLatin1(record.GetKey());
    if (found.size() > 1) {
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The catalogue holds the record %1 (%2) %3 times, and only one of them counts. Nothing "
                               "was written. \"zaxmat check\" shows such records.")
                          .arg(Quoted(key), Quoted(record.GetName()), QString::number(found.size())));
    }
    if (found.isEmpty() && root.contains(key)) {
        throw Failure(ExitCode::FileFailure,
                      Text::tr("Another record stands in the place %1 of the catalogue, so that %2 cannot be written "
                               "there. Nothing was written. \"zaxmat check\" shows such records.")
                          .arg(Quoted(key), Quoted(record.GetName())));
    }
    return found.isEmpty() ? key : found.constFirst();
}

/// \a root with the members \a changed put in or, where they are undefined, taken out. Members are put behind one
/// another: inserting new ones into \a root would move the rest of it each time.
QJsonObject WithMembers(const QJsonObject& root, const QMap<QString, QJsonValue>& changed)
{
    const auto replaces = [&](const QString& name) { return root.contains(name) && !changed[name].isUndefined(); };
    if (std::ranges::all_of(changed.keys(), replaces)) {
        QJsonObject result = root;
        for (auto each = changed.cbegin(); each != changed.cend(); ++each)
            result[each.key()] = each.value();
        return result;
    }
    QJsonObject result;
    auto change = changed.cbegin();
    const auto putChangesUpTo = [&](const QString& name) {
        for (; change != changed.cend() && change.key() <= name; ++change) {
            if (!change.value().isUndefined())
                result.insert(change.key(), change.value());
        }
    };
    for (auto member = root.begin(); member != root.end(); ++member) {
        const QString name = member.key();
        putChangesUpTo(name);
        if (!changed.contains(name))
            result.insert(name, member.value());
    }
    for (; change != changed.cend(); ++change) {
        if (!change.value().isUndefined())
            result.insert(change.key(), change.value());
    }
    return result;
}

QString ShownValue(const ZAXMatDefinition& record, const FieldDifference& field, const QVariant& value)
{
    if (!record.IsValid())
        return Text::tr("no record");
    return field.property.isEmpty() ? ValueText({}, value) : RecordText(record, field.property, field.extension);
}

QVariant ValueOf(const ZAXMatDefinition& record, const FieldDifference& field)
{
    if (!field.property.isEmpty())
        return record.GetValue(field.property, field.extension);
    const auto differences = DifferencesOf(ZAXMatDefinition(), record);
    const auto found = std::ranges::find(differences, field.field, &FieldDifference::field);
    return found != differences.end() ? found->after : QVariant();
}

/// The fields in which either side differs from what was before.
QList<FieldDifference> ChangedFields(const RecordConflict& conflict)
{
    QList<FieldDifference> fields = DifferencesOf(conflict.before, conflict.ours);
    const QList<FieldDifference> others = DifferencesOf(conflict.before, conflict.theirs);
    for (const FieldDifference& other : others) {
        if (std::ranges::find(fields, other.field, &FieldDifference::field) == fields.end())
            fields.append(other);
    }
    return fields;
}

QString ConflictLines(const RecordConflict& conflict)
{
    const auto& shown = conflict.before.IsValid() ? conflict.before
                        : conflict.ours.IsValid() ? conflict.ours
                                                  : conflict.theirs;
    QStringList lines{QLatin1String("  ") +
                      Text::tr("%1 (%2)").arg(Quoted(shown.GetName()), Printable(QString::fromLatin1(shown.GetKey())))};
    if (!conflict.reason.isEmpty()) {
        lines.append(QLatin1String("    ") + conflict.reason);
        return lines.join(u'\n');
    }
    const auto fields = ChangedFields(conflict);
    for (const FieldDifference& field : fields) {
        const auto text = [&](const ZAXMatDefinition& record) {
            return Quoted(ShownValue(record, field, ValueOf(record, field)));
        };
        lines.append(QLatin1String("    ") + Text::tr("%1: was %2, is %3 here and %4 in the file")
                                                 .arg(Printable(field.field), text(conflict.before),
                                                      text(conflict.ours), text(conflict.theirs)));
    }
    return lines.join(u'\n');
}

} // namespace

QList<RecordConflict> ConflictsOf(const QList<RecordEdit>& edits, const Catalogue& base, const Catalogue& theirs)
{
    QList<RecordConflict> conflicts;
    for (const RecordEdit& edit : edits) {
        const ZAXMatDefinition now = RecordIn(theirs, EitherOf(edit));
        if (!IsSameRecord(now, edit.before) && !IsSameRecord(now, edit.after))
            conflicts.append({edit.before, edit.after, now});
    }
    return conflicts + WithoutMaterial(edits, base, theirs) + LosingTheirMaterial(edits, theirs);
}

QJsonObject Edited(const QJsonObject& root, const QList<RecordEdit>& edits)
{
    const Members members(root);
    QMap<QString, QJsonValue> changed;
    for (const RecordEdit& edit : edits) {
        const QString member = MemberOf(EitherOf(edit), root, members);
        changed.insert(member, edit.after.IsValid() ? RecordToJson(edit.after, root.value(member).toObject())
                                                    : QJsonValue(QJsonValue::Undefined));
    }
    return WithMembers(root, changed);
}

QString ConflictText(const QList<RecordConflict>& conflicts)
{
    QStringList lines;
    std::ranges::transform(conflicts, std::back_inserter(lines), ConflictLines);
    return lines.join(u'\n');
}

} // namespace zaxmat
