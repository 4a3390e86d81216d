#ifndef ZAXMAT_DOCUMENTTREE_H
#define ZAXMAT_DOCUMENTTREE_H

#include <QString>

class ZAXFeatContainer;

namespace zaxmat {

/// All features of a document, one per line, indented by their place in the tree: materials by their IDs, stock forms
/// with their sizes, other features by their labels.
QString DocumentTree(const ZAXFeatContainer& container);

} // namespace zaxmat

#endif
