#include "Cells.h"

#include "Properties.h"
#include "Text.h"

#include "ZAXSysDefinedValue.h"

namespace zaxmat {

Cell ValueCell(const QMetaProperty& property, const QJsonValue& value, LengthUnit unit)
{
    // What most records hold; the rest goes through the property.
    if (value.isDouble() && property.metaType() == QMetaType::fromType<ZAXSysLengthValue>())
        return {LengthText(value.toDouble(), unit), value};
    if (value.isDouble() && property.metaType() == QMetaType::fromType<ZAXSysDensityValue>())
        return {ZAXSysDensityValue(value.toDouble()).ToString(), value};
    if (value.isString() && property.metaType().id() == QMetaType::QString)
        return {value.toString(), value};
    const QVariant variant = value.toVariant();
    return {ValueText(property, variant, unit), ValueJson(property, variant)};
}

Cell KeyCell(const QByteArray& key)
{
    return QString::fromLatin1(key);
}

Cell CountCell(qsizetype count)
{
    return {QString::number(count), QJsonValue(qint64(count))};
}

Cell TypeCell(ZAXMatDefinition::Type type)
{
    if (type == ZAXMatDefinition::Material)
        return {Text::tr("material"), QJsonValue(QLatin1String("material"))};
    return {Text::tr("stock form"), QJsonValue(QLatin1String("stock form"))};
}

} // namespace zaxmat
