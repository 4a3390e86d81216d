#include "ObjectChanges.h"

#include "DocumentObjects.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatObject.h"

#include <algorithm>

namespace zaxmat {

namespace {

QList<const ZAXFeatObject*> WithAllBelow(const ZAXFeatObject& object)
{
    QList<const ZAXFeatObject*> objects{&object};
    const QList<ZAXFeatObject*> below = object.GetAllChildren();
    std::ranges::copy(below, std::back_inserter(objects));
    return objects;
}

Cell CellOf(const ObjectValue& value, Emphasis emphasis)
{
    return value.name.isEmpty() ? Cell(QLatin1String("-"), QJsonValue()) : Cell(value.text, value.value, emphasis);
}

} // namespace

ObjectSnapshot::ObjectSnapshot(const ZAXFeatObject& object, LengthUnit unit) : m_unit(unit)
{
    const QList<const ZAXFeatObject*> objects = WithAllBelow(object);
    for (const ZAXFeatObject* const each : objects)
        m_values.insert(each->GetId(), ValuesOf(*each, unit));
}

Table ObjectSnapshot::CompareWith(const ZAXFeatObject& object) const
{
    constexpr auto left = Table::Alignment::Left;
    Table table({{QString(), left, QLatin1String("id")},
                 {Text::tr("Object"), left, QLatin1String("path")},
                 {Text::tr("Property")},
                 {QString(), left, QLatin1String("property")},
                 {Text::tr("Before"), left, QLatin1String("old")},
                 {Text::tr("Now"), left, QLatin1String("new")}});
    const QList<const ZAXFeatObject*> objects = WithAllBelow(object);
    for (const ZAXFeatObject* const each : objects) {
        const QList<ObjectValue> before = m_values.value(each->GetId());
        const QList<ObjectValue> now = ValuesOf(*each, m_unit);
        for (const ObjectValue& value : now) {
            const auto found = std::ranges::find(before, value.name, &ObjectValue::name);
            const ObjectValue old = found != before.end() ? *found : ObjectValue();
            if (found != before.end() && old.value == value.value)
                continue;
            table.AddRow({{QString(), static_cast<qint64>(each->GetId())},
                          ObjectPath(*each),
                          value.label,
                          QString::fromLatin1(value.name),
                          CellOf(old, Emphasis::Removed),
                          CellOf(value, Emphasis::Added)});
        }
    }
    return table;
}

} // namespace zaxmat
