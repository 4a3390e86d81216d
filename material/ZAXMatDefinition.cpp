#include "ZAXMatDefinition.h"

#include "ZAXMatDefinitionPrivate.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXSysException.h"

#include <QJsonObject>

#include <algorithm>

namespace {

using Extension = ZAXMatValues::Extension;

QJsonObject TableToJson(const ZAXMatValues& values, const Extension& extension)
{
    QJsonObject object;
    for (std::size_t i = extension.begin; i < extension.end; ++i)
        object.insert(QString::fromUtf8(values.GetProperty(i)),
                      QJsonValue::fromVariant(values.GetValue(i).ToVariant()));
    return object;
}

/// Adds the tables of \a properties to \a builder; what their names are once they are bytes is kept in \a names.
void AddTables(const QJsonObject& properties, ZAXMatValuesBuilder& builder, QList<QByteArray>& names)
{
    const auto keep = [&names](const QString& name) {
        names.append(name.toLatin1());
        return QByteArrayView(names.constLast());
    };
    for (auto table = properties.begin(); table != properties.end(); ++table) {
        builder.AddExtension(keep(table.key()));
        const QJsonObject values = table.value().toObject();
        for (auto value = values.begin(); value != values.end(); ++value)
            builder.AddValue(keep(value.key()), ZAXMatValue(value.value().toVariant()));
    }
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
        d->values.Insert(extension, property, ZAXMatValue());
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
    d->values.Insert(extension, property, ZAXMatValue());
}

void ZAXMatDefinition::RemoveAllowedProperty(const QByteArray& extension, const QByteArray& property)
{
    d->values.Remove(extension, property);
}

bool ZAXMatDefinition::IsDefined(const QByteArray& property, const QByteArray& extension) const
{
    return d->values.Find(extension, property);
}

QList<QByteArray> ZAXMatDefinition::GetDefinedExtensions() const
{
    QList<QByteArray> keys;
    std::ranges::transform(d->values.GetExtensions(), std::back_inserter(keys), &Extension::key);
    return keys;
}

QList<QByteArray> ZAXMatDefinition::GetDefinedProperties(const QByteArray& extension) const
{
    QList<QByteArray> names;
    const Extension* const table = d->values.FindExtension(extension);
    for (std::size_t i = table ? table->begin : 0; table && i < table->end; ++i)
        names.append(d->values.GetProperty(i));
    return names;
}

QVariant ZAXMatDefinition::GetValue(const QByteArray& property, const QByteArray& extension) const
{
    const ZAXMatValue* const value = d->values.Find(extension, property);
    return value ? value->ToVariant() : QVariant();
}

bool ZAXMatDefinition::SetValue(const QByteArray& property, const QVariant& value, const QByteArray& extension)
{
    return d->values.Insert(extension, property, ZAXMatValue(value));
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
    return !(d->values == d->savedValues) || d->name != d->savedName;
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
    for (const Extension& extension : std::as_const(d)->values.GetExtensions()) {
        const QObject* const target = extension.key.isEmpty() ? feature : FindTarget(feature, extension.key, false);
        for (std::size_t i = extension.begin; target && i < extension.end; ++i)
            d->values.SetValue(i, ZAXMatValue(target->property(d->values.GetProperty(i).constData())));
    }
}

void ZAXMatDefinition::SaveToFeature(ZAXFeatObject* feature) const
{
    // What listens to the feature's signals may change this record meanwhile; what it holds now is what is written.
    const auto record = d;
    feature->SetLabel(record->name);
    const ZAXMatValues& values = record->values;
    for (const Extension& extension : values.GetExtensions()) {
        QObject* const target = extension.key.isEmpty() ? feature : FindTarget(feature, extension.key, true);
        for (std::size_t i = extension.begin; target && i < extension.end; ++i)
            target->setProperty(values.GetProperty(i).constData(), values.GetValue(i).ToVariant());
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
    for (const Extension& extension : d->values.GetExtensions())
        properties.insert(QString::fromUtf8(extension.key), TableToJson(d->values, extension));
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
    QList<QByteArray> names;
    ZAXMatValuesBuilder builder;
    builder.Add(d->values);
    AddTables(record.value(QLatin1String("properties")).toObject(), builder, names);
    builder.Arrange();
    d->values = builder.Take();
}

bool ZAXMatDefinition::operator==(const ZAXMatDefinition& other) const
{
    return d == other.d || (d->key == other.d->key && d->name == other.d->name && d->type == other.d->type &&
                            d->values == other.d->values);
}

bool ZAXMatDefinition::operator!=(const ZAXMatDefinition& other) const
{
    return !(*this == other);
}
