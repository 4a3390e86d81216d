#ifndef ZAXHOSTPLACEHOLDER_H
#define ZAXHOSTPLACEHOLDER_H

#include "ZAXFeatObject.h"
#include "ZAXHostExport.h"

#include <memory>

class ZAXHostPlaceholderPrivate;
struct ZAXHostDocumentClass;

/// Stands in the tree for an object that this program cannot make: the module of its class is missing, a newer program
/// saved it, or its class does not read its data. Its data are kept as they are, references included, and saved again
/// byte for byte; when the class is there at a later load, the object comes to life.
///
/// A placeholder can be moved to parents of the same class as its own, with folders looked through, duplicated and
/// removed. For other features it is not there: references to it lead nowhere, but are kept until it is removed.
class ZAXHOST_EXPORT ZAXHostPlaceholder : public ZAXFeatObject
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Unknown Object")
    Q_CLASSINFO("version", "1")

public:
    /// An empty placeholder, to be filled by SetObject() or Load().
    Q_INVOKABLE ZAXHostPlaceholder(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    ~ZAXHostPlaceholder() override;

    /// Fills the placeholder: the class of the object and its bases, most derived first, its data, and why the object
    /// itself is not there.
    void SetObject(const QList<ZAXHostDocumentClass>& classes, const QByteArray& payload,
                   const QList<ZAXGeoGeometryRef>& references, const QString& reason);

    /// The name of the object's class.
    QByteArray GetClassName() const;
    /// The class and its bases, most derived first.
    QList<ZAXHostDocumentClass> GetClasses() const;
    QByteArray GetPayload() const;
    QList<ZAXGeoGeometryRef> GetReferences() const;
    /// Why the object itself is not there, for the user.
    QString GetReason() const;

    /// The class of the object, since its own label is among what cannot be read.
    QString GetLabel() const override;
    /// False: what the object would allow is not known.
    bool IsChildAllowed(const QMetaObject* childType) const override;

    /// The state of a placeholder within the program; a document stores the object instead.
    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;

private:
    std::unique_ptr<ZAXHostPlaceholderPrivate> d_ptr;
};

#endif
