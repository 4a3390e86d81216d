#ifndef ZAXFEATOBJECTPRIVATE_H
#define ZAXFEATOBJECTPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXFeatChangeObserver.h"
#include "ZAXFeatObject.h"

#include <QPointer>
#include <QSet>

#include <memory>

class ZAXFeatChildLists;
class ZAXFeatClass;
class ZAXFeatObjectPropertyBase;
class ZAXFeatValuePropertyBase;

class ZAXFEATURE_EXPORT ZAXFeatObjectPrivate
{
public:
    ZAXFeatObjectPrivate(ZAXFeatObject* q, ZAXFeatContainer* container);
    ~ZAXFeatObjectPrivate();

    static ZAXFeatObjectPrivate& Get(const ZAXFeatObject& feature) { return *feature.d_ptr; }

    /// A folder that is not a root.
    static bool IsPlainFolder(const QMetaObject* type);
    /// Whether the class lets a feature of it have no parent.
    static bool MayStandAtTop(const QMetaObject* type);

    /// Has the parent that was told of the feature raise ChildRemoved(), if it is not the feature's parent any more.
    void TellOfDeparture();
    /// Has the parent raise ChildAdded(), unless it was told already, or the feature is aside or not announced.
    void TellOfArrival();

    /// Gives the feature its place: at \a index among the children of \a newParent, or among the features at the top
    /// for null; an index outside the range means the end. Tells nobody.
    void AttachTo(ZAXFeatObject* newParent, qsizetype index);
    /// Takes the feature out of the tree. Tells nobody.
    void Detach();
    /// Whether \a parent may be the feature's parent.
    bool IsAllowedUnder(const ZAXFeatObject* parent) const;
    /// Where the feature stands now.
    ZAXFeatPlace Place() const;
    /// Has the subtree take leave of what is outside it, before it is removed. An exception leaves it in its place.
    void TakeLeave();
    /// ZAXGeoGeometry::Cleanup() throughout the subtree, parents first. An exception of one leaves all set up.
    void CleanupSubtree();
    /// ZAXGeoGeometry::InitializeNonStreamed() throughout the subtree, parents first.
    void SetUpSubtree();
    /// Has the parent raise ChildAdded(), once in the feature's life.
    void Announce();
    /// Announces \a features of one container, which were not announced before: they are all there when the first
    /// parent raises ChildAdded().
    static void Announce(const QList<ZAXFeatObject*>& features);
    /// Takes the feature with its subtree out of the tree: references no longer find it. Tells nobody.
    void SetAside();
    /// Gives the feature, with its subtree, its place in the tree back; below a parent that is aside itself it comes
    /// back with that. Tells nobody.
    void BringBack(ZAXFeatObject* newParent, qsizetype index);
    /// Deletes the feature, which is aside, with its subtree, save what somebody holds a reference count on.
    void Discard();
    /// Discard() once the event loop has control, unless the feature comes back or is destroyed before.
    void DiscardLater();

    /// Whether a change or a step is open in the document, or one is being told about.
    bool IsContainerAtWork() const;
    /// Whether a change of a feature of the subtree is under way, or any is being told about: whoever does that goes on
    /// with the feature afterwards.
    bool IsInUse() const;

    /// What is known about the class that the feature is of at present.
    const std::shared_ptr<ZAXFeatClass>& Class();

    /// Whether nobody is connected to \a signal.
    bool IsUnheard(const QMetaMethod& signal) const { return !q->isSignalConnected(signal); }

    /// Opens a change of the feature's state; changes may nest. In a change of \a only, nothing but its value changes.
    void BeginModify(ZAXFeatValuePropertyBase* only = nullptr);
    /// Closes the change that BeginModify() opened.
    void EndModify();

    /// The property bound to the meta-object property \a index, if the host has access to its value; null if not.
    ZAXFeatValuePropertyBase* FindValueProperty(int index) const;

    /// The feature itself and all below it.
    QList<ZAXFeatObject*> Subtree() const;
    /// All below the feature that are of the class \a type or derived from it. A feature at the top keeps the list up
    /// to date.
    QList<ZAXFeatObject*> AllChildren(const QMetaObject* type);
    /// Has lists that may hold the feature put right: it got its place, or is of another class than it was.
    void Enlist();
    /// Takes \a features, which are the feature or its subtree, out of all lists.
    void Unlist(const QList<ZAXFeatObject*>& features);
    void ForgetLists();
    /// Clears every property outside the subtree that points into it, or would but for a placeholder, with
    /// notification.
    void ReleasePointers();

    ZAXFeatObject* const q;
    ZAXFeatContainer* const container;
    ZAXFeatObject* parent = nullptr;
    QString label;
    bool isVisible = true;
    /// Stands for a feature that could not be made: what its parent is was settled elsewhere.
    bool isPlaceholder = false;
    /// The parent that raised ChildAdded() for the feature last, and not ChildRemoved() since.
    QPointer<ZAXFeatObject> toldParent;
    QList<ZAXFeatObject*> children;
    /// Of a feature at the top; null until somebody asks.
    std::unique_ptr<ZAXFeatChildLists> childLists;

    QList<ZAXFeatObject::PropertyMessage> messages;

    /// Properties to initialise from last-saved values.
    QList<ZAXFeatValuePropertyBase*> initializations;
    /// The first of the properties whose values the host has access to.
    ZAXFeatValuePropertyBase* valueProperties = nullptr;
    /// Properties, of any feature, that point at this one.
    QList<ZAXFeatObjectPropertyBase*> pointers;

    int openChanges = 0;
    /// The property that alone changes in the open change; null when anything may.
    ZAXFeatValuePropertyBase* changing = nullptr;
    /// How many EndModify() are at work with the feature, its last change being closed.
    int closings = 0;
    bool isInitialized = false;
    bool isAnnounced = false;
    bool isAnnouncementDeferred = false;
    bool isAside = false;
    /// Remove() is under way.
    bool isLeaving = false;

    ZAXFeatChangeObserver* Observer() const;

private:
    std::shared_ptr<ZAXFeatClass> m_class;

    void AppendAllChildren(QList<ZAXFeatObject*>& features) const;
    /// The feature at the top of the tree that keeps lists in which the feature may be; null for none.
    ZAXFeatObjectPrivate* ListingTop() const;
    QList<ZAXFeatObject*>* Siblings() const;
    /// AttachTo() for a feature that Detach() took out.
    void Insert(ZAXFeatObject* newParent, qsizetype index);
    /// A property outside \a features that points at the feature, or would if it were no placeholder; null for none.
    ZAXFeatObjectPropertyBase* FindPointer(const QSet<const ZAXFeatObject*>& features) const;
};

#endif
