#ifndef ZAXMAT_OBJECTVALUES_H
#define ZAXMAT_OBJECTVALUES_H

#include "Output.h"
#include "Properties.h"

#include <QByteArray>
#include <QJsonValue>
#include <QList>
#include <QMetaProperty>
#include <QString>

class ZAXFeatObject;

namespace zaxmat {

/// \a value of \a property as catalogues and programs hold it: lengths and densities as plain numbers in millimetres
/// and grams per cubic centimetre, enumerators by their own names, byte strings as Latin-1, colours as "#rrggbb".
QJsonValue PlainValue(const QMetaProperty& property, const QVariant& value);

/// What an object of a document holds under one name.
struct ObjectValue
{
    QByteArray name;
    /// The name for people.
    QString label;
    /// The value for people.
    QString text;
    QJsonValue value;
};

/// The label of \a object, as "label", and its properties that can be set, in the order of their declaration. Lengths
/// are displayed in \a unit.
QList<ObjectValue> ValuesOf(const ZAXFeatObject& object, LengthUnit unit);

} // namespace zaxmat

#endif
