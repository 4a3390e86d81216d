#ifndef ZAXFEATOBJECTPROPERTYBASE_H
#define ZAXFEATOBJECTPROPERTYBASE_H

#include "ZAXFeatPropertyBase.h"
#include "ZAXGeoGeometryRef.h"

class ZAXFeatObjectListPropertyBase;

/// A property that points at one feature, or at nothing. Its feature then depends on the one pointed at; only a list
/// of a feature's own children makes no dependency. When the feature pointed at is removed, the property points at
/// nothing, and a list item leaves its list.
class ZAXFEATURE_EXPORT ZAXFeatObjectPropertyBase : public ZAXFeatPropertyBase
{
public:
    ~ZAXFeatObjectPropertyBase() override;

    /// The list that this property is an item of; null for a property that stands alone.
    virtual ZAXFeatObjectListPropertyBase* GetOwningList() const;

    /// Points the property at \a object, which may be null; to be called within an open change.
    /// \throws ZAXSysException for an object of another container, unless CanExternalReference() admits it.
    virtual void SetPointedObject(ZAXFeatObject* object);
    /// Whether the property may point at \a object although that lives in another container. The base says no.
    virtual bool CanExternalReference(ZAXFeatObject* object);

    ZAXFeatObject* GetPointedObject() const;

    /// The reference to store: to the feature pointed at, or else to the one that could not be brought along at the
    /// last load; invalid for none.
    ZAXGeoGeometryRef GetReference() const;
    /// Keeps the reference to a feature that could not be brought along, until the property is pointed elsewhere.
    void SetUnavailableReference(const ZAXGeoGeometryRef& reference);

protected:
    ZAXFeatObjectPropertyBase(ZAXFeatObject* feature, bool isInput);

private:
    friend class ZAXFeatPropertyBasePrivate;
    ZAXFeatObject* m_pointed = nullptr;
    /// What the property would point at, were it there.
    ZAXGeoGeometryRef m_unavailable;
};

#endif
