#ifndef ZAXGEOGEOMETRYNOTFOUNDEXCEPTION_H
#define ZAXGEOGEOMETRYNOTFOUNDEXCEPTION_H

#include "ZAXGeoExport.h"
#include "ZAXSysException.h"

class ZAXGeoGeometryRef;

/// A stored reference that leads to no geometry, or to one of another kind than the reader needs.
class ZAXGEOMETRY_EXPORT ZAXGeoGeometryNotFoundException : public ZAXSysException
{
public:
    /// The message names the id of \a reference.
    explicit ZAXGeoGeometryNotFoundException(const ZAXGeoGeometryRef& reference);
    ZAXGeoGeometryNotFoundException(const ZAXGeoGeometryNotFoundException&) noexcept;
    ZAXGeoGeometryNotFoundException& operator=(const ZAXGeoGeometryNotFoundException&) noexcept;
    ~ZAXGeoGeometryNotFoundException() noexcept override;

    void raise() const override;
    ZAXGeoGeometryNotFoundException* clone() const override;
};

#endif
