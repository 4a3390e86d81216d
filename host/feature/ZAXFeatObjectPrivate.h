#ifndef ZAXFEATOBJECTPRIVATE_H
#define ZAXFEATOBJECTPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXFeatObject.h"

class ZAXFeatChangeObserver;
class ZAXFeatObjectPropertyBase;
class ZAXFeatValuePropertyBase;

class ZAXFEATURE_EXPORT ZAXFeatObjectPrivate
{
public:
    ZAXFeatObjectPrivate(ZAXFeatObject* q, ZAXFeatContainer* container) : q(q), container(container) {}

    static ZAXFeatObjectPrivate& Get(const ZAXFeatObject& feature) { return *feature.d_ptr; }

    /// A folder that is not a root.
    static bool IsPlainFolder(const QMetaObject* type);
    /// Whether the class lets a feature of it have no parent.
    static bool MayStandAtTop(const QMetaObject* type);

    /// Gives the feature its place: at \a index among the children of \a newParent, or among the features at the top
    /// for null; an index outside the range means the end. Tells nobody.
    void AttachTo(ZAXFeatObject* newParent, qsizetype index);
    /// Takes the feature out of the tree. Tells nobody.
    void Detach();
    /// The index among the children of the parent, or among the features at the top; -1 for a feature that is neither.
    int PlaceAmongSiblings() const;
    /// Has the subtree take leave of what is outside it, before it is removed. An exception leaves it in its place.
    void TakeLeave();
    /// Takes the feature out of the tree and puts it among the removed ones. Tells nobody.
    void Withdraw();
    /// Withdraws the whole subtree and deletes what nobody holds a reference count on.
    void Discard();
    /// Has the parent raise ChildAdded(), once in the feature's life.
    void Announce();

    /// Opens a change of the feature's state; changes may nest.
    void BeginModify();
    /// Closes the change that BeginModify() opened.
    void EndModify();

    /// The feature itself and all below it.
    QList<ZAXFeatObject*> Subtree() const;
    /// Clears every property outside the subtree that points into it, with notification.
    void ReleasePointers();

    ZAXFeatObject* const q;
    ZAXFeatContainer* const container;
    ZAXFeatObject* parent = nullptr;
    QList<ZAXFeatObject*> children;

    QString label;
    bool isVisible = true;
    QList<ZAXFeatObject::PropertyMessage> messages;

    /// Properties to initialise from last-saved values.
    QList<ZAXFeatValuePropertyBase*> initializations;
    /// Properties, of any feature, that point at this one.
    QList<ZAXFeatObjectPropertyBase*> pointers;

    int openChanges = 0;
    bool isInitialized = false;
    bool isAnnounced = false;
    bool isAnnouncementDeferred = false;
    /// Remove() is under way or done.
    bool isLeaving = false;
    /// The feature has left the tree.
    bool isRemoved = false;

private:
    /// Who follows the feature's changes; null until the feature is announced.
    ZAXFeatChangeObserver* Observer() const;
    QList<ZAXFeatObject*>* Siblings() const;
};

#endif
