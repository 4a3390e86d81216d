#ifndef ZAXFEATOBJECT_H
#define ZAXFEATOBJECT_H

#include "ZAXFeatExport.h"
#include "ZAXGeoGeometry.h"

#include <QList>
#include <QString>

#include <memory>

class ZAXFeatContainer;
class ZAXFeatObjectPrivate;

/// A feature: a geometry with a place in the tree of a document, a label, properties and messages about them.
///
/// A class describes itself by class information: "defaultLabel", "inputProps" and "outputProps" (names separated by
/// spaces), "allowedParents" (class names, likewise; without the entry any parent will do, with an empty one none),
/// "version" (of its stream layout) and "PropertyLabel_<name>".
///
/// A feature is a child of its parent from construction on, and announced once: at the end of the host's work when it
/// comes from ZAXFeatContainer::CreateInstance(), else at Initialize(). Parents own their children.
class ZAXFEATURE_EXPORT ZAXFeatObject : public ZAXGeoGeometry
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Feature")
    Q_CLASSINFO("version", "1")

public:
    enum MessageStatus
    {
        NoMessage = 0,
        Information = 1,
        Warning = 2,
        Error = 3, ///< the value is invalid
    };
    Q_ENUM(MessageStatus)

    enum MoveAction
    {
        NoMove = 0,
        MoveWithinParent = 1,
        MoveToOtherParent = 2,
    };
    Q_DECLARE_FLAGS(MoveActions, MoveAction)
    Q_FLAG(MoveActions)

    struct PropertyMessage
    {
        QByteArray property;
        MessageStatus status = NoMessage;
        QString text;

        friend bool operator==(const PropertyMessage&, const PropertyMessage&) = default;
    };

    /// A new feature in \a container, the last child of \a parent; without a parent it stands at the top.
    /// \throws ZAXSysException when \a parent lives in another container.
    ZAXFeatObject(ZAXFeatContainer* container, ZAXFeatObject* parent);
    /// A feature re-created from a stream. The host gives it its place in the tree.
    ZAXFeatObject(const ZAXGeoGeometryRef& reference, ZAXGeoContainer* container);
    /// Destroys the children too. Announces nothing, since listeners could no longer tell what goes: see Remove().
    /// Properties that point at the feature point at nothing from now on, items of lists included.
    ~ZAXFeatObject() override;

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    /// Takes the last-saved values over where properties ask for it and announces the feature by its parent's
    /// ChildAdded(). Called a second time, or on a feature that was re-created, it does nothing.
    void Initialize() override;

    /// Whether a feature of class \a childType may become a child. The base allows every feature class.
    virtual bool IsChildAllowed(const QMetaObject* childType) const;
    /// Whether the user may delete the feature. The base says yes.
    virtual bool IsUserDeletable() const;
    /// Validates the feature: clears the property messages of the last time, sets new ones, and returns false when
    /// the feature is invalid. The base finds every feature valid.
    virtual bool UpdateResult();
    /// Called on a copy once the whole duplicated subtree is loaded and in its place, before it is announced.
    /// \a source is what this feature is a copy of, \a duplicated the feature whose duplication was asked for.
    virtual void PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated);

    /// GetLabelPrefix(), the label, GetLabelSuffix(). A feature that was never given a label has the translated
    /// "defaultLabel" of its class.
    virtual QString GetLabel() const;
    virtual QString GetLabelPrefix() const;
    virtual QString GetLabelSuffix() const;
    /// What the user may do with the feature's place in the tree. The base allows all moves, for a root none.
    virtual MoveActions GetAllowedMoveActions() const;
    virtual bool CanUserDuplicate() const;
    virtual void SetVisibility(bool visible);
    /// Takes the feature out of the document: clears every property outside that points into its subtree, calls
    /// Cleanup() throughout the subtree, takes the feature out of the tree, has the parent raise ChildRemoved() while
    /// the feature is still whole, and deletes it and all below it, or leaves that to the last
    /// ZAXGeoGeometry::RemoveReference() of each. A second call does nothing. Called from within a change or a signal
    /// of a feature of the document, it leaves the deletion to the event loop.
    /// An exception from a slot passes through: up to Cleanup() it leaves the feature where it is, from ChildRemoved()
    /// on the feature is gone.
    virtual void Remove();
    /// Called after a move. \a oldParent and \a oldIndex say where the feature came from; \a oldParent is null when it
    /// stood at the top of the tree.
    virtual void PostMove(ZAXFeatObject* oldParent, int oldIndex);

    /// Sets the label; an empty one brings the default label back.
    void SetLabel(const QString& label);
    /// True at first.
    bool IsVisible() const;

    /// The feature's parent; null at the top of the tree, and after Remove().
    ZAXFeatObject* GetParent() const;
    /// The direct children, in order.
    QList<ZAXFeatObject*> GetChildren() const;
    /// All features below this one, depth first, in child order. One that is being destroyed need no longer be there.
    QList<ZAXFeatObject*> GetAllChildren() const;
    /// Those of GetAllChildren() that are of the class \a type or derived from it, in the same order. A feature at the
    /// top keeps both lists up to date, so that asking for them again costs little.
    QList<ZAXFeatObject*> GetAllChildrenOfType(const QMetaObject* type) const;
    /// The features outside this one's subtree that point into it through a ZAXFeatObjectProperty, and those that
    /// depend on them in turn; each once. A parent that lists its own children does not depend on them.
    QList<ZAXFeatObject*> GetAllDependents() const;
    /// Makes the feature the child of \a parent at \a index, counted without the feature itself; an index outside
    /// the range means the end. False, and nothing happens, when \a parent does not allow it, is null, lives in
    /// another container or in this feature's own subtree. Parents raise ChildRemoved() and ChildAdded() when they
    /// change; PostMove() follows.
    bool MoveTo(ZAXFeatObject* parent, int index);

    /// Attaches a message to a property for the user. The same message again changes nothing.
    void SetPropertyMessage(const QByteArray& property, MessageStatus status, const QString& text);
    /// The messages of all properties, in the order in which they were set.
    QList<PropertyMessage> GetPropertyMessages() const;
    /// The messages of \a property, in the order in which they were set.
    QList<PropertyMessage> GetPropertyMessages(const QByteArray& property) const;

    /// True when \a childType may be a child of \a parentType: the class or one of its bases is named in
    /// \a allowedChildClassNames, and its "allowedParents" admits \a parentType or one of its bases. A plain folder
    /// is a child that everyone allows; what a folder allows is asked of its own parent.
    static bool IsValidParent(const QMetaObject* parentType, const QMetaObject* childType,
                              const QList<QByteArray>& allowedChildClassNames);

    bool event(QEvent* event) override;

Q_SIGNALS:
    void ChildAdded(ZAXFeatObject* child);
    void ChildRemoved(ZAXFeatObject* child);
    void LabelChanged(const QString& label);
    void VisibilityChanged(bool visible);

private:
    friend class ZAXFeatObjectPrivate;
    std::unique_ptr<ZAXFeatObjectPrivate> d_ptr;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(ZAXFeatObject::MoveActions)

#endif
