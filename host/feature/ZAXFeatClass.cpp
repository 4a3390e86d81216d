#include "ZAXFeatClass.h"

#include "ZAXSysDefinedValue.h"

namespace {

using Argument = ZAXFeatNotification::Argument;

Argument ArgumentOf(QMetaType value, QMetaType parameter)
{
    if (parameter.id() == QMetaType::QVariant)
        return Argument::Variant;
    if (value == parameter)
        return Argument::Value;
    const bool isPhysical =
        value == QMetaType::fromType<ZAXSysLengthValue>() || value == QMetaType::fromType<ZAXSysDensityValue>();
    return isPhysical && parameter.id() == QMetaType::Double ? Argument::Number : Argument::Converted;
}

} // namespace

ZAXFeatClass::Property* ZAXFeatClass::GetProperty(int index)
{
    if (m_properties.empty())
        m_properties.resize(static_cast<size_t>(m_type->propertyCount()));
    const auto place = static_cast<size_t>(index);
    if (place >= m_properties.size())
        return nullptr;
    Property& property = m_properties[place];
    if (!property.isKnown)
        Learn(index, property);
    return &property;
}

void ZAXFeatClass::Learn(int index, Property& property) const
{
    const QMetaProperty meta = m_type->property(index);
    property.isKnown = true;
    property.name = meta.name();
    ZAXFeatNotification& notification = property.notification;
    notification.property = meta;
    notification.valueType = meta.metaType();
    notification.signal = meta.notifySignal();
    if (const QMetaObject* const owner = notification.signal.enclosingMetaObject()) {
        notification.raise = owner->d.static_metacall;
        notification.signalIndex = notification.signal.methodIndex() - owner->methodOffset();
    }
    const int parameters = notification.signal.isValid() ? notification.signal.parameterCount() : 0;
    if (parameters == 0) {
        notification.typeName = meta.typeName();
    } else {
        notification.type = notification.signal.parameterMetaType(0);
        notification.argument = ArgumentOf(meta.metaType(), notification.type);
        notification.typeName = notification.type.name();
        // The type itself knows its name; only that of one it does not know must be made.
        if (notification.typeName.isEmpty())
            notification.typeName = notification.signal.parameterTypeName(0);
    }
    notification.isSafe =
        parameters == 0 || (parameters == 1 && meta.isReadable() && notification.argument != Argument::Converted);
}
