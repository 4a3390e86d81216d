// Values as people type them, with units: the first byte of an input chooses the property, the second how numbers are
// read, the rest is the text. A value that is taken is finite, is not taken otherwise with spaces around it, and comes
// back to the last bit from its own text and from a catalogue's file.

#include "Failure.h"
#include "FuzzInput.h"
#include "Schema.h"
#include "Values.h"
#include "ZAXSysDefinedValue.h"
#include "ZAXSysValue.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <bit>
#include <cmath>
#include <optional>

namespace {

using zaxmat::Failure;
using zaxmat::PropertyName;

bool IsSame(std::optional<double> a, std::optional<double> b)
{
    return a.has_value() == b.has_value() && (!a || std::bit_cast<quint64>(*a) == std::bit_cast<quint64>(*b));
}

void CheckQuantity(ZAXSysQuantity quantity, const QString& text)
{
    const auto value = ZAXSysValue::FromString(quantity, text);
    Require(IsSame(ZAXSysValue::FromString(quantity, u' ' + text + u'\t'), value),
            "spaces around a value do not count");
    if (!value)
        return;
    Require(std::isfinite(*value), "a value is finite");
    const QString shown = ZAXSysValue(quantity, *value).ToString();
    Require(IsSame(ZAXSysValue::FromString(quantity, shown), value), "a value is read back to the last bit");
    bool isNumber = false;
    const double number = text.trimmed().toDouble(&isNumber);
    Require(!isNumber || !std::isfinite(number) || IsSame(number, value), "a bare number counts in the internal unit");
}

/// What a record of a catalogue's file holds of \a value.
QVariant Stored(const QVariant& value)
{
    ZAXMatDefinition record;
    record.SetValue("value", value);
    const QByteArray text = QJsonDocument(record.ToJson().toObject()).toJson();
    ZAXMatDefinition read;
    read.FromJson(QJsonDocument::fromJson(text).object());
    return read.GetValue("value");
}

/// The text is taken, or refused with a reason.
void CheckSetting(ZAXMatDefinition::Type type, const PropertyName& name, const QString& text,
                  const zaxmat::ValueReading& reading)
{
    static zaxmat::ValueChecker checker;
    try {
        const QVariant value = zaxmat::ParseValue(zaxmat::RequireProperty(type, name), name, text, reading);
        checker.Check(type, name, value);
        if (value.typeId() == QMetaType::Double)
            // Of the two zeros a file knows one.
            Require(value.toDouble() == Stored(value).toDouble(), "a number is stored to the last bit");
        Require(text.isEmpty() == !value.isValid(), "only no text is no value");
    } catch (const Failure& failure) {
        Require(!failure.GetMessage().isEmpty(), "a refusal says why");
    }
}

void CheckAssignment(ZAXMatDefinition::Type type, const QString& text)
{
    ZAXMatDefinition record;
    record.SetType(type);
    record.SetValue("own", 1.5);
    record.SetValue("own", true, "Extension");
    record.SetValue("own", QVariant(), "Other");
    const ZAXMatDefinition before = record;
    try {
        zaxmat::ApplySettings({text}, record);
    } catch (const Failure& failure) {
        Require(!failure.GetMessage().isEmpty(), "a refusal says why");
        Require(record == before, "a refused value changes nothing");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const zaxmat::Schema schema;
    static const QList<QByteArray> material = schema.GetProperties(ZAXMatDefinition::Material, {});
    static const QList<QByteArray> stockForm = schema.GetProperties(ZAXMatDefinition::Packaging, {});
    FuzzInput input(data, size);
    const int choice = input.Below(material.size() + stockForm.size());
    const auto type = choice < material.size() ? ZAXMatDefinition::Material : ZAXMatDefinition::Packaging;
    const QByteArray property =
        type == ZAXMatDefinition::Material ? material.at(choice) : stockForm.at(choice - material.size());
    const int way = input.Byte();
    using DecimalComma = zaxmat::ValueReading::DecimalComma;
    constexpr std::array commas{DecimalComma::Accepted, DecimalComma::Refused, DecimalComma::Usual};
    const zaxmat::ValueReading reading{commas.at((way >> 2) % commas.size()),
                                       (way & 2) != 0 ? QLatin1String("in") : QString()};
    const QString text = QString::fromUtf8(input.Rest());

    CheckQuantity(ZAXSysQuantity::Length, text);
    CheckQuantity(ZAXSysQuantity::Density, text);
    CheckSetting(type, {{}, property}, text, reading);
    CheckAssignment(type, text);
    CheckAssignment(type, QLatin1String(property) + u'=' + text);
    return 0;
}
