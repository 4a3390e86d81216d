#ifndef ZAXSYSDEFINEDVALUE_H
#define ZAXSYSDEFINEDVALUE_H

#include "ZAXSysValue.h"

#include <QMetaType>

/// A physical value whose quantity is part of its type, so that a property can say what it takes.
///
/// The host registers the types below with Qt: a QVariant holding an int, uint, qlonglong, qulonglong, float, double
/// or QString converts to them (a text as ZAXSysValue::FromString() reads it; what that refuses, and any number that
/// is not finite, does not convert), and they convert to double and to QString (ZAXSysValue::ToString()).
template <ZAXSysQuantity Quantity>
class ZAXSysDefinedValue : public ZAXSysValue
{
public:
    /// Zero.
    ZAXSysDefinedValue() noexcept : ZAXSysValue(Quantity, 0.0) {}
    /// \a value counts in the internal unit of the quantity.
    explicit ZAXSysDefinedValue(double value) noexcept : ZAXSysValue(Quantity, value) {}
};

using ZAXSysLengthValue = ZAXSysDefinedValue<ZAXSysQuantity::Length>;
using ZAXSysDensityValue = ZAXSysDefinedValue<ZAXSysQuantity::Density>;

Q_DECLARE_METATYPE(ZAXSysLengthValue)
Q_DECLARE_METATYPE(ZAXSysDensityValue)

#endif
