#ifndef ZAXFEATOBJECTPROPERTY_H
#define ZAXFEATOBJECTPROPERTY_H

#include "ZAXFeatObjectPropertyBase.h"
#include "ZAXFeatPropertySignals.h"

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

#endif
