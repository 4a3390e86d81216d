#include "ZAXFeatPropertyBase.h"

#include "ZAXFeatObjectPrivate.h"

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
    : m_feature(feature), m_index(propertyIndex), m_isInput(false)
{
}

ZAXFeatPropertyBase::ZAXFeatPropertyBase(ZAXFeatObject* feature, bool isInput)
    : m_feature(feature), m_index(-1), m_isInput(isInput)
{
}

ZAXFeatPropertyBase::~ZAXFeatPropertyBase() = default;

ZAXFeatObject* ZAXFeatPropertyBase::GetFeature() const
{
    return m_feature;
}

int ZAXFeatPropertyBase::GetPropertyIndex() const
{
    return m_index;
}

bool ZAXFeatPropertyBase::IsInputProperty() const
{
    // Asked of the feature's own class at each call: a derived class may name more inputs than its base.
    return m_isInput || IsNamedAsInput(m_feature->metaObject(), m_index);
}

void ZAXFeatPropertyBase::BeginModify()
{
    ZAXFeatObjectPrivate::Get(*m_feature).BeginModify();
}

void ZAXFeatPropertyBase::EndModify(bool)
{
    ZAXFeatObjectPrivate::Get(*m_feature).EndModify();
}
