#ifndef ZAXSYSVALUE_H
#define ZAXSYSVALUE_H

#include "ZAXSysExport.h"

#include <QString>

#include <optional>

/// The physical quantities that values with a unit come in. The numbers are part of the interface.
enum class ZAXSysQuantity : int
{
    Length = 1,  ///< internal unit: millimetre
    Density = 7, ///< internal unit: gram per cubic centimetre
};

/// A physical value: a quantity and a number in the internal unit of that quantity.
class ZAXSYSTEM_EXPORT ZAXSysValue
{
public:
    /// \a value counts in the internal unit of \a quantity; any double is stored as it is.
    ZAXSysValue(ZAXSysQuantity quantity, double value) noexcept : m_quantity(quantity), m_value(value) {}

    /// Reads a number with an optional unit of \a quantity ("2 mm", "0.5 in", "2700 kg/m³", "1,5") and gives it in the
    /// internal unit. The decimal sign is a point or a comma whatever the locale, there is no grouping of digits, and
    /// a bare number counts in the internal unit. Empty for anything else: other text, a unit of another quantity, a
    /// number that is not finite. The ToString() text of every finite value is read back to the same double.
    static std::optional<double> FromString(ZAXSysQuantity quantity, const QString& text);

    ZAXSysQuantity GetQuantity() const noexcept { return m_quantity; }
    /// The number in the internal unit.
    double GetValue() const noexcept { return m_value; }
    explicit operator double() const noexcept { return m_value; }

    /// The number and its internal unit, "2 mm" or "7.85 g/cm³": independent of the locale, and with as few digits as
    /// read back to exactly the same double. From 1e-6 up to 1e15 there is no exponent. A quantity that the host does
    /// not know has no unit.
    QString ToString() const;

    /// Equal quantity and equal number, without any tolerance.
    friend bool operator==(const ZAXSysValue& a, const ZAXSysValue& b) noexcept
    {
        return a.m_quantity == b.m_quantity && a.m_value == b.m_value;
    }
    friend bool operator!=(const ZAXSysValue& a, const ZAXSysValue& b) noexcept { return !(a == b); }
    /// Orders by quantity first, then by number.
    friend bool operator<(const ZAXSysValue& a, const ZAXSysValue& b) noexcept
    {
        return a.m_quantity != b.m_quantity ? a.m_quantity < b.m_quantity : a.m_value < b.m_value;
    }

private:
    ZAXSysQuantity m_quantity;
    double m_value;
};

#endif
