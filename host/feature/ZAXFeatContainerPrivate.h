#ifndef ZAXFEATCONTAINERPRIVATE_H
#define ZAXFEATCONTAINERPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXFeatContainer.h"

#include <QList>

class ZAXFeatChangeObserver;
class ZAXFeatObject;

class ZAXFEATURE_EXPORT ZAXFeatContainerPrivate
{
public:
    static ZAXFeatContainerPrivate& Get(const ZAXFeatContainer& container) { return *container.d_ptr; }

    /// Destroys the features at the top, last to first, and with them all others.
    void DestroyAll();

    /// The features without a parent, in order.
    QList<ZAXFeatObject*> roots;
    /// Removed features that somebody still holds a reference count on.
    QList<ZAXFeatObject*> removed;
    /// Not owned; may be null.
    ZAXFeatChangeObserver* observer = nullptr;
};

#endif
