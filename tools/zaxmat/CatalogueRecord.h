#ifndef ZAXMAT_CATALOGUERECORD_H
#define ZAXMAT_CATALOGUERECORD_H

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QLatin1String>
#include <QString>

#include <optional>

namespace zaxmat {

/// A record as it stands in a catalogue's file, read without making a ZAXMatDefinition of it. A copy costs next to
/// nothing.
class CatalogueRecord
{
public:
    /// The record in the form of ZAXMatDefinition::ToJson(). Missing members read as empty.
    explicit CatalogueRecord(const QJsonObject& object = {}) : m_object(object) {}

    /// The keys as the catalogue's provider reads them, Latin-1.
    QByteArray GetKey() const;
    QByteArray GetMaterialKey() const;
    QString GetName() const;
    ZAXMatDefinition::Type GetType() const;
    bool IsValid() const { return !GetKey().isEmpty(); }

    /// The values under \a extension, as the file has them.
    QJsonObject GetValues(QLatin1String extension = QLatin1String("")) const;
    /// The value of a property; undefined when there is none.
    QJsonValue GetValue(QLatin1String property, QLatin1String extension = QLatin1String("")) const;

    /// The record as the catalogue's provider would hand it out, counting as unchanged.
    ZAXMatDefinition ToDefinition() const;
    const QJsonObject& GetObject() const { return m_object; }

private:
    QJsonObject m_object;
};

/// \a value in millimetres, as a property for lengths takes it; empty for what is no length.
std::optional<double> LengthOf(const QJsonValue& value);

/// \a record written over \a previous, the same record as it stood in the file before: what the two have in common
/// keeps its form to the letter, and so does what a record does not know of. Unlike ZAXMatDefinition::ToJson(), letters
/// beyond ASCII in keys and in names of properties come out as they are read.
/// \throws Failure (FileFailure) when \a previous holds properties that are no values, and would be lost.
QJsonObject RecordToJson(const ZAXMatDefinition& record, const QJsonObject& previous = {});

} // namespace zaxmat

#endif
