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
#include <optional>

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
        qCWarning(logStep, "Undo goes on over an exception: %s", exception.what());
        return false;
    }
}

/// The state of \a feature; empty when it cannot be saved.
std::optional<QByteArray> StateOf(const ZAXFeatObject& feature)
{
    std::optional<QByteArray> state;
    Try([&] { state = feature.GetCurrentState(); });
    return state;
}

} // namespace

/// Puts features where a step says, one after the other, and has their parents tell of it: of departures at once, of
/// arrivals at the end, when the states are right.
class ZAXHostUndoStep::Placer
{
public:
    enum OnException
    {
        PassOn,
        GoOn ///< with the next thing to be done for the feature
    };

    Placer(ZAXFeatContainer& container, Direction direction, Voice voice, OnException onException)
        : m_container(container), m_direction(direction), m_voice(voice), m_onException(onException)
    {
    }

    void Put(const Placing& placing);
    /// Has the new parents tell of the features, unless a slot has taken them further.
    void RaiseArrivals() const;

private:
    struct Arrival
    {
        QPointer<ZAXFeatObject> feature;
        QPointer<ZAXFeatObject> parent;
    };

    template <typename Operation>
    void Run(const Operation& operation) const
    {
        if (m_onException == GoOn)
            Try(operation);
        else
            operation();
    }

    /// Notes that nobody was told yet of the feature's coming to \a parent.
    void AddArrival(ZAXFeatObject* feature, ZAXFeatObject* parent);
    /// Forgets the arrival of the feature \a id; false when there is none.
    bool DropArrival(quint64 id);

    ZAXFeatContainer& m_container;
    const Direction m_direction;
    const Voice m_voice;
    const OnException m_onException;
    QList<Arrival> m_arrivals;
    /// Places in m_arrivals, by the ids of the features.
    QHash<quint64, qsizetype> m_arrivalOf;
};

void ZAXHostUndoStep::Placer::AddArrival(ZAXFeatObject* feature, ZAXFeatObject* parent)
{
    m_arrivalOf.insert(feature->GetId(), m_arrivals.size());
    m_arrivals.append(Arrival{feature, parent});
}

bool ZAXHostUndoStep::Placer::DropArrival(quint64 id)
{
    const auto place = m_arrivalOf.constFind(id);
    if (place == m_arrivalOf.constEnd())
        return false;
    m_arrivals[*place] = {};
    m_arrivalOf.erase(place);
    return true;
}

void ZAXHostUndoStep::Placer::Put(const Placing& placing)
{
    const ZAXFeatPlace& from = m_direction == Forth ? placing.from : placing.to;
    const ZAXFeatPlace& to = m_direction == Forth ? placing.to : placing.from;
    const QPointer<ZAXFeatObject> feature = Find(m_container, placing.id);
    ZAXFeatObject* const parent = Find(m_container, to.parent);
    // What was destroyed meanwhile is gone, and so is the place below it.
    if (!feature || (to.parent != 0 && !parent))
        return;
    auto& d = ZAXFeatObjectPrivate::Get(*feature);
    const QPointer<ZAXFeatObject> oldParent = feature->GetParent();
    const bool wasAside = d.isAside;
    if (!to.isInTree && !wasAside)
        Run([&] { d.CleanupSubtree(); });
    if (!to.isInTree)
        d.SetAside();
    else if (wasAside)
        d.BringBack(parent, to.index);
    else
        d.AttachTo(parent, to.index);

    // A parent that was not told of a feature's coming hears nothing of its going on either.
    const bool wasTold = oldParent != parent && !DropArrival(placing.id);
    if (to.isInTree && oldParent != parent)
        AddArrival(feature, parent);
    if (wasAside && !d.isAside)
        Run([&] { d.SetUpSubtree(); });
    if (m_voice == Silently)
        return;
    if (from.isInTree && wasTold)
        Run([&] { d.RaiseRemoved(oldParent); });
    if (from.isInTree && to.isInTree && feature)
        Run([&] { feature->PostMove(oldParent, static_cast<int>(from.index)); });
}

void ZAXHostUndoStep::Placer::RaiseArrivals() const
{
    if (m_voice == Silently)
        return;
    for (const Arrival& arrival : m_arrivals) {
        const auto* const feature = arrival.feature.data();
        if (feature && !ZAXFeatObjectPrivate::Get(*feature).isAside && feature->GetParent() == arrival.parent)
            Run([&] { ZAXFeatObjectPrivate::Get(*feature).RaiseAdded(arrival.parent); });
    }
}

ZAXFeatObject* ZAXHostUndoStep::Find(const ZAXFeatContainer& container, quint64 id)
{
    const auto& index = ZAXGeoContainerPrivate::Get(container);
    ZAXGeoGeometry* const geometry = index.geometries.value(id);
    return qobject_cast<ZAXFeatObject*>(geometry ? geometry : index.aside.value(id));
}

void ZAXHostUndoStep::AddState(const ZAXFeatObject* feature)
{
    const quint64 id = feature->GetId();
    if (HasState(id) || CameInStep(id))
        return;
    const QByteArray state = feature->GetCurrentState();
    stateIndex.insert(id, states.size());
    states.append({id, state, {}});
}

void ZAXHostUndoStep::AddPlacing(const ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to)
{
    placings.append({feature->GetId(), from, to});
    if (!cameInStep.contains(feature->GetId()))
        cameInStep.insert(feature->GetId(), !from.isInTree);
}

void ZAXHostUndoStep::Forget(quint64 id)
{
    if (cameInStep.remove(id) > 0)
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
    JoinPlacings(gone);
    for (State& state : states) {
        const ZAXFeatObject* const feature = Find(container, state.id);
        const auto after = feature ? StateOf(*feature) : state.before;
        isComplete = isComplete && after;
        state.after = after.value_or(state.before);
    }
    states.removeIf([](const State& state) { return state.before == state.after; });
    stateIndex.clear();
    for (qsizetype i = 0; i < states.size(); ++i)
        stateIndex.insert(states.at(i).id, i);
    return gone;
}

void ZAXHostUndoStep::JoinPlacings(QList<quint64>& gone)
{
    QList<Placing> joined;
    for (const Placing& placing : std::as_const(placings)) {
        if (joined.isEmpty() || joined.constLast().id != placing.id || joined.constLast().to != placing.from) {
            joined.append(placing);
            continue;
        }
        joined.last().to = placing.to;
        if (joined.constLast().from != placing.to)
            continue;
        if (!placing.to.isInTree)
            gone.append(placing.id);
        joined.removeLast();
    }
    placings = joined;
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

void ZAXHostUndoStep::Apply(ZAXFeatContainer& container, Direction direction, qsizetype& placed) const
{
    Placer placer(container, direction, Aloud, Placer::PassOn);
    while (placed < placings.size())
        placer.Put(PlacingAt(placed++, direction));
    for (const State& state : states) {
        if (ZAXFeatObject* const feature = Find(container, state.id))
            feature->SetCurrentState(direction == Forth ? state.after : state.before);
    }
    placer.RaiseArrivals();
}

void ZAXHostUndoStep::TakeBack(ZAXFeatContainer& container, Direction direction, qsizetype placed, Voice voice) const
{
    const Direction back = direction == Forth ? Back : Forth;
    Placer placer(container, back, voice, Placer::GoOn);
    while (placed > 0)
        placer.Put(PlacingAt(--placed, direction));
    Settle(container, back, voice);
    placer.RaiseArrivals();
}

bool ZAXHostUndoStep::Settle(ZAXFeatContainer& container, Direction direction, Voice voice) const
{
    bool isChanged = false;
    for (const State& state : states) {
        ZAXFeatObject* const feature = Find(container, state.id);
        const QByteArray& right = direction == Forth ? state.after : state.before;
        if (!feature || StateOf(*feature) == right)
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

bool ZAXHostUndoStep::IsRestored(const ZAXFeatContainer& container, Direction direction) const
{
    return std::ranges::all_of(states, [&](const State& state) {
        const ZAXFeatObject* const feature = Find(container, state.id);
        return !feature || StateOf(*feature) == (direction == Forth ? state.after : state.before);
    });
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
