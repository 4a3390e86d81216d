#ifndef ZAXPROBENOTE_H
#define ZAXPROBENOTE_H

#include "ZAXFeatObject.h"
#include "ZAXFeatObjectListProperty.h"
#include "ZAXFeatObjectProperty.h"
#include "ZAXFeatValueProperty.h"

/// A feature with a text, a link and a list of links.
class ZAXProbeNote : public ZAXFeatObject
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbeNote(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXFeatObject(reference, container)
    {
    }

    void Save(ZAXGeoStream& stream) const override
    {
        ZAXFeatObject::Save(stream);
        stream << m_text << m_link << m_links;
    }

    void Load(ZAXGeoStream& stream) override
    {
        ZAXFeatObject::Load(stream);
        stream >> m_text >> m_link >> m_links;
    }

signals:
    void LinkAdded(ZAXFeatObject* feature);
    void LinkRemoved(ZAXFeatObject* feature);

private:
    ZAXFeatValueProperty<QString> m_text{this, -1, QString(), true};
    ZAXFeatObjectProperty<ZAXFeatObject> m_link{this, false};
    ZAXFeatObjectListProperty<ZAXFeatObject> m_links{this, -1, &ZAXProbeNote::LinkAdded, &ZAXProbeNote::LinkRemoved};
};

#endif
