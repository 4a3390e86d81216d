#ifndef ZAXHOSTDOCUMENTCODEC_H
#define ZAXHOSTDOCUMENTCODEC_H

#include "ZAXGeoGeometryRef.h"
#include "ZAXHostExport.h"
#include "ZAXHostResult.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QUuid>

/// A class that has a part in the payloads of a document.
struct ZAXHostDocumentClass
{
    QByteArray name;
    int version = 1;
    /// Index of the base class in the table, which stands before this one; -1 for none.
    qint32 base = -1;

    friend bool operator==(const ZAXHostDocumentClass&, const ZAXHostDocumentClass&) = default;
};

/// One object of a document as it is stored.
struct ZAXHostDocumentRecord
{
    /// Index of the object's class in the table.
    quint32 classIndex = 0;
    quint64 id = 0;
    /// Id of the parent; 0 at the top.
    quint64 parent = 0;
    /// Place among the children of the parent, from 0.
    quint32 place = 0;
    QList<ZAXGeoGeometryRef> references;
    QByteArray payload;

    friend bool operator==(const ZAXHostDocumentRecord&, const ZAXHostDocumentRecord&) = default;
};

/// A part of a document file that is not what was written.
struct ZAXHOST_EXPORT ZAXHostDocumentDamage
{
    /// The bytes it is about.
    qsizetype position = 0;
    qsizetype size = 0;
    /// Which object it was, as far as the file still tells; 0 and empty if it does not.
    quint64 id = 0;
    QByteArray className;
    /// What is wrong, to be translated; "%1" stands for the id. No text of its own: a file may be damaged all over.
    const char* what = "";

    /// The damage in the user's words.
    QString GetMessage() const;
};

/// What a document file holds, before any object of it is made.
struct ZAXHOST_EXPORT ZAXHostDocumentImage
{
    QUuid documentId;
    /// The highest id that the document ever gave to an object that was saved.
    quint64 lastId = 0;
    QList<ZAXHostDocumentClass> classes;
    /// Parents before their children, siblings in their order. In a damaged file the parent may be missing.
    QList<ZAXHostDocumentRecord> records;
    /// Empty for a file that is as it was written.
    QList<ZAXHostDocumentDamage> damages;
    /// What payloads of the records may lie in: they are no longer good than this.
    QByteArray data;

    /// The index of the class described by \a chain, most derived class first; it is entered if need be.
    quint32 AddClass(const QList<ZAXHostDocumentClass>& chain);
    /// The class at \a index and its bases, most derived class first.
    QList<ZAXHostDocumentClass> GetChain(quint32 index) const;
    /// The versions of these, by their names.
    QHash<QByteArray, int> GetVersions(quint32 index) const;
};

/// The bytes of a document file. The format is described in docs/formats.md.
namespace ZAXHostDocumentCodec {

/// How deep objects may be nested in a document, the one at the top counted as 1.
constexpr int maximumNesting = 256;

/// The bytes of \a image; the same image always gives the same bytes.
ZAXHOST_EXPORT QByteArray Encode(const ZAXHostDocumentImage& image);

/// Reads \a bytes into \a image, whose payloads then lie in them. Fails, and leaves \a image as it is, for what is not
/// such a file, was written by a newer program that this one must not read, or has a damaged header. Of a file that is
/// damaged behind the header it reads the objects that are whole and lists the damages: every changed bit shows in one.
ZAXHOST_EXPORT ZAXHostResult Decode(const QByteArray& bytes, ZAXHostDocumentImage& image);

/// Fails when \a bytes do not give \a image back, to the last bit.
ZAXHOST_EXPORT ZAXHostResult Check(const QByteArray& bytes, const ZAXHostDocumentImage& image);

} // namespace ZAXHostDocumentCodec

#endif
