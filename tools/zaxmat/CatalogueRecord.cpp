#include "CatalogueRecord.h"

#include "Failure.h"
#include "RecordDifference.h"
#include "Text.h"

#include "ZAXSysValue.h"

#include <algorithm>

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

/// What \a property, which holds \a value, is called in \a table. Names beyond Latin-1, which records do not know, read
/// alike; the one that holds the value is meant.
QString NameIn(const QJsonObject& table, const QByteArray& property, const QVariant& value)
{
    const QString name = QString::fromLatin1(property);
    if (table.contains(name) || !property.contains('?'))
        return name;
    QStringList alike = table.keys();
    alike.removeIf([&](const QString& each) { return each.toLatin1() != property; });
    const auto holder = std::ranges::find_if(
        alike, [&](const QString& each) { return IsSameValue(table.value(each).toVariant(), value); });
    return holder != alike.end() ? *holder : alike.value(0, name);
}

/// \throws Failure when \a previous, the record \a key, holds something under "properties" that no record has.
void RequireValues(const QJsonObject& previous, const QByteArray& key)
{
    const QJsonValue properties = previous.value(propertiesMember);
    const QJsonObject extensions = properties.toObject();
    const bool isRight = properties.isUndefined() ||
                         (properties.isObject() &&
                          std::ranges::all_of(extensions, [](const QJsonValue& table) { return table.isObject(); }));
    if (!isRight) {
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The record %1 holds something other than values, which writing it would lose. Nothing "
                               "was written. \"zaxmat check\" tells more.")
                          .arg(Quoted(QString::fromLatin1(key))));
    }
}

QJsonObject TableToJson(const ZAXMatDefinition& record, const QByteArray& extension, const QJsonObject& previous)
{
    QJsonObject table = previous;
    RemoveUndefined(record, extension, table);
    const QList<QByteArray> properties = record.GetDefinedProperties(extension);
    for (const QByteArray& property : properties) {
        const QVariant value = record.GetValue(property, extension);
        const QString name = NameIn(previous, property, value);
        const QJsonValue present = table.value(name);
        const QJsonValue now = QJsonValue::fromVariant(value);
        if (present != now || present.isUndefined())
            table.insert(name, now);
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
    RequireValues(previous, record.GetKey());
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
