#include "ZAXProbeGeometry.h"

#include "ZAXGeoStream.h"
#include "ZAXProbeJournal.h"

ZAXProbeGeometry::ZAXProbeGeometry(ZAXGeoContainer* container) : ZAXGeoGeometry(container) {}

ZAXProbeGeometry::ZAXProbeGeometry(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXGeoGeometry(reference, container)
{
}

ZAXProbeGeometry::~ZAXProbeGeometry()
{
    ZAXProbeJournal::Note(QStringLiteral("destroyed"));
}

void ZAXProbeGeometry::Save(ZAXGeoStream& stream) const
{
    ZAXGeoGeometry::Save(stream);
    stream << number << target;
}

void ZAXProbeGeometry::Load(ZAXGeoStream& stream)
{
    ZAXGeoGeometry::Load(stream);
    ZAXProbeJournal::Note(QStringLiteral("Load"));
    stream >> number >> target;
}

void ZAXProbeGeometry::BeginStateLoad()
{
    ZAXGeoGeometry::BeginStateLoad();
    ZAXProbeJournal::Note(QStringLiteral("BeginStateLoad"));
}

void ZAXProbeGeometry::EndStateLoad()
{
    ZAXGeoGeometry::EndStateLoad();
    ZAXProbeJournal::Note(QStringLiteral("EndStateLoad"));
}
