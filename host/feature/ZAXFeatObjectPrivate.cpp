#include "ZAXFeatObjectPrivate.h"

#include "ZAXFeatChangeObserver.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObjectListPropertyBase.h"
#include "ZAXFeatObjectPropertyBase.h"
#include "ZAXFeatPropertyBasePrivate.h"
#include "ZAXFeatRoot.h"
#include "ZAXGeoGeometryPrivate.h"
#include "ZAXSysException.h"

#include <QMetaClassInfo>
#include <QSet>

#include <algorithm>

bool ZAXFeatObjectPrivate::IsPlainFolder(const QMetaObject* type)
{
    return type->inherits(&ZAXFeatFolder::staticMetaObject) && !type->inherits(&ZAXFeatRoot::staticMetaObject);
}

bool ZAXFeatObjectPrivate::MayStandAtTop(const QMetaObject* type)
{
    const int index = type->indexOfClassInfo("allowedParents");
    return index < 0 || QByteArray(type->classInfo(index).value()).isEmpty();
}

ZAXFeatChangeObserver* ZAXFeatObjectPrivate::Observer() const
{
    return container && isAnnounced ? ZAXFeatContainerPrivate::Get(*container).observer : nullptr;
}

QList<ZAXFeatObject*>* ZAXFeatObjectPrivate::Siblings() const
{
    if (parent)
        return &Get(*parent).children;
    if (!container)
        return nullptr;
    auto& top = ZAXFeatContainerPrivate::Get(*container);
    return isRemoved ? &top.removed : &top.roots;
}

int ZAXFeatObjectPrivate::PlaceAmongSiblings() const
{
    const auto* const siblings = Siblings();
    return siblings ? static_cast<int>(siblings->indexOf(q)) : -1;
}

void ZAXFeatObjectPrivate::AttachTo(ZAXFeatObject* newParent, qsizetype index)
{
    Detach();
    parent = newParent;
    if (auto* const siblings = Siblings())
        siblings->insert(index < 0 || index > siblings->size() ? siblings->size() : index, q);
}

void ZAXFeatObjectPrivate::Detach()
{
    if (auto* const siblings = Siblings()) {
        // Most often it is the last one: features come and go in this order.
        const auto position = siblings->lastIndexOf(q);
        if (position >= 0)
            siblings->removeAt(position);
    }
    parent = nullptr;
}

void ZAXFeatObjectPrivate::TakeLeave()
{
    isLeaving = true;
    try {
        ReleasePointers();
        const auto subtree = Subtree();
        for (ZAXFeatObject* feature : subtree)
            feature->Cleanup();
    } catch (...) {
        isLeaving = false;
        throw;
    }
}

void ZAXFeatObjectPrivate::Withdraw()
{
    Detach();
    isLeaving = true;
    isRemoved = true;
    AttachTo(nullptr, -1);
}

void ZAXFeatObjectPrivate::Discard()
{
    // Deepest first: what somebody still holds must not go down with its parent.
    const auto leaving = Subtree();
    for (auto feature = leaving.crbegin(); feature != leaving.crend(); ++feature) {
        Get(**feature).Withdraw();
        ZAXGeoGeometryPrivate::Discard(*feature);
    }
}

void ZAXFeatObjectPrivate::Announce()
{
    if (std::exchange(isAnnounced, true))
        return;
    // The parent's list of children is what changed.
    auto& changed = parent ? Get(*parent) : *this;
    changed.BeginModify();
    changed.EndModify();
    if (parent)
        emit parent->ChildAdded(q);
}

void ZAXFeatObjectPrivate::BeginModify()
{
    if (openChanges++ == 0) {
        if (auto* const observer = Observer())
            observer->AboutToChange(q);
    }
}

void ZAXFeatObjectPrivate::EndModify()
{
    if (openChanges == 0)
        throw ZAXSysException(QLatin1String("A change was closed that was never opened."));
    if (--openChanges == 0) {
        if (auto* const observer = Observer())
            observer->Changed(q);
    }
}

QList<ZAXFeatObject*> ZAXFeatObjectPrivate::Subtree() const
{
    QList<ZAXFeatObject*> features{q};
    for (const ZAXFeatObject* child : children)
        features += Get(*child).Subtree();
    return features;
}

void ZAXFeatObjectPrivate::ReleasePointers()
{
    const auto subtree = Subtree();
    const QSet<const ZAXFeatObject*> inside(subtree.cbegin(), subtree.cend());
    for (const ZAXFeatObject* feature : subtree) {
        auto& pointed = Get(*feature).pointers;
        // What a property's signal sets off may change the list: look for the next one each time.
        const auto next = [&] {
            return std::ranges::find_if(pointed, [&](const ZAXFeatObjectPropertyBase* property) {
                return !inside.contains(property->GetFeature());
            });
        };
        for (auto found = next(); found != pointed.end(); found = next()) {
            ZAXFeatObjectPropertyBase* const property = *found;
            if (auto* const list = property->GetOwningList()) {
                list->RemoveItem(property, false);
            } else {
                ZAXFeatPropertyChange change(*property);
                property->SetPointedObject(nullptr);
                change.EndModify(false);
            }
        }
    }
}
