#ifndef ZAXFEATOBJECTLISTPROPERTYITEM_H
#define ZAXFEATOBJECTLISTPROPERTYITEM_H

#include "ZAXFeatObjectListPropertyBase.h"
#include "ZAXFeatObjectProperty.h"

/// A pointer to a feature that stands in a list.
template <typename T>
class ZAXFeatObjectListPropertyItem : public ZAXFeatObjectProperty<T>
{
public:
    /// An item of \a list that points at nothing yet.
    explicit ZAXFeatObjectListPropertyItem(ZAXFeatObjectListPropertyBase* list)
        : ZAXFeatObjectProperty<T>(list->GetFeature(), list->IsInputProperty()), m_list(list)
    {
    }

    ZAXFeatObjectListPropertyBase* GetOwningList() const override { return m_list; }

private:
    ZAXFeatObjectListPropertyBase* m_list;
};

#endif
