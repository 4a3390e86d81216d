#include "ZAXFeatValuePropertyBase.h"

#include "ZAXFeatClass.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatLoading.h"
#include "ZAXFeatObjectPrivate.h"

#include <QMetaProperty>

ZAXFeatValuePropertyBase::ZAXFeatValuePropertyBase(ZAXFeatObject* feature, int propertyIndex)
    : ZAXFeatValuePropertyBase(feature, propertyIndex, nullptr)
{
}

ZAXFeatValuePropertyBase::ZAXFeatValuePropertyBase(ZAXFeatObject* feature, int propertyIndex,
                                                   const ZAXFeatValueAccess* access)
    : ZAXFeatPropertyBase(feature, propertyIndex)
{
    if (propertyIndex < 0 || !access)
        return;
    m_access = access;
    m_next = std::exchange(ZAXFeatObjectPrivate::Get(*feature).valueProperties, this);
}

ZAXFeatValuePropertyBase::~ZAXFeatValuePropertyBase()
{
    auto& feature = ZAXFeatObjectPrivate::Get(*GetFeature());
    feature.initializations.removeOne(this);
    if (!m_access)
        return;
    // Most often it is the first one: properties go in the opposite order in which they came.
    auto** link = &feature.valueProperties;
    while (*link != this)
        link = &(*link)->m_next;
    *link = m_next;
}

bool ZAXFeatValuePropertyBase::HasLimits() const
{
    return false;
}

bool ZAXFeatValuePropertyBase::TestLimits(const QVariant&) const
{
    return true;
}

QVariant ZAXFeatValuePropertyBase::GetMinLimit() const
{
    return {};
}

bool ZAXFeatValuePropertyBase::GetMinLimitInclusion() const
{
    return false;
}

QVariant ZAXFeatValuePropertyBase::GetMaxLimit() const
{
    return {};
}

bool ZAXFeatValuePropertyBase::GetMaxLimitInclusion() const
{
    return false;
}

void ZAXFeatValuePropertyBase::BeginValueModify()
{
    ZAXFeatObjectPrivate::Get(*GetFeature()).BeginModify(m_access ? this : nullptr);
}

void ZAXFeatValuePropertyBase::RequestInitialization()
{
    auto& feature = ZAXFeatObjectPrivate::Get(*GetFeature());
    auto& requests = feature.initializations;
    // One that is re-created is never initialised.
    if (!feature.isInitialized && !requests.contains(this))
        requests.append(this);
}

QVariant ZAXFeatValuePropertyBase::GetLastSavedValue() const
{
    if (GetPropertyIndex() < 0)
        return {};
    const QMetaObject* const type = GetFeature()->metaObject();
    return ZAXFeatLastSavedStore::GetCurrent().GetValue(type->className(), type->property(GetPropertyIndex()).name());
}

void ZAXFeatValuePropertyBase::SetLastSavedValue(const QVariant& value)
{
    const auto* const container = ZAXFeatObjectPrivate::Get(*GetFeature()).container;
    if (GetPropertyIndex() < 0 || (container && ZAXFeatContainerPrivate::Get(*container).isRestoring))
        return;
    // Kept, since what the store does may be the end of the feature.
    const auto type = ZAXFeatObjectPrivate::Get(*GetFeature()).Class();
    const auto* const property = type->GetProperty(GetPropertyIndex());
    if (property && !ZAXFeatLoading::KeepBack(type->GetType(), GetPropertyIndex(), value))
        ZAXFeatLastSavedStore::GetCurrent().SetValue(type->GetName(), property->name, value);
}
