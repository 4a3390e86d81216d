#ifndef ZAXMAT_SCHEMA_H
#define ZAXMAT_SCHEMA_H

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>

struct QMetaObject;

namespace zaxmat {

/// What the records of a catalogue can hold, as the library's provider declares it.
class Schema
{
public:
    Schema();

    /// A record with a new key and all properties of its kind, without values.
    ZAXMatDefinition NewRecord(ZAXMatDefinition::Type type, const QString& name) const;
    ZAXMatDefinition NewMaterial(const QString& name) const;
    ZAXMatDefinition NewStockForm(const QString& name, const QByteArray& materialKey) const;

    /// The names of the properties that a user can set under \a extension, in the order of their declaration. Empty for
    /// an extension that no loaded module provides.
    QList<QByteArray> GetProperties(ZAXMatDefinition::Type type, const QByteArray& extension = {}) const;

private:
    std::array<ZAXMatDefinition, 2> m_models;
};

/// The class whose properties the records of that type have under \a extension: of a material or a stock form, else of
/// a loaded extension. Null when no loaded module provides the extension.
const QMetaObject* ClassOf(ZAXMatDefinition::Type type, const QByteArray& extension);

} // namespace zaxmat

#endif
