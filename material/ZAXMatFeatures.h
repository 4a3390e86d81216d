#ifndef ZAXMATFEATURES_H
#define ZAXMATFEATURES_H

// Private: what the feature classes of this library share.

#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXSysException.h"

#include <QList>
#include <QString>

namespace ZAXMatFeatures {

/// Whether a length or a cost counts as more than nothing. Only what is below 0.001 does not.
inline bool IsSubstantial(double value)
{
    return !(value < 0.001);
}

/// The container for a new child of \a parent.
/// \throws ZAXSysException with \a refusal when \a parent is null.
inline ZAXFeatContainer* ContainerFor(const ZAXFeatObject* parent, QLatin1String refusal)
{
    if (!parent)
        throw ZAXSysException(refusal);
    return qobject_cast<ZAXFeatContainer*>(parent->GetContainer());
}

/// Those of \a features that are of class T, in the same order.
template <typename T>
QList<T*> Only(const QList<ZAXFeatObject*>& features)
{
    QList<T*> found;
    for (ZAXFeatObject* feature : features) {
        if (T* const object = qobject_cast<T*>(feature))
            found.append(object);
    }
    return found;
}

/// Sets the error \a text on \a property of \a feature unless the property is \a valid, which is returned.
inline bool Require(ZAXFeatObject* feature, bool valid, const char* property, const QString& text)
{
    if (!valid)
        feature->SetPropertyMessage(property, ZAXFeatObject::Error, text);
    return valid;
}

} // namespace ZAXMatFeatures

#endif
