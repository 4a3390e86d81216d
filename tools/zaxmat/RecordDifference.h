#ifndef ZAXMAT_RECORDDIFFERENCE_H
#define ZAXMAT_RECORDDIFFERENCE_H

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

namespace zaxmat {

/// A field of a record that two states of it hold different values for.
struct FieldDifference
{
    /// What the field is called on the command line: "name", "materialKey", "type", "thickness" or
    /// "Extension.property".
    QString field;
    /// Where the value stands, when it is one of a property.
    QByteArray extension;
    QByteArray property;
    /// Invalid where there is none.
    QVariant before;
    QVariant after;
};

/// Whether two values of records are the same: numbers whatever their types, a text only the same text. A missing value
/// is the same as another missing one.
bool IsSameValue(const QVariant& a, const QVariant& b);

/// The fields in which \a after differs from \a before, which may both be invalid records: name, material key and type
/// first, then the values by extension and property. Saved states play no part.
QList<FieldDifference> DifferencesOf(const ZAXMatDefinition& before, const ZAXMatDefinition& after);

/// Whether two records of one key hold the same.
bool IsSameRecord(const ZAXMatDefinition& a, const ZAXMatDefinition& b);

/// "thickness", "Extension.property": how the command line names a property.
QString FieldName(const QByteArray& extension, const QByteArray& property);

} // namespace zaxmat

#endif
