#include "ZAXFeatObjectPrivate.h"

#include "ZAXFeatChildLists.h"
#include "ZAXFeatClass.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObjectListPropertyBase.h"
#include "ZAXFeatObjectPropertyBase.h"
#include "ZAXFeatPropertyBasePrivate.h"
#include "ZAXFeatRoot.h"
#include "ZAXFeatSignalScope.h"
#include "ZAXFeatValuePropertyBase.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoGeometryPrivate.h"
#include "ZAXSysException.h"

#include <QLoggingCategory>
#include <QMetaClassInfo>
#include <QPointer>
#include <QScopeGuard>
#include <QSet>
#include <QSignalBlocker>

#include <algorithm>
#include <optional>

namespace {

Q_LOGGING_CATEGORY(logObject, "zax.feature")

/// The nearest feature from \a feature upwards that is no plain folder; null for the top.
const ZAXFeatObject* LookThroughFolders(const ZAXFeatObject* feature)
{
    while (feature && ZAXFeatObjectPrivate::IsPlainFolder(feature->metaObject()))
        feature = feature->GetParent();
    return feature;
}

} // namespace

ZAXFeatObjectPrivate::ZAXFeatObjectPrivate(ZAXFeatObject* q, ZAXFeatContainer* container) : q(q), container(container)
{
}

ZAXFeatObjectPrivate::~ZAXFeatObjectPrivate() = default;

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
    return container ? ZAXFeatContainerPrivate::Get(*container).observer : nullptr;
}

QList<ZAXFeatObject*>* ZAXFeatObjectPrivate::Siblings() const
{
    if (parent)
        return &Get(*parent).children;
    if (!container)
        return nullptr;
    auto& top = ZAXFeatContainerPrivate::Get(*container);
    return isAside ? &top.removed : &top.roots;
}

void ZAXFeatObjectPrivate::AttachTo(ZAXFeatObject* newParent, qsizetype index)
{
    Detach();
    Insert(newParent, index);
}

void ZAXFeatObjectPrivate::Insert(ZAXFeatObject* newParent, qsizetype index)
{
    if (newParent)
        ForgetLists();
    parent = newParent;
    if (auto* const siblings = Siblings())
        siblings->insert(index < 0 || index > siblings->size() ? siblings->size() : index, q);
    Enlist();
}

void ZAXFeatObjectPrivate::Detach()
{
    if (ListingTop())
        Unlist(Subtree());
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
    const auto done = qScopeGuard([this] { isLeaving = false; });
    ReleasePointers();
    CleanupSubtree();
}

void ZAXFeatObjectPrivate::CleanupSubtree()
{
    QList<ZAXFeatObject*> cleaned;
    auto setUpAgain = qScopeGuard([&] {
        for (ZAXFeatObject* feature : std::as_const(cleaned)) {
            try {
                feature->InitializeNonStreamed();
            } catch (const std::exception& exception) {
                qCWarning(logObject, "A feature that stays was not set up again: %s", exception.what());
            }
        }
    });
    const auto subtree = Subtree();
    for (ZAXFeatObject* feature : subtree) {
        // One that another one has removed has taken leave already.
        if (Get(*feature).isAside)
            continue;
        feature->Cleanup();
        cleaned.append(feature);
    }
    setUpAgain.dismiss();
}

void ZAXFeatObjectPrivate::SetUpSubtree()
{
    const auto subtree = Subtree();
    for (ZAXFeatObject* feature : subtree)
        feature->InitializeNonStreamed();
}

bool ZAXFeatObjectPrivate::IsInUse() const
{
    if (container && ZAXFeatContainerPrivate::Get(*container).signalDepth > 0)
        return true;
    return std::ranges::any_of(Subtree(), [](const ZAXFeatObject* feature) {
        const auto& d = Get(*feature);
        return d.openChanges > 0 || d.closings > 0 || d.isLeaving;
    });
}

bool ZAXFeatObjectPrivate::IsAllowedUnder(const ZAXFeatObject* newParent) const
{
    if (!isPlaceholder)
        return newParent->IsChildAllowed(q->metaObject());
    const ZAXFeatObject* const present = LookThroughFolders(parent);
    const ZAXFeatObject* const target = LookThroughFolders(newParent);
    if (present == target)
        return true;
    // One placeholder does not tell what another one would allow.
    return present && target && !Get(*target).isPlaceholder && present->metaObject() == target->metaObject();
}

ZAXFeatPlace ZAXFeatObjectPrivate::Place() const
{
    const auto* const siblings = Siblings();
    if (isAside || !siblings)
        return {};
    // Most often it is the last one: features come in this order.
    return {true, parent ? parent->GetId() : 0, siblings->lastIndexOf(q)};
}

void ZAXFeatObjectPrivate::TellOfDeparture()
{
    if (!toldParent || toldParent == parent)
        return;
    const ZAXFeatSignalScope scope(q);
    emit std::exchange(toldParent, nullptr)->ChildRemoved(q);
}

void ZAXFeatObjectPrivate::TellOfArrival()
{
    if (!isAnnounced || isAside || !parent || toldParent == parent)
        return;
    toldParent = parent;
    const ZAXFeatSignalScope scope(q);
    emit parent->ChildAdded(q);
}

void ZAXFeatObjectPrivate::Announce()
{
    if (!isAnnounced)
        Announce({q});
}

void ZAXFeatObjectPrivate::Announce(const QList<ZAXFeatObject*>& features)
{
    if (features.isEmpty())
        return;
    const ZAXFeatStep step(Get(*features.constFirst()).container);
    QList<QPointer<ZAXFeatObject>> arrivals;
    for (ZAXFeatObject* feature : features) {
        auto& d = Get(*feature);
        d.isAnnounced = true;
        if (auto* const observer = d.Observer())
            observer->Placed(feature, {}, d.Place());
        arrivals.append(feature);
    }
    for (const auto& feature : std::as_const(arrivals)) {
        // A slot may have done away with it.
        if (feature)
            Get(*feature).TellOfArrival();
    }
}

void ZAXFeatObjectPrivate::SetAside()
{
    Detach();
    const auto subtree = Subtree();
    for (ZAXFeatObject* feature : subtree) {
        Get(*feature).isAside = true;
        if (!container)
            continue;
        auto& index = ZAXGeoContainerPrivate::Get(*container);
        index.Remove(feature->GetId(), feature);
        index.aside.insert(feature->GetId(), feature);
    }
    Insert(nullptr, -1);
}

void ZAXFeatObjectPrivate::BringBack(ZAXFeatObject* newParent, qsizetype index)
{
    auto& geometries = ZAXGeoContainerPrivate::Get(*container);
    Detach();
    if (newParent && Get(*newParent).isAside)
        return Insert(newParent, index);
    const auto subtree = Subtree();
    for (ZAXFeatObject* feature : subtree) {
        Get(*feature).isAside = false;
        geometries.aside.remove(feature->GetId());
        geometries.Insert(feature->GetId(), feature);
    }
    Insert(newParent, index);
}

void ZAXFeatObjectPrivate::Discard()
{
    // Deepest first: what somebody still holds must not go down with its parent.
    const auto subtree = Subtree();
    std::for_each(subtree.crbegin(), subtree.crend(), [](ZAXFeatObject* feature) {
        Get(*feature).AttachTo(nullptr, -1);
        ZAXGeoGeometryPrivate::Discard(feature);
    });
}

bool ZAXFeatObjectPrivate::IsContainerAtWork() const
{
    if (!container)
        return false;
    const auto& d = ZAXFeatContainerPrivate::Get(*container);
    return d.openOperations > 0 || d.signalDepth > 0;
}

void ZAXFeatObjectPrivate::DiscardLater()
{
    QMetaObject::invokeMethod(
        q,
        [this] {
            if (isAside)
                Discard();
        },
        Qt::QueuedConnection);
}

void ZAXFeatObjectPrivate::BeginModify(ZAXFeatValuePropertyBase* only)
{
    auto* const observer = Observer();
    if (openChanges == 0) {
        if (observer) {
            observer->BeginStep();
            auto unopened = qScopeGuard([observer] { observer->EndStep(); });
            observer->AboutToChange(q, only);
            unopened.dismiss();
        }
        if (container)
            ++ZAXFeatContainerPrivate::Get(*container).openOperations;
        changing = only;
    } else if (changing && changing != only) {
        // More changes than was announced.
        if (observer)
            observer->AboutToChange(q, nullptr);
        changing = nullptr;
    }
    ++openChanges;
}

void ZAXFeatObjectPrivate::EndModify()
{
    if (openChanges == 0)
        throw ZAXSysException(QLatin1String("A change was closed that was never opened."));
    if (--openChanges > 0)
        return;
    ++closings;
    if (auto* const observer = Observer())
        observer->EndStep();
    --closings;
    if (container)
        --ZAXFeatContainerPrivate::Get(*container).openOperations;
}

const std::shared_ptr<ZAXFeatClass>& ZAXFeatObjectPrivate::Class()
{
    // Another one than before while the feature is being made or destroyed.
    const QMetaObject* const type = q->metaObject();
    if (!m_class || m_class->GetType() != type)
        m_class =
            container ? ZAXFeatContainerPrivate::Get(*container).FindClass(type) : std::make_shared<ZAXFeatClass>(type);
    return m_class;
}

ZAXFeatValuePropertyBase* ZAXFeatObjectPrivate::FindValueProperty(int index) const
{
    auto* property = valueProperties;
    while (property && ZAXFeatPropertyBasePrivate::Index(*property) != index)
        property = ZAXFeatPropertyBasePrivate::Next(*property);
    return property;
}

QList<ZAXFeatObject*> ZAXFeatObjectPrivate::Subtree() const
{
    QList<ZAXFeatObject*> features{q};
    AppendAllChildren(features);
    return features;
}

void ZAXFeatObjectPrivate::AppendAllChildren(QList<ZAXFeatObject*>& features) const
{
    for (ZAXFeatObject* const child : children) {
        features.append(child);
        Get(*child).AppendAllChildren(features);
    }
}

QList<ZAXFeatObject*> ZAXFeatObjectPrivate::AllChildren(const QMetaObject* type)
{
    if (parent || !container)
        return ZAXFeatChildLists(q).Find(type);
    if (!childLists) {
        childLists = std::make_unique<ZAXFeatChildLists>(q);
        ++ZAXFeatContainerPrivate::Get(*container).listing;
    }
    return childLists->Find(type);
}

ZAXFeatObjectPrivate* ZAXFeatObjectPrivate::ListingTop() const
{
    if (!parent || !container || ZAXFeatContainerPrivate::Get(*container).listing == 0)
        return nullptr;
    const ZAXFeatObject* top = parent;
    while (top->GetParent())
        top = top->GetParent();
    auto& d = Get(*top);
    return d.childLists ? &d : nullptr;
}

void ZAXFeatObjectPrivate::Enlist()
{
    if (auto* const top = ListingTop(); top && !top->childLists->Place(q))
        top->ForgetLists();
}

void ZAXFeatObjectPrivate::Unlist(const QList<ZAXFeatObject*>& features)
{
    if (auto* const top = ListingTop(); top && !top->childLists->Remove(features))
        top->ForgetLists();
}

void ZAXFeatObjectPrivate::ForgetLists()
{
    if (std::exchange(childLists, nullptr))
        --ZAXFeatContainerPrivate::Get(*container).listing;
}

ZAXFeatObjectPropertyBase* ZAXFeatObjectPrivate::FindPointer(const QSet<const ZAXFeatObject*>& features) const
{
    const auto isOutside = [&](const ZAXFeatObjectPropertyBase* property) {
        return !features.contains(property->GetFeature());
    };
    const auto found = std::ranges::find_if(pointers, isOutside);
    if (found != pointers.end())
        return *found;
    if (!isPlaceholder || !container)
        return nullptr;
    const auto missing = ZAXFeatContainerPrivate::Get(*container).unavailable.values(q->GetId());
    const auto keeping = std::ranges::find_if(missing, isOutside);
    return keeping != missing.end() ? *keeping : nullptr;
}

void ZAXFeatObjectPrivate::ReleasePointers()
{
    const auto subtree = Subtree();
    const QSet<const ZAXFeatObject*> inside(subtree.cbegin(), subtree.cend());
    for (const ZAXFeatObject* feature : subtree) {
        // What a property's signal sets off may change the pointers: look for the next one each time. Slots that point
        // at the feature again and again are not heard any more in the end.
        constexpr int loudRounds = 1000;
        for (int round = 0; ZAXFeatObjectPropertyBase* const property = Get(*feature).FindPointer(inside); ++round) {
            std::optional<QSignalBlocker> blocker;
            if (round >= loudRounds)
                blocker.emplace(property->GetFeature());
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
