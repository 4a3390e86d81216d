#ifndef ZAXGEOSTREAMDEVICE_H
#define ZAXGEOSTREAMDEVICE_H

// Private to the host: may change without notice.

#include "ZAXGeoGeometryRef.h"

#include <QBuffer>
#include <QHash>
#include <QList>

/// The buffer behind a ZAXGeoStream, by which the stream operators of a reference find the table it goes through.
class ZAXGeoStreamDevice : public QBuffer
{
public:
    const QList<ZAXGeoGeometryRef>& GetReferences() const { return m_references; }
    void SetReferences(const QList<ZAXGeoGeometryRef>& references)
    {
        m_references = references;
        m_places.clear();
    }

    /// seek() to what is there.
    void MoveTo(qint64 position)
    {
        // The buffer's own looks first whether there is anything to be filled up.
        QIODevice::seek(position); // NOLINT(bugprone-parent-virtual-call)
    }

    /// The place of \a reference in the table, counted from 1, where it is entered if need be; 0 for an invalid one.
    quint32 PlaceOf(const ZAXGeoGeometryRef& reference)
    {
        if (!reference.IsValid())
            return 0;
        quint32& place = m_places[reference];
        if (place == 0) {
            m_references.append(reference);
            place = static_cast<quint32>(m_references.size());
        }
        return place;
    }

private:
    QList<ZAXGeoGeometryRef> m_references;
    QHash<ZAXGeoGeometryRef, quint32> m_places;
};

#endif
