#ifndef ZAXPROBEGEOMETRY_H
#define ZAXPROBEGEOMETRY_H

#include "ZAXGeoGeometry.h"

/// A geometry with a number and a reference, which writes down what is called on it.
class ZAXProbeGeometry : public ZAXGeoGeometry
{
    Q_OBJECT
    Q_CLASSINFO("version", "3")

public:
    explicit ZAXProbeGeometry(ZAXGeoContainer* container);
    Q_INVOKABLE ZAXProbeGeometry(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    ~ZAXProbeGeometry() override;

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    void BeginStateLoad() override;
    void EndStateLoad() override;

    double number = 0.0;
    ZAXGeoGeometryRef target;
};

/// Takes over everything but the version.
class ZAXProbeDerivedGeometry : public ZAXProbeGeometry
{
    Q_OBJECT

public:
    using ZAXProbeGeometry::ZAXProbeGeometry;
};

#endif
