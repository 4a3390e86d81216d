#ifndef ZAXHOSTUNDOSTEP_H
#define ZAXHOSTUNDOSTEP_H

// Private to the host: may change without notice.

#include "ZAXFeatChangeObserver.h"
#include "ZAXFeatKeptValue.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QVarLengthArray>

class ZAXFeatContainer;
class ZAXFeatObject;
class ZAXFeatValuePropertyBase;

/// What one step changed: places and states, by the ids of the features.
class ZAXHostUndoStep
{
public:
    struct Placing
    {
        quint64 id;
        ZAXFeatPlace from;
        ZAXFeatPlace to;
    };
    /// The value of one property of a feature.
    struct Value
    {
        int property;
        ZAXFeatKeptValue before;
        ZAXFeatKeptValue after;
    };
    using Values = QVarLengthArray<Value, 1>;
    /// The state of a feature; where nothing but values of properties changed, \a values instead.
    struct State
    {
        quint64 id;
        QByteArray before;
        QByteArray after;
        Values values;
    };
    enum Direction
    {
        Back,
        Forth
    };
    static Direction Opposite(Direction direction) { return direction == Forth ? Back : Forth; }
    enum Voice
    {
        Aloud,
        Silently
    };

    /// Adds the state of \a feature before its first change in this step, or only the value of \a only while nothing
    /// else changes. A feature that came in this step has none.
    void AddState(const ZAXFeatObject* feature, const ZAXFeatValuePropertyBase* only = nullptr);
    /// Adds \a value, which the feature \a id had before its first change in this step.
    void AddValue(quint64 id, Value&& value);
    void AddPlacing(const ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to);
    /// Forgets a feature that is destroyed.
    void Forget(quint64 id);
    /// Adds the states after the last change and drops what is as before, ways that lead back among it. Gives the
    /// features that came and went again in a step which did nothing else to the tree: nothing can bring them back.
    QList<quint64> Close(const ZAXFeatContainer& container);

    bool IsEmpty() const { return placings.isEmpty() && states.isEmpty(); }
    /// False when Close() did not get the state of a feature: the step cannot restore that.
    bool IsComplete() const { return isComplete; }
    bool HasState(quint64 id) const { return IndexOfState(id) >= 0; }
    /// Whether the feature came in this step: it has no state from before.
    bool CameInStep(quint64 id) const { return cameInStep.value(id, false); }
    /// What the step does, in the user's words, with "%1" in the place of the label of what it does that to.
    struct Description
    {
        QString text;
        QString label;

        friend bool operator==(const Description&, const Description&) = default;
    };
    Description Describe(const ZAXFeatContainer& container) const;
    /// That of a step which changes \a feature; null for one that is gone.
    static Description DescribeChange(const ZAXFeatObject* feature);

    /// The step with whole states only, as it must be to be done in \a direction: features of which nothing but values
    /// changed get the states that they have now, and would have with the others. One that cannot be saved gets none,
    /// and \a failure tells why.
    ZAXHostUndoStep Whole(const ZAXFeatContainer& container, Direction direction, QString& failure) const;

    /// Puts the features back to where they stood before the step, or forth to where they stood after it, and gives
    /// them their states. Signals of departures are raised at once, those of arrivals when the states are right. Every
    /// placing is added to \a done, in the order and the direction in which it was done.
    /// \throws what a feature or a slot throws, half-way.
    void Apply(ZAXFeatContainer& container, Direction direction, QList<Placing>& done) const;
    /// Reverses all placings of \a done, last to first, and does those of this step in \a direction, if it is to
    /// \a stay done, adding them to \a done again; then gives the features the states that belong to it. Goes on
    /// whatever throws. \a Silently raises no signals at all. Whether all is as it should be tells IsRestored().
    void Settle(ZAXFeatContainer& container, Direction direction, bool stay, Voice voice, QList<Placing>& done) const;
    /// Restores the states once more that slots changed; goes on whatever throws. A feature whose state cannot be
    /// restored because of a slot gets it without signals. False when all were right.
    bool SettleStates(ZAXFeatContainer& container, Direction direction, Voice voice) const;
    /// Whether all features have their parents and states from before the step, or after it.
    bool IsRestored(const ZAXFeatContainer& container, Direction direction) const;
    /// Adds the states of \a other, none of which this step has.
    void AddStates(const ZAXHostUndoStep& other);
    /// The features that are aside after the step was done, or taken back, and that only this step can bring back.
    QList<quint64> Keeps(Direction lastDirection) const;

    QList<Placing> placings;
    QVarLengthArray<State, 1> states;

    /// The value that \a property has, as the one before a change.
    static Value ValueOf(const ZAXFeatValuePropertyBase& property);
    /// Whether the index of \a property leads to it: its value will be asked for by that.
    static bool IsFound(const ZAXFeatValuePropertyBase& property);
    /// Adds the value that the property of \a feature has now; false when it is as before.
    static bool CloseValue(Value& value, const ZAXFeatObject& feature);
    /// Whether the change of \a values is one of what is saved of \a feature: a value that only the running program
    /// knows is no part of the feature's state. Saves the feature to see that, until a change of one of the properties
    /// has been seen to matter.
    static bool AreSaved(const Values& values, const ZAXFeatObject& feature);
    static bool IsSaved(const Value& value, const ZAXFeatObject& feature);

    /// The feature with \a id, be it in the tree or aside; null when it is gone.
    static ZAXFeatObject* Find(const ZAXFeatContainer& container, quint64 id);

private:
    class Placer;
    /// The placings in \a direction.
    QList<Placing> Placings(Direction direction) const;
    /// Joins what one feature did in a row, and drops it when it led back. Adds those that are gone then to \a gone.
    void JoinPlacings(QList<quint64>& gone);

    /// -1 for a feature without a state.
    qsizetype IndexOfState(quint64 id) const;
    /// Appends an empty state and gives its place.
    qsizetype AppendState(quint64 id);
    void IndexStates();

    /// The places in the list of states, when there are many.
    QHash<quint64, qsizetype> stateIndex;
    /// For each feature that was placed, whether it was not in the tree before.
    QHash<quint64, bool> cameInStep;
    bool isComplete = true;
};

#endif
