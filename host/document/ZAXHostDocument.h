#ifndef ZAXHOSTDOCUMENT_H
#define ZAXHOSTDOCUMENT_H

#include "ZAXHostExport.h"
#include "ZAXHostProblem.h"
#include "ZAXHostResult.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <memory>

class QIODevice;
struct QMetaObject;
class ZAXFeatContainer;
class ZAXFeatObject;
class ZAXHostDocumentPrivate;
class ZAXHostFileSystem;
class ZAXHostUndo;

/// A document of the application: a tree of features, the changes that can be undone, and the file it is kept in.
class ZAXHOST_EXPORT ZAXHostDocument
{
public:
    /// What to do with a file that is not what was written.
    enum Damage
    {
        RefuseDamage,  ///< fail, and say where the damage is
        RecoverDamage, ///< load the objects that are whole; GetProblems() lists the others
    };

    /// A new, empty document without a file.
    ZAXHostDocument();
    ~ZAXHostDocument();
    ZAXHostDocument(const ZAXHostDocument&) = delete;
    ZAXHostDocument& operator=(const ZAXHostDocument&) = delete;

    /// The features; never null. The document owns the container; a successful Load() or Open() replaces it.
    ZAXFeatContainer* GetContainer() const;
    /// Tells documents apart; kept in the file, and given at the making of a document.
    QUuid GetDocumentId() const;
    /// Undo and redo of the document's changes. Loading another document forgets all steps.
    ZAXHostUndo& GetUndo() const;
    /// True when features changed since the document was made, opened or saved to its file.
    bool IsModified() const;

    /// The file of the document; empty for none.
    QString GetPath() const;
    /// Why the document must not be saved to GetPath(), for the user: somebody else has it open, say. Empty for no such
    /// reason; that it IsDamaged() is another one.
    QString GetReadOnlyReason() const;
    /// What could not be brought back as it was saved.
    QList<ZAXHostProblem> GetProblems() const;
    /// True when part of the document's file was lost: saving to that file is refused until AcceptDamage(), as it would
    /// make the loss final. Saved elsewhere, the document is whole; the damaged file stays protected.
    bool IsDamaged() const;
    void AcceptDamage();

    /// Replaces the document by the one that \a device holds from its present position to its end: all objects are
    /// made first, then each is loaded, then ZAXGeoGeometry::EndStateLoad() runs on each. An object whose class is
    /// missing or older than the file, or that does not take its data, becomes a ZAXHostPlaceholder and is listed by
    /// GetProblems(). A failure leaves the document as it was. The document has no file then.
    ZAXHostResult Load(QIODevice* device, Damage damage = RefuseDamage);
    /// Writes the document to \a device.
    ZAXHostResult Save(QIODevice* device);

    /// Load() from the file \a path, which is locked as long as it is the document's file; if it cannot be locked the
    /// document is read-only.
    ZAXHostResult Open(const QString& path, Damage damage = RefuseDamage);
    /// Writes the document to the file \a path, which becomes its file: aside first, then in the place of the old
    /// file, and reads it back. Whatever fails, the file is the old one or the new one, and the document counts as
    /// changed until it is done. Refused for a file that somebody else has open or had when it was opened here, for
    /// the damaged file, and while the document's undo is busy.
    ZAXHostResult SaveAs(const QString& path);
    /// SaveAs() through \a system.
    ZAXHostResult SaveAs(const QString& path, ZAXHostFileSystem& system);

    /// The bytes that Save() writes.
    /// \throws ZAXSysException for a tree nested more deeply than files can hold.
    QByteArray Encode() const;

    /// The features of class \a type or one derived from it, in the tree or waiting for undo: what still needs the
    /// module of the class.
    QList<ZAXFeatObject*> GetInstances(const QMetaObject* type) const;
    /// Makes placeholders of all features of the classes \a types and those derived from them, so that their module
    /// can leave, and forgets all steps of undo. The document's bytes stay as they are; the container is replaced.
    /// Refused while the document's undo is busy, and while somebody holds a reference count on a feature.
    ZAXHostResult ConvertToPlaceholders(const QList<const QMetaObject*>& types);

private:
    std::unique_ptr<ZAXHostDocumentPrivate> d_ptr;
};

#endif
