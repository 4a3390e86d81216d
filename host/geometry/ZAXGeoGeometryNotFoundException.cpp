#include "ZAXGeoGeometryNotFoundException.h"

#include "ZAXGeoGeometryRef.h"

ZAXGeoGeometryNotFoundException::ZAXGeoGeometryNotFoundException(const ZAXGeoGeometryRef& reference)
    : ZAXSysException(QString(QLatin1String("The object with the reference %1 was not found, or is of another kind."))
                          .arg(reference.GetId()))
{
}

ZAXGeoGeometryNotFoundException::ZAXGeoGeometryNotFoundException(const ZAXGeoGeometryNotFoundException&) noexcept =
    default;

ZAXGeoGeometryNotFoundException&
ZAXGeoGeometryNotFoundException::operator=(const ZAXGeoGeometryNotFoundException&) noexcept = default;

ZAXGeoGeometryNotFoundException::~ZAXGeoGeometryNotFoundException() noexcept = default;

void ZAXGeoGeometryNotFoundException::raise() const
{
    throw *this;
}

ZAXGeoGeometryNotFoundException* ZAXGeoGeometryNotFoundException::clone() const
{
    return new ZAXGeoGeometryNotFoundException(*this);
}
