#ifndef ZAXFEATOBJECTLISTPROPERTYBASE_H
#define ZAXFEATOBJECTLISTPROPERTYBASE_H

#include "ZAXFeatPropertyBase.h"

class ZAXFeatObjectPropertyBase;

/// A property that holds an ordered list of pointers to features.
class ZAXFEATURE_EXPORT ZAXFeatObjectListPropertyBase : public ZAXFeatPropertyBase
{
public:
    ~ZAXFeatObjectListPropertyBase() override;

    /// Takes \a item out of the list and destroys it. Also called by the host when the feature that \a item points at
    /// is removed.
    /// \throws ZAXSysException when the list does not hold \a item.
    virtual void RemoveItem(ZAXFeatObjectPropertyBase* item, bool silent) = 0;

protected:
    ZAXFeatObjectListPropertyBase(ZAXFeatObject* feature, int propertyIndex);
};

#endif
