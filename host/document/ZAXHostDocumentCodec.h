#ifndef ZAXHOSTDOCUMENTCODEC_H
#define ZAXHOSTDOCUMENTCODEC_H

#include "ZAXGeoGeometryRef.h"
#include "ZAXHostExport.h"
#include "ZAXHostResult.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QUuid>

/// One object of a document as it is stored.
struct ZAXHostDocumentRecord
{
    QByteArray className;
    quint64 id = 0;
    /// Id of the parent; 0 at the top.
    quint64 parent = 0;
    /// Place among the children of the parent, from 0.
    quint32 place = 0;
    QList<ZAXGeoGeometryRef> references;
    QByteArray payload;
};

/// What a document file holds, before any object of it is made.
struct ZAXHostDocumentImage
{
    QUuid documentId;
    /// The highest id that the document ever gave.
    quint64 lastId = 0;
    /// The versions of all classes that have a part in the payloads, bases included.
    QHash<QByteArray, int> versions;
    /// Parents before their children, siblings in their order.
    QList<ZAXHostDocumentRecord> records;
};

/// The bytes of a document file. The format is described in docs/formats.md.
namespace ZAXHostDocumentCodec {

/// How deep objects may be nested in a document, the one at the top counted as 1.
constexpr int maximumNesting = 256;

/// The bytes of \a image; the same image always gives the same bytes.
ZAXHOST_EXPORT QByteArray Encode(const ZAXHostDocumentImage& image);

/// Reads \a bytes into \a image. Fails, and leaves \a image as it is, for what is not such a file, was written by a
/// newer program that this one must not read, or is damaged in any bit.
ZAXHOST_EXPORT ZAXHostResult Decode(const QByteArray& bytes, ZAXHostDocumentImage& image);

} // namespace ZAXHostDocumentCodec

#endif
