#ifndef ZAXFEATVALUEPROPERTYBASE_H
#define ZAXFEATVALUEPROPERTYBASE_H

#include "ZAXFeatKeptValue.h"
#include "ZAXFeatPropertyBase.h"

#include <QVariant>

class ZAXFeatValuePropertyBase;

/// How the host takes the value of a property of one type, and puts it back, past all changes and signals.
struct ZAXFeatValueAccess
{
    ZAXFeatKeptValue (*keep)(const ZAXFeatValuePropertyBase& property);
    void (*restore)(ZAXFeatValuePropertyBase& property, const ZAXFeatKeptValue& value);
};

/// A property that holds a value, and that may remember the value the user last gave it.
class ZAXFEATURE_EXPORT ZAXFeatValuePropertyBase : public ZAXFeatPropertyBase
{
public:
    ~ZAXFeatValuePropertyBase() override;

    /// Takes the value over from GetLastSavedValue(); called by the host as RequestInitialization() says.
    virtual void InitializeValue() = 0;

    /// Whether the value has limits. The base has none: false, every value passes, and the limits are invalid.
    virtual bool HasLimits() const;
    virtual bool TestLimits(const QVariant& value) const;
    virtual QVariant GetMinLimit() const;
    virtual bool GetMinLimitInclusion() const;
    virtual QVariant GetMaxLimit() const;
    virtual bool GetMaxLimitInclusion() const;

    /// Asks the host to call InitializeValue() when the feature is initialised, which only a new feature is.
    void RequestInitialization();

    /// The value that the user last saved for this property of features of this class; invalid if there is none.
    QVariant GetLastSavedValue() const;
    /// Remembers \a value for the next new feature of this class. Does nothing while undo, redo or a roll-back
    /// restores values: nobody chose those anew. While a document is loaded, the store gets the last of several values
    /// only, at the end or when it is asked for.
    void SetLastSavedValue(const QVariant& value);

    /// BeginModify() for a change of nothing but the value: undo keeps that alone then, not all of the feature. The
    /// same as BeginModify() for a property that is not bound, or whose value the host has no access to.
    void BeginValueModify();

protected:
    /// A property of \a feature bound to the meta-object property \a propertyIndex. An unbound one has no name, and
    /// so remembers nothing.
    ZAXFeatValuePropertyBase(ZAXFeatObject* feature, int propertyIndex);
    /// The same, with \a access to the value, which must outlive the property.
    ZAXFeatValuePropertyBase(ZAXFeatObject* feature, int propertyIndex, const ZAXFeatValueAccess* access);

private:
    friend class ZAXFeatPropertyBasePrivate;
    /// Null without a binding.
    const ZAXFeatValueAccess* m_access = nullptr;
    /// The next one of the feature's properties that have an access.
    ZAXFeatValuePropertyBase* m_next = nullptr;
};

#endif
