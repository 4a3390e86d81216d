#ifndef ZAXMAT_TWINS_H
#define ZAXMAT_TWINS_H

#include "Output.h"
#include "RecordMerge.h"

#include <QList>

namespace zaxmat {

class Catalogue;

/// Adds a note to \a output for the materials to which \a edits, made of \a catalogue, give the type and thickness of
/// another one: documents cannot tell such materials apart.
void NoteTwins(const Catalogue& catalogue, const QList<RecordEdit>& edits, Output& output);

} // namespace zaxmat

#endif
