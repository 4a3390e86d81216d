#ifndef ZAXMAT_PROPERTIES_H
#define ZAXMAT_PROPERTIES_H

#include "Output.h"
#include "Schema.h"

#include "ZAXMatDefinition.h"
#include "ZAXSysValue.h"

#include <QByteArray>
#include <QJsonValue>
#include <QList>
#include <QMetaProperty>
#include <QString>
#include <QVariant>

#include <optional>

namespace zaxmat {

/// True for no value: an invalid one and the null of JSON.
bool IsMissing(const QVariant& value);

/// The class whose properties the values of \a record under \a extension are: of a material or a stock form, else of a
/// loaded extension. Null when no loaded module provides the extension.
const QMetaObject* ClassOf(const ZAXMatDefinition& record, const QByteArray& extension);

/// The extension keys of \a record, the base properties first, the others by name.
QList<QByteArray> ExtensionsOf(const ZAXMatDefinition& record);

/// The properties that \a record defines under \a extension: first those of the class in the order of their
/// declaration, then others by name.
QList<QByteArray> PropertiesOf(const ZAXMatDefinition& record, const QByteArray& extension);

/// The property \a name of \a type, which may be null; an invalid one when there is none.
QMetaProperty FindProperty(const QMetaObject* type, const QByteArray& name);

/// What kind of numbers with a unit \a property takes; empty for none.
std::optional<ZAXSysQuantity> QuantityOf(const QMetaProperty& property);

/// The label of the property \a name of \a type, which may be null, in the user's language; the name when there is
/// none.
QString PropertyLabel(const QMetaObject* type, const QByteArray& name);

/// Whether \a value is one that \a property takes, as it is or converted. A missing value is none.
bool IsAccepted(const QMetaProperty& property, const QVariant& value);

/// \a value as the user reads it, after \a property has taken it, with its unit and independent of the locale: a length
/// in millimetres with all its digits, or in inches with nine digits at most. A value
/// that an invalid \a property or one that does not accept it cannot take reads as it stands, a missing one as "-".
QString ValueText(const QMetaProperty& property, const QVariant& value, LengthUnit unit = LengthUnit::Millimetre);

/// \a value for programs, after \a property has taken it: lengths as millimetres, densities as grams per cubic
/// centimetre, names of enumerators. A value that the property cannot take stands as it is, a missing one is null.
QJsonValue ValueJson(const QMetaProperty& property, const QVariant& value);

/// A length for people.
QString LengthText(double millimetres, LengthUnit unit);

/// The value of the property \a name of \a record, its base property unless \a extension says otherwise, as ValueText()
/// gives it.
QString RecordText(const ZAXMatDefinition& record, const QByteArray& name, const QByteArray& extension = {},
                   LengthUnit unit = LengthUnit::Millimetre);
/// The same for programs, as ValueJson() gives it.
QJsonValue RecordJson(const ZAXMatDefinition& record, const QByteArray& name, const QByteArray& extension = {});

} // namespace zaxmat

#endif
