#include "ZAXSysDefinedValue.h"

#include <QIterable>
#include <QMetaSequence>
#include <QSequentialIterable>

#include <cmath>

// The conversions of the typed values. A converter answers false for what it refuses, so that QVariant::convert()
// and QObject::setProperty() fail and the property keeps its value.

namespace {

template <typename Value, typename Number>
void RegisterNumber()
{
    QMetaType::registerConverterFunction(
        [](const void* from, void* to) {
            const auto number = static_cast<double>(*static_cast<const Number*>(from));
            if (!std::isfinite(number))
                return false;
            *static_cast<Value*>(to) = Value(number);
            return true;
        },
        QMetaType::fromType<Number>(), QMetaType::fromType<Value>());
}

template <ZAXSysQuantity Quantity>
void RegisterValue(const char* name)
{
    using Value = ZAXSysDefinedValue<Quantity>;
    qRegisterMetaType<Value>(name);
    RegisterNumber<Value, int>();
    RegisterNumber<Value, uint>();
    RegisterNumber<Value, qlonglong>();
    RegisterNumber<Value, qulonglong>();
    RegisterNumber<Value, float>();
    RegisterNumber<Value, double>();
    QMetaType::registerConverterFunction(
        [](const void* from, void* to) {
            const auto number = ZAXSysValue::FromString(Quantity, *static_cast<const QString*>(from));
            if (number)
                *static_cast<Value*>(to) = Value(*number);
            return number.has_value();
        },
        QMetaType::fromType<QString>(), QMetaType::fromType<Value>());
    QMetaType::registerConverterFunction(
        [](const void* from, void* to) {
            *static_cast<double*>(to) = static_cast<const Value*>(from)->GetValue();
            return true;
        },
        QMetaType::fromType<Value>(), QMetaType::fromType<double>());
    QMetaType::registerConverterFunction(
        [](const void* from, void* to) {
            *static_cast<QString*>(to) = static_cast<const Value*>(from)->ToString();
            return true;
        },
        QMetaType::fromType<Value>(), QMetaType::fromType<QString>());
}

[[maybe_unused]] const bool registered = [] {
    RegisterValue<ZAXSysQuantity::Length>("ZAXSysLengthValue");
    RegisterValue<ZAXSysQuantity::Density>("ZAXSysDensityValue");
    // Qt keeps the first copy of these that it meets; it must not be one in a module that may leave.
    qRegisterMetaType<QIterable<QMetaSequence>>();
    qRegisterMetaType<QSequentialIterable>();
    return true;
}();

} // namespace
