#ifndef ZAXMAT_VALUES_H
#define ZAXMAT_VALUES_H

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QMetaProperty>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <optional>

namespace zaxmat {

/// Which value of a record is meant: "thickness" or "Extension.property".
struct PropertyName
{
    /// The class of an extension; empty for the properties of the material or stock form itself.
    QByteArray extension;
    QByteArray property;

    friend bool operator==(const PropertyName&, const PropertyName&) = default;
};

/// A value on its way into a record.
struct ValueSetting
{
    PropertyName name;
    /// As a catalogue's file holds it: lengths as millimetres, densities as grams per cubic centimetre, names of
    /// enumerators. Invalid to take the property out of the record.
    QVariant value;
};

/// How the text of a value is to be understood.
struct ValueReading
{
    enum class DecimalComma
    {
        Refused,  ///< only a point separates decimals
        Accepted, ///< as people type either sign; a comma that may as well separate thousands is refused
        Usual,    ///< a point that may as well separate thousands is refused
    };

    DecimalComma decimalComma = DecimalComma::Accepted;
    /// The unit of numbers without one, such as "in"; the catalogue's own if empty.
    QString unit = {};
};

/// What is to be said of a number with or without a unit, \a text, that may be meant to be a thousand times as large as
/// it reads: "1.250" where decimals usually follow a comma, "1,250" where that is only accepted. Empty for all others.
QString AmbiguityOf(const QString& text, ValueReading::DecimalComma comma = ValueReading::DecimalComma::Accepted);

/// True for "true" and "yes", false for "false" and "no", in any letter case; empty for anything else.
std::optional<bool> ReadBoolean(const QString& text);

/// Splits \a text, as the command line or the title of a column names a property.
/// \throws Failure (WrongUsage) when a name is missing.
PropertyName ParsePropertyName(const QString& text);

/// "thickness" or "Extension.property".
QString NameText(const PropertyName& name);

/// The property that the class of such records declares, for the user to set.
/// \throws Failure (WrongUsage) with similar names, or all there are, when there is none.
QMetaProperty RequireProperty(ZAXMatDefinition::Type type, const PropertyName& name);

/// The value that \a text stands for, as a catalogue's file holds it; invalid for an empty \a text. Lengths and
/// densities may have a unit, as ZAXSysValue::FromString() reads it, enumerators go by label or name, true, false, yes
/// and no are booleans. \throws Failure (InvalidValues) that names \a name and says what is expected when \a text is
/// nothing of the kind.
QVariant ParseValue(const QMetaProperty& property, const PropertyName& name, const QString& text,
                    const ValueReading& reading = {});

/// The same for a property that no class declares: the value is of the kind of \a present. If that is missing, it is a
/// number or a boolean where \a text is one, else a text.
QVariant ParseValueLike(const QVariant& present, const PropertyName& name, const QString& text,
                        const ValueReading& reading = {});

/// What a catalogue must hold in the place of \a value, a length, a density or a cost of a material or a stock form
/// that is too small: "it must be greater than zero". Empty for all others.
QString LimitOf(const QMetaProperty& property, const QVariant& value);

/// Reads "property=value" or "Extension.property=value" for \a record. What the record holds although no class
/// declares it can be set, too.
/// \throws Failure (WrongUsage) for anything else and for an unknown property; (InvalidValues) as ParseValue().
ValueSetting ParseSetting(const QString& text, const ZAXMatDefinition& record);
/// Puts the value into \a record, or takes the property out.
void Apply(const ValueSetting& setting, ZAXMatDefinition& record);

/// Reads all \a texts for \a record, checks the values, and puts them into it.
/// \throws Failure (WrongUsage, InvalidValues) that lists everything that is wrong. The record is unchanged then.
void ApplySettings(const QStringList& texts, ZAXMatDefinition& record);

/// Asks the classes of materials, stock forms and extensions what they think of values. One at a time.
class ValueChecker
{
public:
    ValueChecker();
    ~ValueChecker();
    ValueChecker(const ValueChecker&) = delete;
    ValueChecker& operator=(const ValueChecker&) = delete;

    /// What the class, or the catalogue, says against \a value of the property \a name of such a record, in the user's
    /// language; empty if nothing. A missing value, and one of a property that no class declares, is right.
    QString Check(ZAXMatDefinition::Type type, const PropertyName& name, const QVariant& value);

private:
    class Features;
    std::unique_ptr<Features> m_features;
};

} // namespace zaxmat

#endif
