#ifndef ZAXFEATPROPERTYBASE_H
#define ZAXFEATPROPERTYBASE_H

#include "ZAXFeatExport.h"

#include <utility>

class ZAXFeatObject;

/// A property of one feature: its value is part of the feature's state, changed between BeginModify() and EndModify().
class ZAXFEATURE_EXPORT ZAXFeatPropertyBase
{
public:
    virtual ~ZAXFeatPropertyBase();
    ZAXFeatPropertyBase(const ZAXFeatPropertyBase&) = delete;
    ZAXFeatPropertyBase& operator=(const ZAXFeatPropertyBase&) = delete;

    /// Closes the change that BeginModify() opened. Typed properties then raise the notify signal of the property
    /// unless \a silent; the change is undoable either way.
    /// \throws ZAXSysException without an open change.
    virtual void EndModify(bool silent);

    /// The owning feature; never null.
    ZAXFeatObject* GetFeature() const;
    /// Index of the property in the feature's meta-object; negative when the property is not bound to one.
    int GetPropertyIndex() const;
    /// True for a property that the feature takes as input: one named in its "inputProps" class information, or one
    /// made as an input.
    bool IsInputProperty() const;

    /// Opens an undoable change of the property; must precede every change of its value. Changes may nest.
    void BeginModify();

protected:
    /// A property of \a feature bound to the meta-object property \a propertyIndex; negative for none.
    ZAXFeatPropertyBase(ZAXFeatObject* feature, int propertyIndex);
    /// A property of \a feature without a binding.
    ZAXFeatPropertyBase(ZAXFeatObject* feature, bool isInput);

private:
    friend class ZAXFeatPropertyBasePrivate;
    // In the property itself: a feature has a dozen of them, and a document ten thousands of features.
    ZAXFeatObject* m_feature;
    int m_index;
    bool m_isInput;
};

/// An open change of a property. EndModify() closes it; left open by an exception, it is closed without a signal.
class ZAXFeatPropertyChange
{
public:
    struct IsOpen
    {
    };

    explicit ZAXFeatPropertyChange(ZAXFeatPropertyBase& property) : m_property(&property) { property.BeginModify(); }
    /// Takes over a change that was opened before.
    ZAXFeatPropertyChange(ZAXFeatPropertyBase& property, IsOpen) : m_property(&property) {}
    ~ZAXFeatPropertyChange()
    {
        if (m_property)
            m_property->ZAXFeatPropertyBase::EndModify(true);
    }
    ZAXFeatPropertyChange(const ZAXFeatPropertyChange&) = delete;
    ZAXFeatPropertyChange& operator=(const ZAXFeatPropertyChange&) = delete;

    void EndModify(bool silent) { std::exchange(m_property, nullptr)->EndModify(silent); }

private:
    ZAXFeatPropertyBase* m_property;
};

#endif
