#ifndef ZAXMAT_CRITERION_H
#define ZAXMAT_CRITERION_H

#include "CatalogueRecord.h"
#include "Values.h"

#include <array>
#include <functional>

namespace zaxmat {

/// What a record is to be like, as the user says it:
/// - "thickness=2", "thickness=2 mm": a number, lengths within a thousandth of a millimetre;
/// - "thickness=1..3", "cost=10..", "density=..2": a range of numbers, both ends included;
/// - "materialType=S235JR", "name=*steel*": a text in which '*' stands for any letters and '?' for any letter; letter
///   case does not count;
/// - "isActive=yes": a boolean;
/// - "comment=": no value.
/// Besides the properties there are "name", "key" and "materialKey".
class Criterion
{
public:
    /// Reads \a text. A property without an extension is looked for under \a extension first.
    /// \throws Failure (WrongUsage) when it says nothing.
    Criterion(const QString& text, const QByteArray& extension);

    /// Whether \a record meets it.
    bool Matches(const CatalogueRecord& record) const;
    /// Whether such records have the property: it is declared, or \a record holds it.
    bool IsKnownTo(const CatalogueRecord& record) const;

    const PropertyName& GetName() const { return m_name; }
    /// The name of a property that every record which meets it holds, for Catalogue::ReadRecordsWith(); empty when
    /// there is no such thing.
    QByteArray GetNeededName() const;
    /// The value that it looks at; undefined if \a record has none.
    QJsonValue ValueOf(const CatalogueRecord& record) const;
    /// The property that it looks at; an invalid one for what is none.
    const QMetaProperty& GetProperty(ZAXMatDefinition::Type type) const { return m_sides.at(type).property; }

private:
    using Test = std::function<bool(const QJsonValue&)>;

    /// How the records of one type are looked at.
    struct Side
    {
        QMetaProperty property;
        Test test;
    };

    PropertyName m_name;
    QByteArray m_extension;
    bool m_asksForNoValue = false;
    std::array<Side, 2> m_sides;
};

} // namespace zaxmat

#endif
