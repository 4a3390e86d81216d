#include "ZAXHostUndoStep.h"

#include "ZAXFeatClass.h"
#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXFeatPropertyBasePrivate.h"
#include "ZAXFeatValuePropertyBase.h"
#include "ZAXGeoContainerPrivate.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

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

/// Fewer states than that are found without an index.
constexpr qsizetype indexedStates = 8;

using KeptValue = ZAXFeatKeptValue ZAXHostUndoStep::Value::*;

ZAXFeatKeptValue Kept(const ZAXFeatValuePropertyBase& property)
{
    return ZAXFeatPropertyBasePrivate::Access(property)->keep(property);
}

/// Gives properties of a feature other values, past changes and signals, as long as it lives.
class OtherValues
{
public:
    OtherValues(const ZAXFeatObject& feature, const ZAXHostUndoStep::Values& values, KeptValue wanted)
    {
        for (const ZAXHostUndoStep::Value& value : values) {
            auto* const property = ZAXFeatObjectPrivate::Get(feature).FindValueProperty(value.property);
            if (!property)
                continue;
            m_present.append({property, Kept(*property)});
            Set(*property, value.*wanted);
        }
    }
    ~OtherValues()
    {
        for (const auto& [property, value] : std::as_const(m_present))
            Set(*property, value);
    }
    OtherValues(const OtherValues&) = delete;
    OtherValues& operator=(const OtherValues&) = delete;

private:
    static void Set(ZAXFeatValuePropertyBase& property, const ZAXFeatKeptValue& value)
    {
        ZAXFeatPropertyBasePrivate::Access(property)->restore(property, value);
    }

    QList<std::pair<ZAXFeatValuePropertyBase*, ZAXFeatKeptValue>> m_present;
};

/// Has changes of \a values be looked at each time: a class may save them at times only.
void LookAgain(const ZAXHostUndoStep::Values& values, const ZAXFeatObject& feature)
{
    for (const ZAXHostUndoStep::Value& value : values) {
        if (auto* const property = ZAXFeatObjectPrivate::Get(feature).Class()->GetProperty(value.property))
            property->isSaved = false;
    }
}

/// The state of \a feature with other \a values. \throws what Save() throws.
QByteArray StateWith(const ZAXFeatObject& feature, const ZAXHostUndoStep::Values& values, KeptValue wanted)
{
    const OtherValues other(feature, values, wanted);
    return feature.GetCurrentState();
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

void ZAXHostUndoStep::AddState(const ZAXFeatObject* feature, const ZAXFeatValuePropertyBase* only)
{
    const quint64 id = feature->GetId();
    qsizetype place = IndexOfState(id);
    if (place < 0 ? CameInStep(id) : states[place].values.isEmpty())
        return;
    if (only && IsFound(*only)) {
        const auto isThere = [&](const Value& value) { return value.property == only->GetPropertyIndex(); };
        if (place < 0 || std::ranges::none_of(states[place].values, isThere))
            AddValue(id, ValueOf(*only));
        return;
    }
    const Values changed = place < 0 ? Values() : states[place].values;
    const QByteArray before = StateWith(*feature, changed, &Value::before);
    if (place < 0)
        place = AppendState(id);
    states[place] = {id, before, {}, {}};
}

void ZAXHostUndoStep::AddValue(quint64 id, Value&& value)
{
    const qsizetype place = IndexOfState(id);
    states[place < 0 ? AppendState(id) : place].values.append(std::move(value));
}

ZAXHostUndoStep::Value ZAXHostUndoStep::ValueOf(const ZAXFeatValuePropertyBase& property)
{
    return {property.GetPropertyIndex(), Kept(property), {}};
}

bool ZAXHostUndoStep::IsFound(const ZAXFeatValuePropertyBase& property)
{
    const auto& feature = ZAXFeatObjectPrivate::Get(*property.GetFeature());
    return feature.FindValueProperty(property.GetPropertyIndex()) == &property;
}

bool ZAXHostUndoStep::CloseValue(Value& value, const ZAXFeatObject& feature)
{
    const auto* const property = ZAXFeatObjectPrivate::Get(feature).FindValueProperty(value.property);
    if (!property)
        return false;
    value.after = Kept(*property);
    return !ZAXFeatKeptValues::IsSame(value.before, value.after);
}

bool ZAXHostUndoStep::IsSaved(const Value& value, const ZAXFeatObject& feature)
{
    const auto* const property = ZAXFeatObjectPrivate::Get(feature).Class()->GetProperty(value.property);
    return (property && property->isSaved) || AreSaved({value}, feature);
}

bool ZAXHostUndoStep::AreSaved(const Values& values, const ZAXFeatObject& feature)
{
    const auto find = [&](const Value& value) {
        return ZAXFeatObjectPrivate::Get(feature).Class()->GetProperty(value.property);
    };
    const auto isKnown = [&](const Value& value) {
        const auto* const property = find(value);
        return property && property->isSaved;
    };
    if (std::ranges::any_of(values, isKnown))
        return true;
    // One that cannot be saved tells nothing.
    bool areSaved = true;
    const bool isSeen = Try(
        [&] { areSaved = StateWith(feature, values, &Value::before) != StateWith(feature, values, &Value::after); });
    if (auto* const property = find(values.front()); property && isSeen && areSaved && values.size() == 1)
        property->isSaved = true;
    return areSaved;
}

qsizetype ZAXHostUndoStep::IndexOfState(quint64 id) const
{
    if (!stateIndex.isEmpty())
        return stateIndex.value(id, -1);
    const auto found = std::ranges::find(states, id, &State::id);
    return found != states.cend() ? found - states.cbegin() : -1;
}

qsizetype ZAXHostUndoStep::AppendState(quint64 id)
{
    states.emplace_back().id = id;
    if (!stateIndex.isEmpty())
        stateIndex.insert(id, states.size() - 1);
    else if (states.size() >= indexedStates)
        IndexStates();
    return states.size() - 1;
}

void ZAXHostUndoStep::IndexStates()
{
    stateIndex.clear();
    if (states.size() < indexedStates)
        return;
    for (qsizetype i = 0; i < states.size(); ++i)
        stateIndex.insert(states[i].id, i);
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
    if (!HasState(id))
        return;
    states.removeIf([id](const State& state) { return state.id == id; });
    IndexStates();
}

QList<quint64> ZAXHostUndoStep::Close(const ZAXFeatContainer& container)
{
    QList<quint64> gone;
    const auto cameAndWent = [&](const Placing& placing) {
        const ZAXFeatObject* const feature = Find(container, placing.id);
        return CameInStep(placing.id) && (!feature || ZAXFeatObjectPrivate::Get(*feature).isAside);
    };
    // Places are counted among siblings: the places of others may count these in.
    if (!placings.isEmpty() && std::ranges::all_of(std::as_const(placings), cameAndWent)) {
        std::ranges::transform(std::as_const(placings), std::back_inserter(gone), &Placing::id);
        placings.clear();
    }
    if (!placings.isEmpty())
        JoinPlacings(gone);
    for (State& state : states) {
        const ZAXFeatObject* const feature = Find(container, state.id);
        if (!state.values.isEmpty()) {
            const auto before = std::exchange(state.values, {});
            for (Value value : before) {
                isComplete &= Try([&] {
                    if (feature && CloseValue(value, *feature))
                        state.values.append(std::move(value));
                });
            }
            if (!state.values.isEmpty() && !AreSaved(state.values, *feature))
                state.values.clear();
            continue;
        }
        const auto after = feature ? StateOf(*feature) : state.before;
        isComplete = isComplete && after;
        state.after = after.value_or(state.before);
    }
    states.removeIf([](const State& state) { return state.values.isEmpty() && state.before == state.after; });
    IndexStates();
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

namespace {

/// \a text is about \a feature.
ZAXHostUndoStep::Description About(const ZAXFeatObject* feature, const char* text)
{
    QString label;
    Try([&] { label = feature ? feature->GetLabel() : QString(); });
    return {QCoreApplication::translate("ZAXHostUndo", text), std::move(label)};
}

} // namespace

ZAXHostUndoStep::Description ZAXHostUndoStep::Describe(const ZAXFeatContainer& container) const
{
    if (placings.isEmpty())
        return DescribeChange(Find(container, states.front().id));
    const Placing& placing = placings.constFirst();
    const ZAXFeatObject* const feature = Find(container, placing.id);
    if (!placing.from.isInTree)
        return About(feature, QT_TRANSLATE_NOOP("ZAXHostUndo", "Create %1"));
    if (!placing.to.isInTree)
        return About(feature, QT_TRANSLATE_NOOP("ZAXHostUndo", "Remove %1"));
    return About(feature, QT_TRANSLATE_NOOP("ZAXHostUndo", "Move %1"));
}

ZAXHostUndoStep::Description ZAXHostUndoStep::DescribeChange(const ZAXFeatObject* feature)
{
    return About(feature, QT_TRANSLATE_NOOP("ZAXHostUndo", "Change %1"));
}

QList<ZAXHostUndoStep::Placing> ZAXHostUndoStep::Placings(Direction direction) const
{
    if (direction == Forth)
        return placings;
    QList<Placing> reversed;
    std::transform(placings.crbegin(), placings.crend(), std::back_inserter(reversed), Reversed);
    return reversed;
}

ZAXHostUndoStep ZAXHostUndoStep::Whole(const ZAXFeatContainer& container, Direction direction, QString& failure) const
{
    ZAXHostUndoStep whole = *this;
    whole.states.clear();
    for (const State& state : states) {
        const ZAXFeatObject* const feature = Find(container, state.id);
        if (state.values.isEmpty() || !feature) {
            whole.states.append(state);
            continue;
        }
        try {
            const QByteArray present = feature->GetCurrentState();
            const QByteArray wanted =
                StateWith(*feature, state.values, direction == Forth ? &Value::after : &Value::before);
            whole.states.append(direction == Forth ? State{state.id, present, wanted, {}}
                                                   : State{state.id, wanted, present, {}});
            if (present == wanted)
                LookAgain(state.values, *feature);
        } catch (const std::exception& exception) {
            failure = QString::fromUtf8(exception.what());
            if (failure.isEmpty())
                failure = QCoreApplication::translate("ZAXHostUndo", "A change cannot be taken back.");
        }
    }
    whole.IndexStates();
    return whole;
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
    for (const State& state : other.states)
        states[AppendState(state.id)] = state;
}

QList<quint64> ZAXHostUndoStep::Keeps(Direction lastDirection) const
{
    if (placings.isEmpty())
        return {};
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
