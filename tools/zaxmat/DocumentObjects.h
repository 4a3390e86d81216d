#ifndef ZAXMAT_DOCUMENTOBJECTS_H
#define ZAXMAT_DOCUMENTOBJECTS_H

#include <QList>
#include <QString>

class ZAXFeatObject;
class ZAXHostDocument;

namespace zaxmat {

/// The name by which the user knows \a object: the ID of a material, the class of one that is not
/// available, else the label.
QString ObjectName(const ZAXFeatObject& object);

/// How the user can address \a object whatever it is called: "@12". It stays the same as long as the object exists.
QString ObjectAddress(const ZAXFeatObject& object);

/// The names from the top of the document down to \a object, separated by '/'.
QString ObjectPath(const ZAXFeatObject& object);

/// All objects of \a document, each before those below it.
QList<ZAXFeatObject*> AllObjects(const ZAXHostDocument& document);

/// The one object of \a document that \a text stands for: by its ObjectAddress(); by its name, label, catalogue key or,
/// where it is an extension or not available, class; by a path of such words that ends with it and need not start at
/// the top; else a material by its type. Letter case counts. Never null. \throws Failure (WrongUsage) when there is
/// none or more than one, with those that come close or those there are.
ZAXFeatObject* FindObject(const ZAXHostDocument& document, const QString& text);

} // namespace zaxmat

#endif
