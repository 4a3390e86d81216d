#ifndef ZAXHOSTDOCUMENTIMAGER_H
#define ZAXHOSTDOCUMENTIMAGER_H

// Private to the host: may change without notice.

#include "ZAXHostDocumentCodec.h"
#include "ZAXHostProblem.h"

#include <QSet>

class ZAXFeatContainer;
class ZAXFeatObject;
struct QMetaObject;

/// Turns features into the image of a document, and back.
namespace ZAXHostDocumentImager {

/// Adds to the empty \a image \a features, children of one parent in their order, with their subtrees. They get the
/// parent id 0 when \a isTop. A placeholder gives the object it stands for. \throws ZAXSysException for a tree nested
/// more deeply than files can hold.
void Add(const QList<ZAXFeatObject*>& features, bool isTop, ZAXHostDocumentImage& image);

/// The highest id that \a image knows, as the id of an object or in a reference; at least \a highest.
quint64 HighestId(const ZAXHostDocumentImage& image, quint64 highest);

/// Why this program cannot make objects of the class described by \a chain; empty if it can. Classes named in
/// \a retired count as missing.
QString WhyUnavailable(const QList<ZAXHostDocumentClass>& chain, const QSet<QByteArray>& retired);

/// Fills the empty \a container with the objects of \a image under their ids. What cannot be made or does not take
/// its data becomes a placeholder; under a missing parent objects stand in a folder at the top. Gives the problems.
QList<ZAXHostProblem> Populate(ZAXFeatContainer& container, const ZAXHostDocumentImage& image,
                               const QSet<QByteArray>& retired);

} // namespace ZAXHostDocumentImager

#endif
