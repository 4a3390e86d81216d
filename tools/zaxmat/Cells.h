#ifndef ZAXMAT_CELLS_H
#define ZAXMAT_CELLS_H

#include "Output.h"
#include "Table.h"

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QJsonValue>
#include <QMetaProperty>
#include <QString>

namespace zaxmat {

/// The value of a property as a catalogue's file holds it, for people with its unit and for programs in the units of
/// the catalogue. A value that \a property cannot take, or any value for an invalid one, stands as it is.
Cell ValueCell(const QMetaProperty& property, const QJsonValue& value, LengthUnit unit);

/// A key.
Cell KeyCell(const QByteArray& key);

/// A number of things.
Cell CountCell(qsizetype count);

/// "material" or "stock form", in the user's language for people.
Cell TypeCell(ZAXMatDefinition::Type type);

} // namespace zaxmat

#endif
