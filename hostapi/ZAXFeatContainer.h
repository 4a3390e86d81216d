#ifndef ZAXFEATCONTAINER_H
#define ZAXFEATCONTAINER_H

#include "ZAXFeatExport.h"
#include "ZAXGeoContainer.h"

#include <QByteArray>

class ZAXFeatContainerPrivate;
class ZAXFeatObject;

/// The document as a tree of features, which it owns.
class ZAXFEATURE_EXPORT ZAXFeatContainer : public ZAXGeoContainer
{
    Q_OBJECT

public:
    explicit ZAXFeatContainer(QObject* parent = nullptr);
    /// Destroys all features, without announcing it.
    ~ZAXFeatContainer() override;

    /// Creates a feature of the registered class named \a className as the last child of \a parent, or at the top for
    /// a null parent, through its invokable constructor (ZAXFeatObject*), at the top also (ZAXFeatContainer*). Runs
    /// Initialize(), then the parent raises ChildAdded().
    /// Returns null, with the reason logged, for an unknown class or one without such a constructor, for a parent that
    /// was removed, and for what the parent's IsChildAllowed() refuses; also when a slot of ChildAdded() has removed
    /// the feature at once. An exception of the class's constructor or Initialize() passes through and leaves nothing
    /// behind; one of a slot passes through and leaves the feature in its place.
    ZAXFeatObject* CreateInstance(const QByteArray& className, ZAXFeatObject* parent);

    /// The features without a parent, in order.
    QList<ZAXFeatObject*> GetRoots() const;

private:
    friend class ZAXFeatContainerPrivate;
    std::unique_ptr<ZAXFeatContainerPrivate> d_ptr;
};

#endif
