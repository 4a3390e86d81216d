#include "ZAXFeatValuePropertyBase.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"

#include <QMetaProperty>

ZAXFeatValuePropertyBase::ZAXFeatValuePropertyBase(ZAXFeatObject* feature, int propertyIndex)
    : ZAXFeatPropertyBase(feature, propertyIndex)
{
}

ZAXFeatValuePropertyBase::~ZAXFeatValuePropertyBase()
{
    ZAXFeatObjectPrivate::Get(*GetFeature()).initializations.removeOne(this);
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
