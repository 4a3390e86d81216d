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

ZAXHostUndoStep::Placing Reversed(const ZAXHostUndoStep::Placing& placing)
{
    return {placing.id, placing.to, placing.from};
}

} // namespace

/// Puts features where they belong, one after the other, and has their parents tell of it.
class ZAXHostUndoStep::Placer
{
public:
    enum OnException
    {
        PassOn,
        GoOn ///< with the next thing to be done
    };

    Placer(ZAXFeatContainer& container, OnException onException) : m_container(container), m_onException(onException) {}

    /// Puts a feature where \a placing leads. Nobody is told but the feature.
    void Put(const Placing& placing);
    /// Has the former parent of the feature that was put last tell of it.
    void TellOfDeparture() const
    {
        if (!m_features.isEmpty())
            TellOf(m_features.constLast(), &ZAXFeatObjectPrivate::TellOfDeparture);
    }
    /// Has the former parents of all features that were put elsewhere tell of it.
    void TellOfDepartures() const { TellOfAll(&ZAXFeatObjectPrivate::TellOfDeparture); }
    /// Has the new parents tell.
    void TellOfArrivals() const { TellOfAll(&ZAXFeatObjectPrivate::TellOfArrival); }

private:
    using Telling = void (ZAXFeatObjectPrivate::*)();

    template <typename Operation>
    void Run(const Operation& operation) const
    {
        if (m_onException == GoOn)
            Try(operation);
        else
            operation();
    }

    void TellOf(const QPointer<ZAXFeatObject>& feature, Telling telling) const
    {
        // A slot may have destroyed it.
        if (feature)
            Run([&] { (ZAXFeatObjectPrivate::Get(*feature).*telling)(); });
    }

    void TellOfAll(Telling telling) const
    {
        for (const auto& feature : m_features)
            TellOf(feature, telling);
    }

    ZAXFeatContainer& m_container;
    const OnException m_onException;
    QList<QPointer<ZAXFeatObject>> m_features;
};

void ZAXHostUndoStep::Placer::Put(const Placing& placing)
{
    const auto& [id, from, to] = placing;
    const QPointer<ZAXFeatObject> feature = Find(m_container, id);
    ZAXFeatObject* const parent = Find(m_container, to.parent);
    // What was destroyed meanwhile is gone, and so is the place below it.
    if (!feature || (to.parent != 0 && !parent))
        return;
    m_features.append(feature);
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
    if (wasAside && !d.isAside)
        Run([&] { d.SetUpSubtree(); });
    if (from.isInTree && to.isInTree && feature)
        Run([&, index = from.index] { feature->PostMove(oldParent, static_cast<int>(index)); });
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
        QString label;
        Try([&] { label = feature ? feature->GetLabel() : QString(); });
        return QCoreApplication::translate("ZAXHostUndo", text).arg(label);
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

QList<ZAXHostUndoStep::Placing> ZAXHostUndoStep::Placings(Direction direction) const
{
    if (direction == Forth)
        return placings;
    QList<Placing> reversed;
    std::transform(placings.crbegin(), placings.crend(), std::back_inserter(reversed), Reversed);
    return reversed;
}

void ZAXHostUndoStep::Apply(ZAXFeatContainer& container, Direction direction, QList<Placing>& done) const
{
    Placer placer(container, Placer::PassOn);
    const auto wanted = Placings(direction);
    for (const Placing& placing : wanted) {
        done.append(placing);
        placer.Put(placing);
        placer.TellOfDeparture();
    }
    for (const State& state : states) {
        if (ZAXFeatObject* const feature = Find(container, state.id))
            feature->SetCurrentState(direction == Forth ? state.after : state.before);
    }
    placer.TellOfArrivals();
}

void ZAXHostUndoStep::Settle(ZAXFeatContainer& container, Direction direction, bool stay, Voice voice,
                             QList<Placing>& done) const
{
    Placer placer(container, Placer::GoOn);
    const auto past = std::exchange(done, {});
    for (auto placing = past.crbegin(); placing != past.crend(); ++placing)
        placer.Put(Reversed(*placing));
    if (stay) {
        const auto wanted = Placings(direction);
        for (const Placing& placing : wanted) {
            done.append(placing);
            placer.Put(placing);
        }
    }
    if (voice == Aloud)
        placer.TellOfDepartures();
    SettleStates(container, stay ? direction : Opposite(direction), voice);
    if (voice == Aloud)
        placer.TellOfArrivals();
}

bool ZAXHostUndoStep::SettleStates(ZAXFeatContainer& container, Direction direction, Voice voice) const
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
    QHash<quint64, ZAXFeatPlace> places;
    const auto wanted = Placings(direction);
    for (const Placing& placing : wanted)
        places.insert(placing.id, placing.to);
    const bool arePlaced = std::ranges::all_of(places.keyValueBegin(), places.keyValueEnd(), [&](const auto& entry) {
        const ZAXFeatObject* const feature = Find(container, entry.first);
        if (!feature)
            return true;
        const auto& d = ZAXFeatObjectPrivate::Get(*feature);
        return d.isAside != entry.second.isInTree && (d.parent ? d.parent->GetId() : 0) == entry.second.parent;
    });
    return arePlaced && std::ranges::all_of(states, [&](const State& state) {
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
