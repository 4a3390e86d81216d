#ifndef ZAXFEATCHANGEOBSERVER_H
#define ZAXFEATCHANGEOBSERVER_H

// Private to the host: may change without notice.

#include <QtGlobal>

class ZAXFeatObject;
class ZAXFeatValuePropertyBase;

/// Where a feature stands: aside, out of the tree, or among the children of a feature.
struct ZAXFeatPlace
{
    bool isInTree = false;
    /// Id of the parent; 0 at the top of the tree.
    quint64 parent = 0;
    qsizetype index = -1;

    friend bool operator==(const ZAXFeatPlace&, const ZAXFeatPlace&) = default;
};

/// Follows the changes of a container's features; set as ZAXFeatContainerPrivate::observer.
class ZAXFeatChangeObserver
{
public:
    virtual ~ZAXFeatChangeObserver() = default;

    /// What happens until the matching EndStep() belongs together. Steps may nest.
    virtual void BeginStep() = 0;
    virtual void EndStep() = 0;

    /// The state of \a feature is about to change: called within a step, for the outermost of nested changes. When
    /// \a only is not null, nothing but its value is; it has a ZAXFeatValueAccess. Should more change nevertheless,
    /// this is called again, with null.
    virtual void AboutToChange(ZAXFeatObject* feature, ZAXFeatValuePropertyBase* only) = 0;
    /// \a feature came, went or moved: called within a step, when it is done.
    virtual void Placed(ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to) = 0;
    /// \a feature is being destroyed without having been removed; only its id may still be asked.
    virtual void Destroyed(ZAXFeatObject* feature) = 0;
    /// Whether removed features are kept aside, to come back, instead of being deleted.
    virtual bool KeepsRemoved() const = 0;
};

#endif
