#ifndef ZAXMATDEFINITIONPRIVATE_H
#define ZAXMATDEFINITIONPRIVATE_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"
#include "ZAXMatValues.h"

#include <QSharedData>

class ZAXMatDefinitionPrivate : public QSharedData
{
public:
    /// What \a record holds.
    static const ZAXMatDefinitionPrivate& Of(const ZAXMatDefinition& record) { return *record.d; }
    /// The same, to be changed without a change to other records.
    static ZAXMatDefinitionPrivate& Of(ZAXMatDefinition& record) { return *record.d; }

    QByteArray key;
    QByteArray materialKey;
    QString name;
    QString savedName;
    ZAXMatValues values;
    ZAXMatValues savedValues;
    ZAXMatDefinition::Type type = ZAXMatDefinition::Material;
};

#endif
