#include "ZAXHostUndoStep.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoContainerPrivate.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>

namespace {

/// A feature on its way to a new parent.
struct Arrival
{
    QPointer<ZAXFeatObject> feature;
    QPointer<ZAXFeatObject> parent;
};

} // namespace

ZAXFeatObject* ZAXHostUndoStep::Find(const ZAXFeatContainer& container, quint64 id)
{
    const auto& index = ZAXGeoContainerPrivate::Get(container);
    ZAXGeoGeometry* const geometry = index.geometries.value(id);
    return qobject_cast<ZAXFeatObject*>(geometry ? geometry : index.aside.value(id));
}

bool ZAXHostUndoStep::CameInStep(quint64 id) const
{
    const auto first = std::ranges::find(placings, id, &Placing::id);
    return first != placings.end() && !first->from.isInTree;
}

void ZAXHostUndoStep::AddState(const ZAXFeatObject* feature)
{
    const quint64 id = feature->GetId();
    if (HasState(id) || CameInStep(id))
        return;
    stateIndex.insert(id, states.size());
    states.append({id, feature->GetCurrentState(), {}});
}

void ZAXHostUndoStep::AddPlacing(const ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to)
{
    placings.append({feature->GetId(), from, to});
}

void ZAXHostUndoStep::Forget(quint64 id)
{
    placings.removeIf([id](const Placing& placing) { return placing.id == id; });
    if (stateIndex.remove(id) == 0)
        return;
    states.removeIf([id](const State& state) { return state.id == id; });
    for (qsizetype i = 0; i < states.size(); ++i)
        stateIndex[states.at(i).id] = i;
}

void ZAXHostUndoStep::Close(const ZAXFeatContainer& container)
{
    for (State& state : states) {
        const ZAXFeatObject* const feature = Find(container, state.id);
        state.after = feature ? feature->GetCurrentState() : state.before;
    }
    states.removeIf([](const State& state) { return state.before == state.after; });
    stateIndex.clear();
    for (qsizetype i = 0; i < states.size(); ++i)
        stateIndex.insert(states.at(i).id, i);
}

QString ZAXHostUndoStep::Describe(const ZAXFeatContainer& container) const
{
    const auto describe = [&](const char* text, quint64 id) {
        const ZAXFeatObject* const feature = Find(container, id);
        return QCoreApplication::translate("ZAXHostUndo", text).arg(feature ? feature->GetLabel() : QString());
    };
    if (placings.isEmpty())
        return describe(QT_TRANSLATE_NOOP("ZAXHostUndo", "Change %1"), states.constFirst().id);
    const Placing& placing = placings.constFirst();
    if (!placing.from.isInTree)
        return describe(QT_TRANSLATE_NOOP("ZAXHostUndo", "Create %1"), placing.id);
    if (!placing.to.isInTree)
        return describe(QT_TRANSLATE_NOOP("ZAXHostUndo", "Remove %1"), placing.id);
    return describe(QT_TRANSLATE_NOOP("ZAXHostUndo", "Move %1"), placing.id);
}

void ZAXHostUndoStep::Apply(ZAXFeatContainer& container, Direction direction) const
{
    QList<Arrival> arrivals;
    const auto place = [&](const Placing& placing) {
        ZAXFeatObject* const feature = Find(container, placing.id);
        if (!feature)
            return;
        auto& d = ZAXFeatObjectPrivate::Get(*feature);
        const ZAXFeatPlace& from = direction == Forth ? placing.from : placing.to;
        const ZAXFeatPlace& to = direction == Forth ? placing.to : placing.from;
        const QPointer<ZAXFeatObject> oldParent = feature->GetParent();
        ZAXFeatObject* const parent = Find(container, to.parent);
        if (!to.isInTree)
            d.SetAside();
        else if (from.isInTree)
            d.AttachTo(parent, to.index);
        else
            d.BringBack(parent, to.index);
        if (from.isInTree && oldParent != parent)
            d.RaiseRemoved(oldParent);
        if (to.isInTree && oldParent != parent)
            arrivals.append(Arrival{feature, parent});
        if (from.isInTree && to.isInTree)
            feature->PostMove(oldParent, static_cast<int>(from.index));
    };
    if (direction == Forth)
        std::for_each(placings.cbegin(), placings.cend(), place);
    else
        std::for_each(placings.crbegin(), placings.crend(), place);

    for (const State& state : states) {
        if (ZAXFeatObject* const feature = Find(container, state.id))
            feature->SetCurrentState(direction == Forth ? state.after : state.before);
    }
    for (const Arrival& arrival : std::as_const(arrivals)) {
        // A later placing may have taken it further.
        if (arrival.feature && arrival.feature->GetParent() == arrival.parent)
            ZAXFeatObjectPrivate::Get(*arrival.feature).RaiseAdded(arrival.parent);
    }
}

void ZAXHostUndoStep::Settle(ZAXFeatContainer& container, Direction direction) const
{
    for (const State& state : states) {
        ZAXFeatObject* const feature = Find(container, state.id);
        const QByteArray& right = direction == Forth ? state.after : state.before;
        if (feature && feature->GetCurrentState() != right)
            feature->SetCurrentState(right);
    }
}

QList<quint64> ZAXHostUndoStep::Keeps(Direction lastDirection) const
{
    QHash<quint64, bool> isInTree;
    for (const Placing& placing : placings) {
        if (lastDirection == Forth)
            isInTree.insert(placing.id, placing.to.isInTree);
        else if (!isInTree.contains(placing.id))
            isInTree.insert(placing.id, placing.from.isInTree);
    }
    isInTree.removeIf([](const auto& entry) { return entry.value(); });
    return isInTree.keys();
}
