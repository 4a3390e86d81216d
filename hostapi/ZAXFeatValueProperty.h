#ifndef ZAXFEATVALUEPROPERTY_H
#define ZAXFEATVALUEPROPERTY_H

#include "ZAXFeatPropertySignals.h"
#include "ZAXFeatValuePropertyBase.h"
#include "ZAXGeoStream.h"

#include <QVariant>

/// A value of type T as a property of a feature: undoable, notified, persistent, and remembered for the next new
/// feature unless it skips that.
template <typename T>
class ZAXFeatValueProperty : public ZAXFeatValuePropertyBase
{
public:
    /// The property \a propertyIndex of the meta-object of \a feature, starting as \a defaultValue.
    /// With \a skipLastSaved, Apply() never changes the value that the user last saved.
    ZAXFeatValueProperty(ZAXFeatObject* feature, int propertyIndex, const T& defaultValue, bool skipLastSaved)
        : ZAXFeatValuePropertyBase(feature, propertyIndex, &access), value(defaultValue), skipLastSaved(skipLastSaved)
    {
    }

    /// Closes the change and, unless \a silent, raises the notify signal with the value of the meta-object property.
    /// \throws ZAXSysException when the signal cannot be raised; the value stays changed.
    void EndModify(bool silent) override
    {
        ZAXFeatValuePropertyBase::EndModify(silent);
        if (!silent)
            ZAXFeatPropertySignals::EmitValueChanged<T>(GetFeature(), GetPropertyIndex());
    }

    /// Takes the last-saved value over, converted to T, without a change or a signal. Keeps the present value when
    /// there is none or it does not convert.
    void InitializeValue() override
    {
        QVariant saved = GetLastSavedValue();
        if (saved.isValid() && saved.convert(QMetaType::fromType<T>()))
            value = saved.value<T>();
    }

    /// Changes the value to \a newValue. False, and nothing happens, when it is equal to the present one.
    virtual bool SetValue(const T& newValue, bool silent)
    {
        if (newValue == value)
            return false;
        BeginValueModify();
        ZAXFeatPropertyChange change(*this, ZAXFeatPropertyChange::IsOpen());
        value = newValue;
        change.EndModify(silent);
        return true;
    }

    /// What a setter of a feature does: changes the value with notification and, when it changed and the property does
    /// not skip that, remembers it as the last-saved value. Returns whether the value changed.
    bool Apply(const T& newValue)
    {
        if (!SetValue(newValue, false))
            return false;
        if (!skipLastSaved)
            SetLastSavedValue(QVariant::fromValue(newValue));
        return true;
    }

    const T& GetValue() const { return value; }
    bool IsSkippingLastSaved() const { return skipLastSaved; }

private:
    static ZAXFeatKeptValue Keep(const ZAXFeatValuePropertyBase& property)
    {
        return ZAXFeatKeptValues::Keep(static_cast<const ZAXFeatValueProperty&>(property).value);
    }
    static void Restore(ZAXFeatValuePropertyBase& property, const ZAXFeatKeptValue& kept)
    {
        static_cast<ZAXFeatValueProperty&>(property).value = ZAXFeatKeptValues::Restored<T>(kept);
    }
    static constexpr ZAXFeatValueAccess access{&Keep, &Restore};

    T value;
    bool skipLastSaved;
};

/// Writes the value.
template <typename T>
ZAXGeoStream& operator<<(ZAXGeoStream& stream, const ZAXFeatValueProperty<T>& property)
{
    stream << property.GetValue();
    return stream;
}

/// Reads a value and applies it; keeps the present one when the stream holds none.
template <typename T>
ZAXGeoStream& operator>>(ZAXGeoStream& stream, ZAXFeatValueProperty<T>& property)
{
    T value{};
    stream >> value;
    if (stream.GetDataStream().status() == QDataStream::Ok)
        property.Apply(value);
    return stream;
}

#endif
