#ifndef ZAXFEATCONTAINERPRIVATE_H
#define ZAXFEATCONTAINERPRIVATE_H

// Private to the host: may change without notice.

#include "ZAXFeatContainer.h"

#include "ZAXFeatClass.h"

#include <QHash>
#include <QList>

#include <memory>

class ZAXFeatChangeObserver;
class ZAXFeatLoading;
class ZAXFeatObject;
class ZAXFeatObjectPropertyBase;

class ZAXFEATURE_EXPORT ZAXFeatContainerPrivate
{
public:
    static ZAXFeatContainerPrivate& Get(const ZAXFeatContainer& container) { return *container.d_ptr; }

    /// Destroys the features at the top and those aside, last to first, and with them all others.
    void DestroyAll();

    /// What is known about the class \a type, shared by its features.
    std::shared_ptr<ZAXFeatClass> FindClass(const QMetaObject* type);

    /// The features without a parent, in order.
    QList<ZAXFeatObject*> roots;
    /// Removed features, each with its subtree, that undo or somebody who holds a reference count keeps.
    QList<ZAXFeatObject*> removed;
    /// The properties that would point at features which could not be made, by the ids of those.
    QMultiHash<quint64, ZAXFeatObjectPropertyBase*> unavailable;
    /// Not owned; may be null.
    ZAXFeatChangeObserver* observer = nullptr;
    /// While features are loaded that nobody knows yet; null else.
    ZAXFeatLoading* loading = nullptr;
    /// How many features at the top keep lists of what is below them.
    int listing = 0;
    /// How many signals about changes are being raised, one within another.
    int signalDepth = 0;
    /// How many changes of features and steps are open. A feature that is removed meanwhile may still be at work.
    int openOperations = 0;
    /// Former states are being restored: nobody chose the values that are set now.
    bool isRestoring = false;

private:
    QHash<const QMetaObject*, std::weak_ptr<ZAXFeatClass>> m_classes;
};

/// An operation on features of a container: a step of its observer, if it has one.
class ZAXFEATURE_EXPORT ZAXFeatStep
{
public:
    /// \a container may be null.
    explicit ZAXFeatStep(ZAXFeatContainer* container);
    ~ZAXFeatStep();
    ZAXFeatStep(const ZAXFeatStep&) = delete;
    ZAXFeatStep& operator=(const ZAXFeatStep&) = delete;

private:
    ZAXFeatContainerPrivate* m_container;
    ZAXFeatChangeObserver* m_observer;
};

#endif
