#include "ZAXMatDefinition.h"

#include "ZAXMatDefinitionPrivate.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXMatValueEquality.h"
#include "ZAXSysException.h"

#include <QJsonObject>

#include <algorithm>

namespace {

using Table = ZAXMatDefinitionPrivate::Table;
using Values = ZAXMatDefinitionPrivate::Values;

/// Whether two hashes hold the same keys with values that \a isSame finds the same.
template <typename Hash, typename IsSame>
bool IsSameHash(const Hash& a, const Hash& b, IsSame isSame)
{
    if (a.isSharedWith(b))
        return true;
    const auto entries = a.asKeyValueRange();
    return a.size() == b.size() && std::all_of(entries.begin(), entries.end(), [&](const auto& entry) {
               const auto other = b.constFind(entry.first);
               return other != b.constEnd() && isSame(entry.second, other.value());
           });
}

bool IsSameTable(const Table& a, const Table& b)
{
    return IsSameHash(a, b, ZAXMatIsSameValue);
}

bool IsSameValues(const Values& a, const Values& b)
{
    return IsSameHash(a, b, IsSameTable);
}

QJsonObject TableToJson(const Table& table)
{
    QJsonObject object;
    for (const auto& [property, value] : table.asKeyValueRange())
        object.insert(QString::fromUtf8(property), QJsonValue::fromVariant(value));
    return object;
}

Table TableFromJson(const QJsonObject& object)
{
    Table table;
    table.reserve(object.size());
    for (auto member = object.begin(); member != object.end(); ++member)
        table.insert(member.key().toLatin1(), member.value().toVariant());
    return table;
}

/// The object that carries the properties of \a extension: \a feature itself for the empty key, else its extension of
/// that class, made if it is missing and \a create says so. Null when there is none.
QObject* FindTarget(const ZAXFeatObject* feature, const QByteArray& extension, bool create)
{
    if (const auto* const material = qobject_cast<const ZAXMatMaterial*>(feature))
        return material->GetExtension(extension, create);
    if (const auto* const packaging = qobject_cast<const ZAXMatPackaging*>(feature))
        return packaging->GetExtension(extension, create);
    return nullptr;
}

bool IsTypeOf(ZAXMatDefinition::Type type, const ZAXFeatObject* feature)
{
    switch (type) {
    case ZAXMatDefinition::Material:
        return qobject_cast<const ZAXMatMaterial*>(feature);
    case ZAXMatDefinition::Packaging:
        return qobject_cast<const ZAXMatPackaging*>(feature);
    }
    return true;
}

} // namespace

ZAXMatDefinition::ZAXMatDefinition() : d(new ZAXMatDefinitionPrivate) {}

ZAXMatDefinition::ZAXMatDefinition(const QByteArray& key, Type type,
                                   const QMultiHash<QByteArray, QByteArray>& allowedProperties)
    : d(new ZAXMatDefinitionPrivate)
{
    d->key = key;
    d->type = type;
    for (const auto& [extension, property] : allowedProperties.asKeyValueRange())
        d->values[extension].insert(property, QVariant());
    d->savedValues = d->values;
}

ZAXMatDefinition::ZAXMatDefinition(const ZAXMatDefinition& other) = default;

ZAXMatDefinition& ZAXMatDefinition::operator=(const ZAXMatDefinition& other) = default;

ZAXMatDefinition::~ZAXMatDefinition() = default;

QByteArray ZAXMatDefinition::GetKey() const
{
    return d->key;
}

void ZAXMatDefinition::SetKey(const QByteArray& key)
{
    d->key = key;
}

QByteArray ZAXMatDefinition::GetMaterialKey() const
{
    return d->materialKey;
}

void ZAXMatDefinition::SetMaterialKey(const QByteArray& materialKey)
{
    d->materialKey = materialKey;
}

QString ZAXMatDefinition::GetName() const
{
    return d->name;
}

void ZAXMatDefinition::SetName(const QString& name)
{
    d->name = name;
}

ZAXMatDefinition::Type ZAXMatDefinition::GetType() const
{
    return d->type;
}

void ZAXMatDefinition::SetType(Type type)
{
    d->type = type;
}

bool ZAXMatDefinition::IsValid() const
{
    return !d->key.isEmpty();
}

void ZAXMatDefinition::AddAllowedProperty(const QByteArray& extension, const QByteArray& property)
{
    d->values[extension].insert(property, QVariant());
}

void ZAXMatDefinition::RemoveAllowedProperty(const QByteArray& extension, const QByteArray& property)
{
    const auto table = d->values.find(extension);
    if (table != d->values.end())
        table->remove(property);
}

bool ZAXMatDefinition::IsDefined(const QByteArray& property, const QByteArray& extension) const
{
    const auto table = d->values.constFind(extension);
    return table != d->values.constEnd() && table->contains(property);
}

QList<QByteArray> ZAXMatDefinition::GetDefinedExtensions() const
{
    return d->values.keys();
}

QList<QByteArray> ZAXMatDefinition::GetDefinedProperties(const QByteArray& extension) const
{
    return d->values.value(extension).keys();
}

QVariant ZAXMatDefinition::GetValue(const QByteArray& property, const QByteArray& extension) const
{
    const auto table = d->values.constFind(extension);
    return table != d->values.constEnd() ? table->value(property) : QVariant();
}

bool ZAXMatDefinition::SetValue(const QByteArray& property, const QVariant& value, const QByteArray& extension)
{
    const bool wasDefined = IsDefined(property, extension);
    d->values[extension].insert(property, value);
    return wasDefined;
}

void ZAXMatDefinition::Commit()
{
    d->savedValues = d->values;
    d->savedName = d->name;
}

void ZAXMatDefinition::Revert()
{
    d->values = d->savedValues;
    d->name = d->savedName;
}

bool ZAXMatDefinition::IsChanged() const
{
    return !IsSameValues(d->values, d->savedValues) || d->name != d->savedName;
}

void ZAXMatDefinition::CopyValues(const ZAXMatDefinition& other)
{
    d->values = other.d->values;
    d->name = other.d->name;
}

void ZAXMatDefinition::LoadFromFeature(const ZAXFeatObject* feature)
{
    if (!IsTypeOf(d->type, feature))
        throw ZAXSysException(QLatin1String("Types do not match."));
    d->name = feature->GetLabel();
    for (auto table = d->values.begin(); table != d->values.end(); ++table) {
        const QObject* const target = table.key().isEmpty() ? feature : FindTarget(feature, table.key(), false);
        if (!target)
            continue;
        for (auto value = table->begin(); value != table->end(); ++value)
            value.value() = target->property(value.key().constData());
    }
}

void ZAXMatDefinition::SaveToFeature(ZAXFeatObject* feature) const
{
    // What listens to the feature's signals may change this record meanwhile; what it holds now is what is written.
    const auto record = d;
    feature->SetLabel(record->name);
    for (const auto& [extension, table] : record->values.asKeyValueRange()) {
        QObject* const target = extension.isEmpty() ? feature : FindTarget(feature, extension, true);
        if (!target)
            continue;
        for (const auto& [property, value] : table.asKeyValueRange())
            target->setProperty(property.constData(), value);
    }
}

QJsonValue ZAXMatDefinition::ToJson() const
{
    QJsonObject record;
    record.insert(QLatin1String("key"), QString::fromUtf8(d->key));
    record.insert(QLatin1String("materialKey"), QString::fromUtf8(d->materialKey));
    record.insert(QLatin1String("name"), d->name);
    record.insert(QLatin1String("type"), static_cast<int>(d->type));
    QJsonObject properties;
    for (const auto& [extension, table] : d->values.asKeyValueRange())
        properties.insert(QString::fromUtf8(extension), TableToJson(table));
    record.insert(QLatin1String("properties"), properties);
    return record;
}

void ZAXMatDefinition::FromJson(const QJsonValue& value)
{
    const QJsonObject record = value.toObject();
    d->key = record.value(QLatin1String("key")).toString().toLatin1();
    d->materialKey = record.value(QLatin1String("materialKey")).toString().toLatin1();
    d->name = record.value(QLatin1String("name")).toString();
    d->type = static_cast<Type>(record.value(QLatin1String("type")).toInt(Material));
    const QJsonObject properties = record.value(QLatin1String("properties")).toObject();
    for (auto member = properties.begin(); member != properties.end(); ++member)
        d->values.insert(member.key().toLatin1(), TableFromJson(member.value().toObject()));
}

bool ZAXMatDefinition::operator==(const ZAXMatDefinition& other) const
{
    return d == other.d || (d->key == other.d->key && d->name == other.d->name && d->type == other.d->type &&
                            IsSameValues(d->values, other.d->values));
}

bool ZAXMatDefinition::operator!=(const ZAXMatDefinition& other) const
{
    return !(*this == other);
}
