#include "ZAXHostUndoStep.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoContainerPrivate.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>
#include <iterator>

namespace {

Q_LOGGING_CATEGORY(logStep, "zax.host.undo")

/// Does \a operation, whatever it throws; false when it did throw.
template <typename Operation>
bool Try(const Operation& operation)
{
    try {
        operation();
        return true;
    } catch (const std::exception& exception) {
        qCWarning(logStep, "A change was taken back over an exception: %s", exception.what());
        return false;
    }
}

} // namespace

/// A feature on its way to a new parent.
struct ZAXHostUndoStep::Arrival
{
    /// Has the parent tell of it, unless a later placing, or a slot, has taken the feature further.
    void Raise() const
    {
        if (feature && !ZAXFeatObjectPrivate::Get(*feature).isAside && feature->GetParent() == parent)
            ZAXFeatObjectPrivate::Get(*feature).RaiseAdded(parent);
    }

    QPointer<ZAXFeatObject> feature;
    QPointer<ZAXFeatObject> parent;
};

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

QList<quint64> ZAXHostUndoStep::Close(const ZAXFeatContainer& container)
{
    QList<quint64> gone;
    const auto cameAndWent = [&](const Placing& placing) {
        const ZAXFeatObject* const feature = Find(container, placing.id);
        return CameInStep(placing.id) && (!feature || ZAXFeatObjectPrivate::Get(*feature).isAside);
    };
    // Places are counted among siblings: the places of others may count these in.
    if (std::ranges::all_of(placings, cameAndWent)) {
        std::ranges::transform(placings, std::back_inserter(gone), &Placing::id);
        placings.clear();
    }
    const auto isThereAndBack = [](const Placing& a, const Placing& b) {
        return a.id == b.id && a.from == b.to && a.to == b.from;
    };
    for (auto second = placings.begin(); second != placings.end();) {
        const bool cancels = second != placings.begin() && isThereAndBack(*std::prev(second), *second);
        if (cancels && !second->to.isInTree)
            gone.append(second->id);
        second = cancels ? placings.erase(std::prev(second), std::next(second)) : std::next(second);
    }
    for (State& state : states) {
        const ZAXFeatObject* const feature = Find(container, state.id);
        state.after = feature ? feature->GetCurrentState() : state.before;
    }
    states.removeIf([](const State& state) { return state.before == state.after; });
    stateIndex.clear();
    for (qsizetype i = 0; i < states.size(); ++i)
        stateIndex.insert(states.at(i).id, i);
    return gone;
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

const ZAXHostUndoStep::Placing& ZAXHostUndoStep::PlacingAt(qsizetype number, Direction direction) const
{
    return placings.at(direction == Forth ? number : placings.size() - 1 - number);
}

void ZAXHostUndoStep::Put(ZAXFeatContainer& container, const Placing& placing, Direction direction, Voice voice,
                          QList<Arrival>& arrivals)
{
    const ZAXFeatPlace& from = direction == Forth ? placing.from : placing.to;
    const ZAXFeatPlace& to = direction == Forth ? placing.to : placing.from;
    ZAXFeatObject* const feature = Find(container, placing.id);
    ZAXFeatObject* const parent = Find(container, to.parent);
    // What was destroyed meanwhile is gone, and so is the place below it.
    if (!feature || (to.parent != 0 && !parent))
        return;
    auto& d = ZAXFeatObjectPrivate::Get(*feature);
    const QPointer<ZAXFeatObject> oldParent = feature->GetParent();
    if (!to.isInTree)
        d.SetAside();
    else if (d.isAside)
        d.BringBack(parent, to.index);
    else
        d.AttachTo(parent, to.index);
    if (voice == Silently)
        return;
    if (to.isInTree && oldParent != parent)
        arrivals.append(Arrival{feature, parent});
    if (from.isInTree && oldParent != parent)
        d.RaiseRemoved(oldParent);
    if (from.isInTree && to.isInTree)
        feature->PostMove(oldParent, static_cast<int>(from.index));
}

void ZAXHostUndoStep::Apply(ZAXFeatContainer& container, Direction direction, qsizetype& placed) const
{
    QList<Arrival> arrivals;
    while (placed < placings.size()) {
        const Placing& placing = PlacingAt(placed++, direction);
        Put(container, placing, direction, Aloud, arrivals);
    }
    for (const State& state : states) {
        if (ZAXFeatObject* const feature = Find(container, state.id))
            feature->SetCurrentState(direction == Forth ? state.after : state.before);
    }
    for (const Arrival& arrival : std::as_const(arrivals))
        arrival.Raise();
}

void ZAXHostUndoStep::TakeBack(ZAXFeatContainer& container, Direction direction, qsizetype placed, Voice voice) const
{
    const Direction back = direction == Forth ? Back : Forth;
    QList<Arrival> arrivals;
    while (placed > 0) {
        const Placing& placing = PlacingAt(--placed, direction);
        Try([&] { Put(container, placing, back, voice, arrivals); });
    }
    Settle(container, back, voice);
    for (const Arrival& arrival : std::as_const(arrivals))
        Try([&] { arrival.Raise(); });
}

bool ZAXHostUndoStep::Settle(ZAXFeatContainer& container, Direction direction, Voice voice) const
{
    bool isChanged = false;
    for (const State& state : states) {
        ZAXFeatObject* const feature = Find(container, state.id);
        const QByteArray& right = direction == Forth ? state.after : state.before;
        if (!feature || feature->GetCurrentState() == right)
            continue;
        isChanged = true;
        const auto restore = [&] { feature->SetCurrentState(right); };
        if (voice == Aloud && Try(restore))
            continue;
        const QSignalBlocker blocker(feature);
        Try(restore);
    }
    return isChanged;
}

void ZAXHostUndoStep::AddStates(const ZAXHostUndoStep& other)
{
    for (const State& state : other.states) {
        stateIndex.insert(state.id, states.size());
        states.append(state);
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
