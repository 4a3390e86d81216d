#include "Properties.h"

#include "Text.h"

#include "ZAXMatExtensionPlugin.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QStringList>

#include <algorithm>

namespace zaxmat {

namespace {

/// A value as a catalogue file would hold it.
QString RawText(const QVariant& value)
{
    if (value.typeId() == QMetaType::Double)
        return NumberText(value.toDouble());
    if (value.typeId() == QMetaType::QVariantMap || value.typeId() == QMetaType::QVariantList)
        return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
    return value.toString();
}

/// A value of a property's own type.
QString TypedText(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? Text::tr("yes") : Text::tr("no");
    case QMetaType::QByteArray:
        return QString::fromUtf8(value.toByteArray());
    case QMetaType::QColor:
        return value.value<QColor>().name();
    default:
        return RawText(value);
    }
}

bool IsEnumerator(const QMetaProperty& property, const QVariant& value)
{
    return property.enumerator().valueToKey(value.toInt()) != nullptr;
}

} // namespace

bool IsMissing(const QVariant& value)
{
    return !value.isValid() || value.typeId() == QMetaType::Nullptr;
}

const QMetaObject* ClassOf(const ZAXMatDefinition& record, const QByteArray& extension)
{
    const bool isMaterial = record.GetType() == ZAXMatDefinition::Material;
    if (extension.isEmpty())
        return isMaterial ? &ZAXMatMaterial::staticMetaObject : &ZAXMatPackaging::staticMetaObject;
    const QList<ZAXMatExtensionPlugin*> plugins = ZAXMatExtensionPlugin::GetPlugins();
    for (const ZAXMatExtensionPlugin* const plugin : plugins) {
        const QMetaObject* const type =
            isMaterial ? plugin->GetMaterialExtensionMetaObject() : plugin->GetPackagingExtensionMetaObject();
        if (extension == type->className())
            return type;
    }
    return nullptr;
}

QList<QByteArray> ExtensionsOf(const ZAXMatDefinition& record)
{
    QList<QByteArray> extensions = record.GetDefinedExtensions();
    std::ranges::sort(extensions);
    return extensions;
}

QList<QByteArray> PropertiesOf(const ZAXMatDefinition& record, const QByteArray& extension)
{
    const QMetaObject* const type = ClassOf(record, extension);
    const auto place = [type](const QByteArray& name) {
        const int index = type ? type->indexOfProperty(name) : -1;
        return std::pair(index < 0, index);
    };
    QList<QByteArray> properties = record.GetDefinedProperties(extension);
    std::ranges::sort(properties, [&](const QByteArray& a, const QByteArray& b) {
        return place(a) != place(b) ? place(a) < place(b) : a < b;
    });
    return properties;
}

QMetaProperty FindProperty(const QMetaObject* type, const QByteArray& name)
{
    return type ? type->property(type->indexOfProperty(name)) : QMetaProperty();
}

QString PropertyLabel(const QMetaObject* type, const QByteArray& name)
{
    const int index = type ? type->indexOfClassInfo("PropertyLabel_" + name) : -1;
    if (index < 0)
        return QString::fromUtf8(name);
    const char* const label = type->classInfo(index).value();
    while (index < type->classInfoOffset())
        type = type->superClass();
    return QCoreApplication::translate(type->className(), label);
}

bool IsAccepted(const QMetaProperty& property, const QVariant& value)
{
    QVariant taken = value;
    if (IsMissing(value) || !taken.convert(property.metaType()))
        return false;
    return !property.isEnumType() || IsEnumerator(property, taken);
}

QString ValueText(const QMetaProperty& property, const QVariant& value)
{
    if (IsMissing(value))
        return QLatin1String("-");
    if (!property.isValid() || !IsAccepted(property, value))
        return RawText(value);
    QVariant taken = value;
    taken.convert(property.metaType());
    return TypedText(taken);
}

QString RecordText(const ZAXMatDefinition& record, const QByteArray& name, const QByteArray& extension)
{
    return ValueText(FindProperty(ClassOf(record, extension), name), record.GetValue(name, extension));
}

} // namespace zaxmat
