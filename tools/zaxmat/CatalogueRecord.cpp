#include "CatalogueRecord.h"

#include "RecordDifference.h"

#include "ZAXSysValue.h"

namespace zaxmat {

namespace {

constexpr QLatin1String keyMember("key");
constexpr QLatin1String materialKeyMember("materialKey");
constexpr QLatin1String nameMember("name");
constexpr QLatin1String typeMember("type");
constexpr QLatin1String propertiesMember("properties");

/// Takes out of \a table what \a record does not define under \a extension.
void RemoveUndefined(const ZAXMatDefinition& record, const QByteArray& extension, QJsonObject& table)
{
    const QStringList names = table.keys();
    for (const QString& name : names) {
        if (!record.IsDefined(name.toLatin1(), extension))
            table.remove(name);
    }
}

QJsonObject TableToJson(const ZAXMatDefinition& record, const QByteArray& extension, const QJsonObject& previous)
{
    QJsonObject table = previous;
    RemoveUndefined(record, extension, table);
    const QList<QByteArray> properties = record.GetDefinedProperties(extension);
    for (const QByteArray& property : properties) {
        const QString name = QString::fromLatin1(property);
        const QVariant value = record.GetValue(property, extension);
        if (!table.contains(name) || !IsSameValue(table.value(name).toVariant(), value))
            table.insert(name, QJsonValue::fromVariant(value));
    }
    return table;
}

/// Gives \a object the member \a name unless it reads as \a text already.
void SetKey(QJsonObject& object, QLatin1String name, const QByteArray& key)
{
    if (!object.contains(name) || object.value(name).toString().toLatin1() != key)
        object.insert(name, QString::fromLatin1(key));
}

} // namespace

QByteArray CatalogueRecord::GetKey() const
{
    return m_object.value(keyMember).toString().toLatin1();
}

QByteArray CatalogueRecord::GetMaterialKey() const
{
    return m_object.value(materialKeyMember).toString().toLatin1();
}

QString CatalogueRecord::GetName() const
{
    return m_object.value(nameMember).toString();
}

ZAXMatDefinition::Type CatalogueRecord::GetType() const
{
    return static_cast<ZAXMatDefinition::Type>(m_object.value(typeMember).toInt(ZAXMatDefinition::Material));
}

QJsonObject CatalogueRecord::GetValues(QLatin1String extension) const
{
    return m_object.value(propertiesMember).toObject().value(extension).toObject();
}

QJsonValue CatalogueRecord::GetValue(QLatin1String property, QLatin1String extension) const
{
    return GetValues(extension).value(property);
}

ZAXMatDefinition CatalogueRecord::ToDefinition() const
{
    ZAXMatDefinition record;
    record.FromJson(m_object);
    record.Commit();
    return record;
}

std::optional<double> LengthOf(const QJsonValue& value)
{
    if (value.isDouble())
        return value.toDouble();
    return value.isString() ? ZAXSysValue::FromString(ZAXSysQuantity::Length, value.toString()) : std::nullopt;
}

QJsonObject RecordToJson(const ZAXMatDefinition& record, const QJsonObject& previous)
{
    QJsonObject object = previous;
    SetKey(object, keyMember, record.GetKey());
    SetKey(object, materialKeyMember, record.GetMaterialKey());
    if (const QString name = record.GetName(); object.value(nameMember) != QJsonValue(name))
        object.insert(nameMember, name);
    if (const int type = record.GetType(); object.value(typeMember) != QJsonValue(type))
        object.insert(typeMember, type);
    QJsonObject properties = object.value(propertiesMember).toObject();
    const QStringList present = properties.keys();
    const QList<QByteArray> extensions = record.GetDefinedExtensions();
    for (const QString& extension : present) {
        if (!extensions.contains(extension.toLatin1()))
            properties.remove(extension);
    }
    for (const QByteArray& extension : extensions) {
        const QString name = QString::fromLatin1(extension);
        properties.insert(name, TableToJson(record, extension, properties.value(name).toObject()));
    }
    object.insert(propertiesMember, properties);
    return object;
}

} // namespace zaxmat
