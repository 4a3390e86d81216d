#ifndef ZAXFEATPROPERTYSIGNALS_H
#define ZAXFEATPROPERTYSIGNALS_H

#include "ZAXFeatObject.h"
#include "ZAXFeatSignalScope.h"
#include "ZAXSysException.h"

#include <QByteArray>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QVariant>

/// How the typed properties raise the signals of their feature: through the meta-object, since a property knows its
/// feature only as a ZAXFeatObject.
namespace ZAXFeatPropertySignals {

/// Whether \a feature is being loaded, nobody is connected to the notify signal of its property \a index, and nothing
/// could go wrong with raising it.
ZAXFEATURE_EXPORT bool IsUnheard(const ZAXFeatObject* feature, int index);

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
    if (index < 0 || IsUnheard(feature, index))
        return;
    const QMetaProperty property = feature->metaObject()->property(index);
    if (!property.hasNotifySignal())
        return;
    const QMetaMethod signal = property.notifySignal();
    QVariant value = property.read(feature);
    void* argument = nullptr;
    // The type itself knows its name; only that of one it does not know must be made.
    const char* typeName = nullptr;
    QByteArray unknownTypeName;
    if (signal.parameterCount() == 0) {
        typeName = property.typeName();
        argument = value.data();
    } else {
        const QMetaType type = signal.parameterMetaType(0);
        typeName = type.name();
        if (!typeName) {
            unknownTypeName = signal.parameterTypeName(0);
            typeName = unknownTypeName.constData();
        }
        if (type.id() == QMetaType::QVariant)
            argument = &value;
        else if (value.metaType() == type || value.convert(type))
            argument = value.data();
    }
    if (!Invoke(signal, feature, typeName, typeName, argument))
        throw ZAXSysException(QLatin1String("Could not emit the property changed signal."));
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
