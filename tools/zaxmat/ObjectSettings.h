#ifndef ZAXMAT_OBJECTSETTINGS_H
#define ZAXMAT_OBJECTSETTINGS_H

#include <QStringList>

class ZAXFeatObject;

namespace zaxmat {

/// Gives \a object what \a settings say, in their order: "label=TEXT"; "property=value" for a property of its class;
/// and for a material or a stock form "Extension.property=value" as well, with which it gets the extension if it has
/// none. The ID of a material follows its label and thickness until it is set itself. \throws Failure (WrongUsage) for
/// what is no setting or names no such property; (InvalidValues) for a value that the property cannot take. Part of the
/// settings may be done then.
void SetObjectValues(ZAXFeatObject& object, const QStringList& settings);

} // namespace zaxmat

#endif
