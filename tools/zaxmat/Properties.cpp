#include "Properties.h"

#include "Text.h"

#include "ZAXSysDefinedValue.h"

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

constexpr double millimetresPerInch = 25.4;

bool IsLength(const QMetaProperty& property)
{
    return property.metaType() == QMetaType::fromType<ZAXSysLengthValue>();
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
    return ClassOf(record.GetType(), extension);
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

std::optional<ZAXSysQuantity> QuantityOf(const QMetaProperty& property)
{
    if (property.metaType() == QMetaType::fromType<ZAXSysLengthValue>())
        return ZAXSysQuantity::Length;
    if (property.metaType() == QMetaType::fromType<ZAXSysDensityValue>())
        return ZAXSysQuantity::Density;
    return std::nullopt;
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

QString ValueText(const QMetaProperty& property, const QVariant& value, LengthUnit unit)
{
    if (IsMissing(value))
        return QLatin1String("-");
    if (!property.isValid() || !IsAccepted(property, value))
        return RawText(value);
    QVariant taken = value;
    taken.convert(property.metaType());
    return IsLength(property) ? LengthText(taken.value<ZAXSysLengthValue>().GetValue(), unit) : TypedText(taken);
}

QJsonValue ValueJson(const QMetaProperty& property, const QVariant& value)
{
    if (IsMissing(value))
        return QJsonValue(QJsonValue::Null);
    if (!property.isValid() || !IsAccepted(property, value))
        return QJsonValue::fromVariant(value);
    QVariant taken = value;
    taken.convert(property.metaType());
    if (IsLength(property) || property.metaType() == QMetaType::fromType<ZAXSysDensityValue>())
        return taken.toDouble();
    if (property.isEnumType())
        return QString::fromLatin1(property.enumerator().valueToKey(taken.toInt()));
    return QJsonValue::fromVariant(taken);
}

QString LengthText(double millimetres, LengthUnit unit)
{
    if (unit == LengthUnit::Millimetre)
        return ZAXSysLengthValue(millimetres).ToString();
    // Where a length is no whole number of inches, what is read is closer than any sheet is cut.
    constexpr int digits = 9;
    return QString::number(millimetres / millimetresPerInch, 'g', digits) + QLatin1String(" in");
}

QString RecordText(const ZAXMatDefinition& record, const QByteArray& name, const QByteArray& extension, LengthUnit unit)
{
    return ValueText(FindProperty(ClassOf(record, extension), name), record.GetValue(name, extension), unit);
}

QJsonValue RecordJson(const ZAXMatDefinition& record, const QByteArray& name, const QByteArray& extension)
{
    return ValueJson(FindProperty(ClassOf(record, extension), name), record.GetValue(name, extension));
}

} // namespace zaxmat
