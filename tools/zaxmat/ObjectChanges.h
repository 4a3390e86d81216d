#ifndef ZAXMAT_OBJECTCHANGES_H
#define ZAXMAT_OBJECTCHANGES_H

#include "ObjectValues.h"

#include <QList>
#include <QPair>

class ZAXFeatObject;

namespace zaxmat {

class Table;

/// What an object and all below it held at one time, to be compared with what they hold later.
class ObjectSnapshot
{
public:
    ObjectSnapshot(const ZAXFeatObject& object, LengthUnit unit);

    /// The values that are different now, and those of objects that were added below, one row each.
    Table CompareWith(const ZAXFeatObject& object) const;

private:
    LengthUnit m_unit;
    QHash<quint64, QList<ObjectValue>> m_values;
};

} // namespace zaxmat

#endif
