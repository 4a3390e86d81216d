#ifndef ZAXMAT_OBJECTJSON_H
#define ZAXMAT_OBJECTJSON_H

#include <QJsonObject>

class ZAXFeatObject;

namespace zaxmat {

/// The class of \a object, for one that is not available that of the object itself.
QString ClassName(const ZAXFeatObject& object);

/// \a object with all below it, for programs; docs/zaxmat.md describes the members.
QJsonObject ObjectJson(const ZAXFeatObject& object);

} // namespace zaxmat

#endif
