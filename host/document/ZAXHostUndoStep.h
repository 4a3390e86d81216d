#ifndef ZAXHOSTUNDOSTEP_H
#define ZAXHOSTUNDOSTEP_H

// Private to the host: may change without notice.

#include "ZAXFeatChangeObserver.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

class ZAXFeatContainer;
class ZAXFeatObject;

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
    struct State
    {
        quint64 id;
        QByteArray before;
        QByteArray after;
    };
    enum Direction
    {
        Back,
        Forth
    };
    enum Voice
    {
        Aloud,
        Silently
    };

    /// Adds the state of \a feature before its first change in this step. A feature that came in this step has none.
    void AddState(const ZAXFeatObject* feature);
    void AddPlacing(const ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to);
    /// Forgets a feature that is destroyed.
    void Forget(quint64 id);
    /// Adds the states after the last change and drops what is as before, ways that lead back among it. Gives the
    /// features that came and went again in a step which did nothing else to the tree: nothing can bring them back.
    QList<quint64> Close(const ZAXFeatContainer& container);

    bool IsEmpty() const { return placings.isEmpty() && states.isEmpty(); }
    /// False when Close() did not get the state of a feature: the step cannot restore that.
    bool IsComplete() const { return isComplete; }
    bool HasState(quint64 id) const { return stateIndex.contains(id); }
    /// What the step does, in the user's words.
    QString Describe(const ZAXFeatContainer& container) const;

    /// Puts the features back to where they stood before the step, or forth to where they stood after it. Signals of
    /// departures are raised at once, those of arrivals when the states are right.
    /// \throws what a feature or a slot throws, half-way: TakeBack() with \a placed mends that.
    void Apply(ZAXFeatContainer& container, Direction direction, qsizetype& placed) const;
    /// Reverses what Apply() in \a direction did, as far as it got. Goes on whatever throws: a feature whose state
    /// cannot be restored because of a slot gets it without signals. \a Silently raises none at all. IsRestored() tells
    /// what came of it.
    void TakeBack(ZAXFeatContainer& container, Direction direction, qsizetype placed, Voice voice = Aloud) const;
    /// Whether all features have their states from before the step, or after it.
    bool IsRestored(const ZAXFeatContainer& container, Direction direction) const;
    /// Restores the states once more that slots changed since Apply(), as TakeBack() does; false when there were none.
    bool Settle(ZAXFeatContainer& container, Direction direction, Voice voice) const;
    /// Adds the states of \a other, none of which this step has.
    void AddStates(const ZAXHostUndoStep& other);
    /// The features that are aside after the step was done, or taken back, and that only this step can bring back.
    QList<quint64> Keeps(Direction lastDirection) const;

    QList<Placing> placings;
    QList<State> states;
    QHash<quint64, qsizetype> stateIndex;

    /// The feature with \a id, be it in the tree or aside; null when it is gone.
    static ZAXFeatObject* Find(const ZAXFeatContainer& container, quint64 id);

private:
    class Placer;
    /// The placing that is the \a number-th in \a direction.
    const Placing& PlacingAt(qsizetype number, Direction direction) const;
    bool CameInStep(quint64 id) const { return cameInStep.value(id, false); }
    /// Joins what one feature did in a row, and drops it when it led back. Adds those that are gone then to \a gone.
    void JoinPlacings(QList<quint64>& gone);

    /// For each feature that was placed, whether it was not in the tree before.
    QHash<quint64, bool> cameInStep;
    bool isComplete = true;
};

#endif
