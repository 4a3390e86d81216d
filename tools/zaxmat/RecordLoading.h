#ifndef ZAXMAT_RECORDLOADING_H
#define ZAXMAT_RECORDLOADING_H

#include "ZAXMatDefinition.h"

class ZAXFeatObject;

namespace zaxmat {

/// Takes the label and the values of \a feature, a material or a stock form, over into \a record, which must be of its
/// type: those that the record defines, those that differ from what a new feature has, for a new record also those the
/// user works with, and those of the extensions that the feature has. Values are stored as PlainValue() gives them.
/// What a record stores without a value stays so where the feature has what a new one has. The link to the catalogue,
/// the colour, and an ID that follows label and thickness are no part of a record; what it holds for classes and
/// properties that the feature does not have stays.
void LoadRecord(ZAXMatDefinition& record, const ZAXFeatObject& feature, bool isNew);

} // namespace zaxmat

#endif
