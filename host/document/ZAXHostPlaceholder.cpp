#include "ZAXHostPlaceholder.h"

#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXHostDocumentCodec.h"

#include <QCoreApplication>

class ZAXHostPlaceholderPrivate
{
public:
    QList<ZAXHostDocumentClass> classes;
    QByteArray payload;
    QList<ZAXGeoGeometryRef> references;
    QString reason;
};

// In the global namespace, where the stream operators of lists look for them.
static QDataStream& operator<<(QDataStream& stream, const ZAXHostDocumentClass& type)
{
    return stream << type.name << qint32(type.version);
}

static QDataStream& operator>>(QDataStream& stream, ZAXHostDocumentClass& type)
{
    qint32 version = 1;
    stream >> type.name >> version;
    type.version = version;
    return stream;
}

ZAXHostPlaceholder::ZAXHostPlaceholder(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container), d_ptr(std::make_unique<ZAXHostPlaceholderPrivate>())
{
    ZAXFeatObjectPrivate::Get(*this).isPlaceholder = true;
    if (container)
        ZAXGeoContainerPrivate::Get(*container).placeholders.insert(GetId());
}

ZAXHostPlaceholder::~ZAXHostPlaceholder()
{
    if (GetContainer())
        ZAXGeoContainerPrivate::Get(*GetContainer()).placeholders.remove(GetId());
}

void ZAXHostPlaceholder::SetObject(const QList<ZAXHostDocumentClass>& classes, const QByteArray& payload,
                                   const QList<ZAXGeoGeometryRef>& references, const QString& reason)
{
    // It may lie in a file that was read.
    *d_ptr = {classes, QByteArrayView(payload).toByteArray(), references, reason};
}

QByteArray ZAXHostPlaceholder::GetClassName() const
{
    return d_ptr->classes.isEmpty() ? QByteArray() : d_ptr->classes.constFirst().name;
}

QList<ZAXHostDocumentClass> ZAXHostPlaceholder::GetClasses() const
{
    return d_ptr->classes;
}

QByteArray ZAXHostPlaceholder::GetPayload() const
{
    return d_ptr->payload;
}

QList<ZAXGeoGeometryRef> ZAXHostPlaceholder::GetReferences() const
{
    return d_ptr->references;
}

QString ZAXHostPlaceholder::GetReason() const
{
    return d_ptr->reason;
}

QString ZAXHostPlaceholder::GetLabel() const
{
    return QCoreApplication::translate("ZAXHostPlaceholder", "%1 (not available)")
        .arg(QString::fromUtf8(GetClassName()));
}

bool ZAXHostPlaceholder::IsChildAllowed(const QMetaObject*) const
{
    return false;
}

void ZAXHostPlaceholder::Save(ZAXGeoStream& stream) const
{
    ZAXFeatObject::Save(stream);
    stream << d_ptr->reason << d_ptr->classes << d_ptr->payload << d_ptr->references;
}

void ZAXHostPlaceholder::Load(ZAXGeoStream& stream)
{
    ZAXFeatObject::Load(stream);
    stream >> d_ptr->reason >> d_ptr->classes >> d_ptr->payload >> d_ptr->references;
    for (ZAXGeoGeometryRef& reference : d_ptr->references)
        reference = stream.MapReference(reference);
}
