#include "ZAXFeatObjectPropertyBase.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObjectListPropertyBase.h"
#include "ZAXFeatObjectPrivate.h"
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
    if (m_pointed)
        ZAXFeatObjectPrivate::Get(*m_pointed).pointers.removeOne(this);
    m_pointed = object;
    SetUnavailableReference({});
    if (m_pointed)
        ZAXFeatObjectPrivate::Get(*m_pointed).pointers.append(this);
}

bool ZAXFeatObjectPropertyBase::CanExternalReference(ZAXFeatObject*)
{
    return false;
}

ZAXFeatObject* ZAXFeatObjectPropertyBase::GetPointedObject() const
{
    return m_pointed;
}

ZAXGeoGeometryRef ZAXFeatObjectPropertyBase::GetReference() const
{
    return m_pointed ? ZAXGeoGeometryRef(m_pointed) : m_unavailable;
}

void ZAXFeatObjectPropertyBase::SetUnavailableReference(const ZAXGeoGeometryRef& reference)
{
    if (m_unavailable == reference)
        return;
    if (auto* const container = ZAXFeatObjectPrivate::Get(*GetFeature()).container) {
        auto& properties = ZAXFeatContainerPrivate::Get(*container).unavailable;
        properties.remove(m_unavailable.GetId(), this);
        if (reference.IsValid())
            properties.insert(reference.GetId(), this);
    }
    m_unavailable = reference;
}

ZAXFeatObjectListPropertyBase::ZAXFeatObjectListPropertyBase(ZAXFeatObject* feature, int propertyIndex)
    : ZAXFeatPropertyBase(feature, propertyIndex)
{
}

ZAXFeatObjectListPropertyBase::~ZAXFeatObjectListPropertyBase() = default;
