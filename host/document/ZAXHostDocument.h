#ifndef ZAXHOSTDOCUMENT_H
#define ZAXHOSTDOCUMENT_H

#include "ZAXHostExport.h"
#include "ZAXHostResult.h"

#include <QString>
#include <QUuid>

#include <memory>

class QIODevice;
class ZAXFeatContainer;
class ZAXHostDocumentPrivate;

/// A document of the application: a tree of features and the file that it is kept in.
class ZAXHOST_EXPORT ZAXHostDocument
{
public:
    /// A new, empty document without a file.
    ZAXHostDocument();
    ~ZAXHostDocument();
    ZAXHostDocument(const ZAXHostDocument&) = delete;
    ZAXHostDocument& operator=(const ZAXHostDocument&) = delete;

    /// The features; never null. The document owns the container; a successful Load() or Open() replaces it.
    ZAXFeatContainer* GetContainer() const;
    /// Tells documents apart; kept in the file, and given at the making of a document.
    QUuid GetDocumentId() const;
    /// True when features changed since the document was made, loaded or saved by SaveAs(). What happens to a feature
    /// before it is announced is part of its coming, and a feature that is deleted otherwise than by
    /// ZAXFeatObject::Remove() goes unnoticed.
    bool IsModified() const;

    /// Replaces the document by the one that \a device holds from its present position to its end: all objects are
    /// made first, then each is loaded, then ZAXGeoGeometry::EndStateLoad() runs on each. A failure leaves the document
    /// as it was, and so does an exception of a feature that is no ZAXSysException and passes through.
    ZAXHostResult Load(QIODevice* device);
    /// Writes the document to \a device.
    ZAXHostResult Save(QIODevice* device) const;

    /// Load() from the file \a path.
    ZAXHostResult Open(const QString& path);
    /// Writes the document to the file \a path: aside first, then in the place of the old file, and reads it back.
    /// Whatever fails, the file is the old one or the new one, and the document counts as changed until it is done.
    ZAXHostResult SaveAs(const QString& path);

    /// The bytes that Save() writes.
    /// \throws ZAXSysException for a tree nested more deeply than files can hold.
    QByteArray Encode() const;

private:
    std::unique_ptr<ZAXHostDocumentPrivate> d_ptr;
};

#endif
