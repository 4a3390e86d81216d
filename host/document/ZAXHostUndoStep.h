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

    /// Adds the state of \a feature before its first change in this step. A feature that came in this step has none.
    void AddState(const ZAXFeatObject* feature);
    void AddPlacing(const ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to);
    /// Forgets a feature that is destroyed.
    void Forget(quint64 id);
    /// Adds the states after the last change and drops those that are as before.
    void Close(const ZAXFeatContainer& container);

    bool IsEmpty() const { return placings.isEmpty() && states.isEmpty(); }
    bool HasState(quint64 id) const { return stateIndex.contains(id); }
    /// What the step does, in the user's words.
    QString Describe(const ZAXFeatContainer& container) const;

    /// Puts the features back to where they stood before the step, or forth to where they stood after it. Signals of
    /// departures are raised at once, those of arrivals when the states are right.
    /// \throws what a feature throws that does not take its state, half-way.
    void Apply(ZAXFeatContainer& container, Direction direction) const;
    /// Restores the states once more that slots changed since Apply().
    void Settle(ZAXFeatContainer& container, Direction direction) const;
    /// The features that are aside after the step was done, or taken back, and that only this step can bring back.
    QList<quint64> Keeps(Direction lastDirection) const;

    QList<Placing> placings;
    QList<State> states;
    QHash<quint64, qsizetype> stateIndex;

    /// The feature with \a id, be it in the tree or aside; null when it is gone.
    static ZAXFeatObject* Find(const ZAXFeatContainer& container, quint64 id);

private:
    bool CameInStep(quint64 id) const;
};

#endif
