#include "ObjectJson.h"

#include "DocumentObjects.h"
#include "ObjectValues.h"

#include "ZAXFeatObject.h"
#include "ZAXHostDocumentCodec.h"
#include "ZAXHostPlaceholder.h"

#include <QJsonArray>

namespace zaxmat {

namespace {

QJsonObject PropertiesJson(const ZAXFeatObject& object)
{
    QJsonObject properties;
    const QList<ObjectValue> values = ValuesOf(object, LengthUnit::Millimetre);
    for (const ObjectValue& value : values)
        properties.insert(QString::fromLatin1(value.name), value.value);
    return properties;
}

/// What a document tells of an object that is not available.
QJsonObject UnavailableJson(const ZAXHostPlaceholder& placeholder)
{
    QJsonArray classes;
    const QList<ZAXHostDocumentClass> chain = placeholder.GetClasses();
    for (const ZAXHostDocumentClass& type : chain) {
        classes.append(QJsonObject{{QLatin1String("name"), QString::fromUtf8(type.name)},
                                   {QLatin1String("version"), type.version}});
    }
    return {{QLatin1String("reason"), placeholder.GetReason()}, {QLatin1String("classes"), classes}};
}

QJsonArray ObjectsJson(const QList<ZAXFeatObject*>& objects)
{
    QJsonArray array;
    for (const ZAXFeatObject* const object : objects)
        array.append(ObjectJson(*object));
    return array;
}

} // namespace

QString ClassName(const ZAXFeatObject& object)
{
    const auto* const placeholder = qobject_cast<const ZAXHostPlaceholder*>(&object);
    return placeholder ? QString::fromUtf8(placeholder->GetClassName())
                       : QString::fromLatin1(object.metaObject()->className());
}

QJsonObject ObjectJson(const ZAXFeatObject& object)
{
    QJsonObject json{{QLatin1String("id"), static_cast<qint64>(object.GetId())},
                     {QLatin1String("class"), ClassName(object)},
                     {QLatin1String("path"), ObjectPath(object)},
                     {QLatin1String("objects"), ObjectsJson(object.GetChildren())}};
    if (const auto* const placeholder = qobject_cast<const ZAXHostPlaceholder*>(&object))
        json.insert(QLatin1String("unavailable"), UnavailableJson(*placeholder));
    else
        json.insert(QLatin1String("properties"), PropertiesJson(object));
    return json;
}

} // namespace zaxmat
