#ifndef ZAXMAT_DOCUMENTTREE_H
#define ZAXMAT_DOCUMENTTREE_H

#include "Output.h"

#include <QString>

class ZAXFeatContainer;
class ZAXFeatObject;

namespace zaxmat {

/// What \a object is, in one line: a material by its ID, a stock form with its size, an object that cannot be shown by
/// its class and why, any other by its label. Lengths are displayed in \a unit.
QString ObjectLine(const ZAXFeatObject& object, LengthUnit unit);

/// All features of a document, one per line, indented by their place in the tree, as ObjectLine() gives them.
QString DocumentTree(const ZAXFeatContainer& container, LengthUnit unit);

} // namespace zaxmat

#endif
