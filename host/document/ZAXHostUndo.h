#ifndef ZAXHOSTUNDO_H
#define ZAXHOSTUNDO_H

#include "ZAXHostExport.h"
#include "ZAXHostResult.h"

#include <memory>

class QUndoStack;
class ZAXFeatContainer;
class ZAXHostUndoPrivate;

/// Undo and redo for the features of a document.
///
/// Every change of a feature, silent or not, is recorded: of its state, and of its place in the tree. What the host
/// does as one operation (creating, removing, moving, duplicating, labelling, setting a property) is one step on the
/// stack, and so is all that happens within a ZAXHostTransaction. A step that changes nothing in the end is dropped.
///
/// The state of a feature is what it saves: a value that is not saved is not taken back, and its change alone is no
/// step, unless its class saves it at other times. Steps hold ids and bytes; of a feature that changed in nothing but
/// values of properties, those values. A feature that cannot be saved does not change in any other way: what it throws
/// passes through. A removed feature waits aside, at its address and with its subtree, as long as a step can bring it
/// back. Restoring a state goes through ZAXGeoGeometry::SetCurrentState(), with signals; it records nothing and leaves
/// the last-saved values alone, and what slots change meanwhile is taken back.
class ZAXHOST_EXPORT ZAXHostUndo
{
public:
    /// Records the changes of \a container, which must outlive this; null for none.
    explicit ZAXHostUndo(ZAXFeatContainer* container);
    /// Frees what waits aside.
    ~ZAXHostUndo();
    ZAXHostUndo(const ZAXHostUndo&) = delete;
    ZAXHostUndo& operator=(const ZAXHostUndo&) = delete;

    /// Forgets all steps and records the changes of \a container, which may be null, instead.
    void SetContainer(ZAXFeatContainer* container);

    /// The stack, for actions, a view, the clean mark and the limit. Where Undo() and Redo() would fail, its own
    /// undo(), redo() and setIndex() stop, and the log says why; never call its clear(), but Clear().
    QUndoStack* GetStack() const;

    /// True while a change or a transaction is under way, a change is being told about, or a state is being restored:
    /// Undo(), Redo(), Clear() and a new transaction are refused with a message then, and do nothing.
    bool IsBusy() const;

    /// Takes the last step back; done, and nothing happens, when there is none. Fails as well when a feature does
    /// not take its former state, or cannot be saved: the document and the stack are then as before. Should a feature
    /// not take that state back either, the document counts as changed until it is saved. What a slot of the stack
    /// throws passes through, when all is done.
    ZAXHostResult Undo();
    /// Does again what Undo() took back last; done, and nothing happens, when there is nothing to.
    ZAXHostResult Redo();
    /// Forgets all steps; what was not clean is so until it is saved.
    ZAXHostResult Clear();

private:
    friend class ZAXHostTransaction;
    std::unique_ptr<ZAXHostUndoPrivate> d_ptr;
};

#endif
