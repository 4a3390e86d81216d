#ifndef ZAXMATDEFINITIONPRIVATE_H
#define ZAXMATDEFINITIONPRIVATE_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"

#include <QHash>
#include <QSharedData>

class ZAXMatDefinitionPrivate : public QSharedData
{
public:
    /// Property name to value.
    using Table = QHash<QByteArray, QVariant>;
    /// Extension key to the table of its properties.
    using Values = QHash<QByteArray, Table>;

    QByteArray key;
    QByteArray materialKey;
    QString name;
    QString savedName;
    Values values;
    Values savedValues;
    ZAXMatDefinition::Type type = ZAXMatDefinition::Material;
};

#endif
