#ifndef ZAXFEATPROPERTYSIGNALS_H
#define ZAXFEATPROPERTYSIGNALS_H

#include "ZAXFeatObject.h"
#include "ZAXFeatSignalScope.h"
#include "ZAXSysDefinedValue.h"
#include "ZAXSysException.h"

#include <QByteArray>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QMetaType>
#include <QThread>
#include <QVariant>

#include <utility>

/// What raising the notify signal of a property takes, the same for all features of a class.
struct ZAXFeatNotification
{
    /// What of the property's value the signal is raised with.
    enum class Argument
    {
        Value,    ///< as it is; also where the signal takes none
        Variant,  ///< in a QVariant
        Number,   ///< the number of a ZAXSysValue
        Converted ///< to another type, as far as that can be done
    };

    QMetaProperty property;
    /// Of the values of the property.
    QMetaType valueType;
    QMetaMethod signal;
    /// What QMetaMethod::invoke() calls in the signal's class, and the index there; null when it has none.
    QMetaObject::Data::StaticMetacallFunction raise = nullptr;
    int signalIndex = -1;
    /// Raising the signal cannot fail.
    bool isSafe = false;
    /// Of the signal's first parameter; invalid when it takes none.
    QMetaType type;
    Argument argument = Argument::Value;
    /// The name of that type, or that of the property's where the signal takes none.
    QByteArray typeName;
};

/// How the typed properties raise the signals of their feature: through the meta-object, since a property knows its
/// feature only as a ZAXFeatObject.
namespace ZAXFeatPropertySignals {

/// How to raise the notify signal of the property \a index of \a feature; valid as long as the feature. Null when there
/// is no such signal, and when \a feature is being loaded, nobody is connected to it, and nothing could go wrong with
/// raising it.
ZAXFEATURE_EXPORT const ZAXFeatNotification* FindNotification(const ZAXFeatObject* feature, int index);

/// Invokes \a signal on \a feature with \a argument, whose type is named \a typeName as an argument and
/// \a returnTypeName in the return position; without any argument where the signal takes none.
/// QMetaMethod::invoke() checks the number of arguments, never their types: \a argument must be of the type that the
/// signal takes, null when there is no such value.
inline bool Invoke(const QMetaMethod& signal, ZAXFeatObject* feature, const char* typeName, const char* returnTypeName,
                   void* argument)
{
    const ZAXFeatSignalScope scope(feature);
    if (argument) {
        if (signal.invoke(feature, Qt::AutoConnection, QGenericReturnArgument(), QGenericArgument(typeName, argument)))
            return true;
        if (signal.invoke(feature, Qt::AutoConnection, QGenericReturnArgument(returnTypeName, argument)))
            return true;
    }
    return signal.invoke(feature, Qt::AutoConnection);
}

/// Raises the notify signal of the property \a index of \a feature with the property's value, converted to the
/// signal's parameter type. Does nothing for a property that is not bound or has no notify signal.
/// \throws ZAXSysException when the signal takes something that the value does not convert to.
inline void EmitPropertyChanged(ZAXFeatObject* feature, int index)
{
    const ZAXFeatNotification* const notification = index < 0 ? nullptr : FindNotification(feature, index);
    if (!notification)
        return;
    QVariant value = notification->property.read(feature);
    double number = 0;
    void* argument = nullptr;
    switch (notification->argument) {
    case ZAXFeatNotification::Argument::Value:
        argument = value.data();
        break;
    case ZAXFeatNotification::Argument::Variant:
        argument = &value;
        break;
    case ZAXFeatNotification::Argument::Number:
        number = static_cast<const ZAXSysValue*>(value.constData())->GetValue();
        argument = &number;
        break;
    case ZAXFeatNotification::Argument::Converted:
        if (value.convert(notification->type))
            argument = value.data();
        break;
    }
    // Slots may do away with the feature, and with what was found.
    const QMetaMethod signal = notification->signal;
    const char* const typeName = notification->typeName.constData();
    if (!Invoke(signal, feature, typeName, typeName, argument))
        throw ZAXSysException(QLatin1String("Could not emit the property changed signal."));
}

/// EmitPropertyChanged() for a property that holds a T: without a QVariant where the meta-object has it as a T too, or
/// as a physical value that is told as a number.
template <typename T>
void EmitValueChanged(ZAXFeatObject* feature, int index)
{
    using Argument = ZAXFeatNotification::Argument;
    const ZAXFeatNotification* const notification = index < 0 ? nullptr : FindNotification(feature, index);
    if (!notification)
        return;
    const bool isDirect = notification->isSafe && notification->raise && feature->thread() == QThread::currentThread();
    const auto raise = [=](auto value, auto argumentOf) {
        const auto call = notification->raise;
        const int signal = notification->signalIndex;
        void* read[] = {&value};
        QMetaObject::metacall(feature, QMetaObject::ReadProperty, index, read);
        auto argument = argumentOf(value);
        void* raised[] = {nullptr, &argument};
        const ZAXFeatSignalScope scope(feature);
        call(feature, QMetaObject::InvokeMetaMethod, signal, raised);
    };
    const auto number = [](const ZAXSysValue& value) { return value.GetValue(); };
    if (isDirect && notification->argument == Argument::Value && notification->valueType == QMetaType::fromType<T>())
        raise(T(), [](T& value) -> T&& { return std::move(value); });
    else if (isDirect && notification->argument == Argument::Number &&
             notification->valueType == QMetaType::fromType<ZAXSysLengthValue>())
        raise(ZAXSysLengthValue(), number);
    else if (isDirect && notification->argument == Argument::Number &&
             notification->valueType == QMetaType::fromType<ZAXSysDensityValue>())
        raise(ZAXSysDensityValue(), number);
    else
        EmitPropertyChanged(feature, index);
}

/// Raises the list signal with the meta-method index \a index of \a feature with \a object, a pointer to the class
/// \a className that may be null. \a what, "added" or "removed", names the signal in messages.
/// \throws ZAXSysException when the feature has no such method, or one that takes more than one argument.
inline void EmitListSignal(ZAXFeatObject* feature, int index, const QByteArray& className, void* object,
                           QLatin1String what)
{
    if (index < 0)
        return;
    const QMetaMethod signal = feature->metaObject()->method(index);
    if (!signal.isValid())
        throw ZAXSysException(QLatin1String("The %1 signal is invalid.").arg(what));
    const QByteArray typeName = className + '*';
    const QByteArray returnTypeName = "const " + typeName;
    if (!Invoke(signal, feature, typeName.constData(), returnTypeName.constData(), &object))
        throw ZAXSysException(
            QLatin1String("Could not emit the %1 signal because the signature could not be deduced.").arg(what));
}

} // namespace ZAXFeatPropertySignals

#endif
