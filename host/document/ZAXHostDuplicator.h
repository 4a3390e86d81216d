#ifndef ZAXHOSTDUPLICATOR_H
#define ZAXHOSTDUPLICATOR_H

#include "ZAXHostExport.h"

class ZAXFeatObject;

/// Copies features within their document.
namespace ZAXHostDuplicator {

/// Copies \a source with everything below it, and puts the copy behind \a source under the same parent. References
/// within the subtree point into the copy, others stay as they are. The copies are made and loaded like a document,
/// then ZAXFeatObject::PostDuplicate() is called on each, top first, and last the parents raise ChildAdded().
/// Returns the copy of \a source; null when \a source was removed, with the reason logged, and when a slot of
/// ChildAdded() has removed the copy at once.
/// An exception from a feature, or a ZAXSysException for a class that cannot be re-created, passes through and leaves
/// nothing of the copy behind. An exception from a slot of ChildAdded() passes through and leaves the copy in its
/// place.
ZAXHOST_EXPORT ZAXFeatObject* Duplicate(ZAXFeatObject* source);

} // namespace ZAXHostDuplicator

#endif
