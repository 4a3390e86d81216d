#include "ZAXFeatValuePropertyBase.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXFeatPropertyBasePrivate.h"

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
    auto& d = ZAXFeatPropertyBasePrivate::Get(*this);
    d.access = access;
    d.nextValue = std::exchange(ZAXFeatObjectPrivate::Get(*feature).valueProperties, this);
}

ZAXFeatValuePropertyBase::~ZAXFeatValuePropertyBase()
{
    auto& feature = ZAXFeatObjectPrivate::Get(*GetFeature());
    feature.initializations.removeOne(this);
    auto& d = ZAXFeatPropertyBasePrivate::Get(*this);
    if (!d.access)
        return;
    // Most often it is the first one: properties go in the opposite order in which they came.
    auto** link = &feature.valueProperties;
    while (*link != this)
        link = &ZAXFeatPropertyBasePrivate::Get(**link).nextValue;
    *link = d.nextValue;
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
    const bool hasAccess = ZAXFeatPropertyBasePrivate::Get(*this).access;
    ZAXFeatObjectPrivate::Get(*GetFeature()).BeginModify(hasAccess ? this : nullptr);
}

void ZAXFeatValuePropertyBase::RequestInitialization()
{
    auto& requests = ZAXFeatObjectPrivate::Get(*GetFeature()).initializations;
    if (!requests.contains(this))
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
    const QMetaObject* const type = GetFeature()->metaObject();
    ZAXFeatLastSavedStore::GetCurrent().SetValue(type->className(), type->property(GetPropertyIndex()).name(), value);
}
