#include "ZAXFeatObjectPropertyBase.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObjectListPropertyBase.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXFeatPropertyBasePrivate.h"
#include "ZAXSysException.h"

ZAXFeatObjectPropertyBase::ZAXFeatObjectPropertyBase(ZAXFeatObject* feature, bool isInput)
    : ZAXFeatPropertyBase(feature, isInput)
{
}

ZAXFeatObjectPropertyBase::~ZAXFeatObjectPropertyBase()
{
    if (ZAXFeatObject* const pointed = GetPointedObject())
        ZAXFeatObjectPrivate::Get(*pointed).pointers.removeOne(this);
    SetUnavailableReference({});
}

ZAXFeatObjectListPropertyBase* ZAXFeatObjectPropertyBase::GetOwningList() const
{
    return nullptr;
}

void ZAXFeatObjectPropertyBase::SetPointedObject(ZAXFeatObject* object)
{
    if (object && object->GetContainer() != GetFeature()->GetContainer() && !CanExternalReference(object))
        throw ZAXSysException(QLatin1String("The object belongs to another document."));
    ZAXFeatObject*& pointed = ZAXFeatPropertyBasePrivate::Get(*this).pointed;
    if (pointed)
        ZAXFeatObjectPrivate::Get(*pointed).pointers.removeOne(this);
    pointed = object;
    SetUnavailableReference({});
    if (pointed)
        ZAXFeatObjectPrivate::Get(*pointed).pointers.append(this);
}

bool ZAXFeatObjectPropertyBase::CanExternalReference(ZAXFeatObject*)
{
    return false;
}

ZAXFeatObject* ZAXFeatObjectPropertyBase::GetPointedObject() const
{
    return ZAXFeatPropertyBasePrivate::Get(*this).pointed;
}

ZAXGeoGeometryRef ZAXFeatObjectPropertyBase::GetReference() const
{
    const auto& d = ZAXFeatPropertyBasePrivate::Get(*this);
    return d.pointed ? ZAXGeoGeometryRef(d.pointed) : d.unavailable;
}

void ZAXFeatObjectPropertyBase::SetUnavailableReference(const ZAXGeoGeometryRef& reference)
{
    auto& unavailable = ZAXFeatPropertyBasePrivate::Get(*this).unavailable;
    if (unavailable == reference)
        return;
    if (auto* const container = ZAXFeatObjectPrivate::Get(*GetFeature()).container) {
        auto& properties = ZAXFeatContainerPrivate::Get(*container).unavailable;
        properties.remove(unavailable.GetId(), this);
        if (reference.IsValid())
            properties.insert(reference.GetId(), this);
    }
    unavailable = reference;
}

ZAXFeatObjectListPropertyBase::ZAXFeatObjectListPropertyBase(ZAXFeatObject* feature, int propertyIndex)
    : ZAXFeatPropertyBase(feature, propertyIndex)
{
}

ZAXFeatObjectListPropertyBase::~ZAXFeatObjectListPropertyBase() = default;
