#ifndef ZAXFEATOBJECTPROPERTY_H
#define ZAXFEATOBJECTPROPERTY_H

#include "ZAXFeatObjectPropertyBase.h"
#include "ZAXFeatPropertySignals.h"
#include "ZAXGeoContainer.h"
#include "ZAXGeoGeometryNotFoundException.h"
#include "ZAXGeoStream.h"

/// A pointer to one feature of type T as a property of another.
template <typename T>
class ZAXFeatObjectProperty : public ZAXFeatObjectPropertyBase
{
public:
    ZAXFeatObjectProperty(ZAXFeatObject* feature, bool isInput) : ZAXFeatObjectPropertyBase(feature, isInput) {}

    void EndModify(bool silent) override
    {
        ZAXFeatObjectPropertyBase::EndModify(silent);
        if (!silent)
            ZAXFeatPropertySignals::EmitPropertyChanged(GetFeature(), GetPropertyIndex());
    }

    using ZAXFeatObjectPropertyBase::SetPointedObject;

    /// Points the property at \a object, which may be null, as one change.
    /// \throws ZAXSysException for an object that is not a T, or one that the property may not point at.
    virtual void SetPointedObject(ZAXFeatObject* object, bool silent)
    {
        if (object && !qobject_cast<T*>(object))
            throw ZAXSysException(
                QLatin1String("The object is not a %1.").arg(QLatin1String(T::staticMetaObject.className())));
        ZAXFeatPropertyChange change(*this);
        SetPointedObject(object);
        change.EndModify(silent);
    }

    /// The feature pointed at; null for none.
    T* GetObject() const { return qobject_cast<T*>(GetPointedObject()); }
};

/// Writes the reference of the object pointed at; for null an invalid one, or that of an object that could not be
/// brought along at the last load.
template <typename T>
ZAXGeoStream& operator<<(ZAXGeoStream& stream, const ZAXFeatObjectProperty<T>& property)
{
    stream.GetDataStream() << property.GetReference();
    return stream;
}

/// Points the property at a stored object, with notification. A reference that maps to an invalid one gives null.
/// \throws ZAXGeoGeometryNotFoundException for a valid reference that does not lead to a T.
template <typename T>
ZAXGeoStream& operator>>(ZAXGeoStream& stream, ZAXFeatObjectProperty<T>& property)
{
    ZAXGeoGeometryRef stored;
    stream.GetDataStream() >> stored;
    const ZAXGeoGeometryRef reference = stream.GetMappedReference(stored);
    T* const object = qobject_cast<T*>(stream.GetContainer()->GetGeometryByRef(reference));
    if (!object && reference.IsValid())
        throw ZAXGeoGeometryNotFoundException(reference);
    property.SetPointedObject(object, false);
    if (!object)
        property.SetUnavailableReference(stream.MapReference(stored));
    return stream;
}

#endif
