#ifndef ZAXFEATVALUEPROPERTYBASE_H
#define ZAXFEATVALUEPROPERTYBASE_H

#include "ZAXFeatPropertyBase.h"

#include <QVariant>

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
    /// restores values: nobody chose those anew.
    void SetLastSavedValue(const QVariant& value);

protected:
    /// A property of \a feature bound to the meta-object property \a propertyIndex. An unbound one has no name, and
    /// so remembers nothing.
    ZAXFeatValuePropertyBase(ZAXFeatObject* feature, int propertyIndex);
};

#endif
