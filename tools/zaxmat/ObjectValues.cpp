#include "ObjectValues.h"

#include "Properties.h"
#include "Text.h"

#include "ZAXFeatObject.h"
#include "ZAXSysDefinedValue.h"

#include <QColor>
#include <QMetaEnum>

namespace zaxmat {

QJsonValue PlainValue(const QMetaProperty& property, const QVariant& value)
{
    if (IsMissing(value))
        return QJsonValue::Null;
    if (property.isEnumType()) {
        const char* const key = property.enumerator().valueToKey(value.toInt());
        return key ? QJsonValue(QString::fromLatin1(key)) : QJsonValue(value.toInt());
    }
    const int type = value.typeId();
    if (type == qMetaTypeId<ZAXSysLengthValue>() || type == qMetaTypeId<ZAXSysDensityValue>())
        return value.toDouble();
    if (type == QMetaType::QByteArray)
        return QString::fromLatin1(value.toByteArray());
    if (type == QMetaType::QColor)
        return value.value<QColor>().name();
    return QJsonValue::fromVariant(value);
}

QList<ObjectValue> ValuesOf(const ZAXFeatObject& object, LengthUnit unit)
{
    QList<ObjectValue> values{{"label", Text::tr("Label"), object.GetLabel(), object.GetLabel()}};
    const QMetaObject* const type = object.metaObject();
    for (int i = ZAXFeatObject::staticMetaObject.propertyCount(); i < type->propertyCount(); ++i) {
        const QMetaProperty property = type->property(i);
        const QVariant value = property.read(&object);
        if (property.isWritable())
            values.append({property.name(), PropertyLabel(type, property.name()), ValueText(property, value, unit),
                           PlainValue(property, value)});
    }
    return values;
}

} // namespace zaxmat
