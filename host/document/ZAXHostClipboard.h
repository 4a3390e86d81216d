#ifndef ZAXHOSTCLIPBOARD_H
#define ZAXHOSTCLIPBOARD_H

#include "ZAXHostExport.h"
#include "ZAXHostProblem.h"
#include "ZAXHostResult.h"

#include <QByteArray>
#include <QList>

class ZAXFeatObject;

/// Carries features from one document to another, or to another place in the same one, as bytes.
namespace ZAXHostClipboard {

/// The bytes of \a features with their subtrees; features below another one of them come with that.
/// \throws ZAXSysException for a tree nested more deeply than documents can be.
ZAXHOST_EXPORT QByteArray Copy(const QList<ZAXFeatObject*>& features);

/// Makes the features of \a bytes under \a parent, behind its children, as one undoable step, and gives them in
/// \a pasted. They get ids of this document; references among them point to the new ones, and references to anything
/// else lead nowhere, with a message in \a problems. What this program cannot make becomes a placeholder.
/// Fails, and changes nothing, for bytes that are not what Copy() gives, for objects that \a parent does not allow or
/// that do not take their data, and for a parent that was removed. An exception from a slot of ChildAdded() passes
/// through and leaves the objects in their places, and in \a pasted.
ZAXHOST_EXPORT ZAXHostResult Paste(const QByteArray& bytes, ZAXFeatObject* parent, QList<ZAXFeatObject*>& pasted,
                                   QList<ZAXHostProblem>& problems);

} // namespace ZAXHostClipboard

#endif
