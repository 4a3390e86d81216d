#ifndef ZAXHOSTTRANSACTION_H
#define ZAXHOSTTRANSACTION_H

#include "ZAXHostExport.h"
#include "ZAXHostResult.h"

#include <QString>

class ZAXHostUndo;

/// Makes one undoable step of all changes in its lifetime, those of slots included. Rolls them back unless they are
/// committed: features, stack and clean mark are then as before.
class ZAXHOST_EXPORT ZAXHostTransaction
{
public:
    /// Opens a transaction whose step is called \a text. Refused while \a undo is busy, as from a slot of a change or
    /// within another transaction, which the changes then belong to: GetResult() says so, and Commit() fails.
    ZAXHostTransaction(ZAXHostUndo& undo, const QString& text);
    /// Rolls back, unless the transaction is closed. Within a change, as in a slot, that is too late: then the changes
    /// become a step, and the log says so.
    ~ZAXHostTransaction();
    ZAXHostTransaction(const ZAXHostTransaction&) = delete;
    ZAXHostTransaction& operator=(const ZAXHostTransaction&) = delete;

    /// Whether the transaction was opened; the message for the user if not.
    ZAXHostResult GetResult() const { return m_result; }

    /// Closes the transaction and puts its step on the stack, unless nothing changed. Fails, and leaves everything as
    /// it is, for a transaction that is not open, or while a change is under way. What a slot of the stack throws
    /// passes through, when the step is on it.
    ZAXHostResult Commit();
    /// Closes the transaction and takes all its changes back. Fails like Commit(), and when a feature does not take
    /// its former state: all others have theirs then, and the document counts as changed until it is saved.
    ZAXHostResult Rollback();

private:
    ZAXHostResult Close();
    /// Makes a step of the changes, which cannot be rolled back now.
    void GiveUp();

    ZAXHostUndo* m_undo;
    QString m_text;
    ZAXHostResult m_result = ZAXHostResult::Done();
    bool m_isOpen;
};

#endif
