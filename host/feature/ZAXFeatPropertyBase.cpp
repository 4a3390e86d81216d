#include "ZAXFeatPropertyBase.h"

#include "ZAXFeatObjectPrivate.h"
#include "ZAXFeatPropertyBasePrivate.h"

#include <QMetaClassInfo>
#include <QMetaProperty>

namespace {

bool IsNamedAsInput(const QMetaObject* type, int propertyIndex)
{
    const int info = type->indexOfClassInfo("inputProps");
    if (info < 0 || propertyIndex < 0)
        return false;
    return QByteArray(type->classInfo(info).value()).split(' ').contains(type->property(propertyIndex).name());
}

} // namespace

ZAXFeatPropertyBase::ZAXFeatPropertyBase(ZAXFeatObject* feature, int propertyIndex)
    : d_ptr(new ZAXFeatPropertyBasePrivate{feature, propertyIndex, false})
{
}

ZAXFeatPropertyBase::ZAXFeatPropertyBase(ZAXFeatObject* feature, bool isInput)
    : d_ptr(new ZAXFeatPropertyBasePrivate{feature, -1, isInput})
{
}

ZAXFeatPropertyBase::~ZAXFeatPropertyBase() = default;

ZAXFeatObject* ZAXFeatPropertyBase::GetFeature() const
{
    return d_ptr->feature;
}

int ZAXFeatPropertyBase::GetPropertyIndex() const
{
    return d_ptr->index;
}

bool ZAXFeatPropertyBase::IsInputProperty() const
{
    // Asked of the feature's own class at each call: a derived class may name more inputs than its base.
    return d_ptr->isInput || IsNamedAsInput(d_ptr->feature->metaObject(), d_ptr->index);
}

void ZAXFeatPropertyBase::BeginModify()
{
    ZAXFeatObjectPrivate::Get(*d_ptr->feature).BeginModify();
}

void ZAXFeatPropertyBase::EndModify(bool)
{
    ZAXFeatObjectPrivate::Get(*d_ptr->feature).EndModify();
}
