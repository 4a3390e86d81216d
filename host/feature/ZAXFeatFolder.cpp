#include "ZAXFeatFolder.h"

#include "ZAXFeatContainer.h"
#include "ZAXSysException.h"

namespace {

ZAXFeatObject* RequireParent(ZAXFeatObject* parent)
{
    if (!parent)
        throw ZAXSysException(QLatin1String("A folder needs a parent, or a document to stand at the top of."));
    return parent;
}

} // namespace

ZAXFeatFolder::ZAXFeatFolder(ZAXFeatContainer* container, ZAXFeatObject* parent) : ZAXFeatObject(container, parent) {}

ZAXFeatFolder::ZAXFeatFolder(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container)
{
}

ZAXFeatFolder::ZAXFeatFolder(ZAXFeatObject* parent)
    : ZAXFeatObject(qobject_cast<ZAXFeatContainer*>(RequireParent(parent)->GetContainer()), parent)
{
}

ZAXFeatFolder::ZAXFeatFolder(ZAXFeatContainer* container) : ZAXFeatObject(container, nullptr) {}

ZAXFeatFolder::~ZAXFeatFolder() = default;

bool ZAXFeatFolder::IsChildAllowed(const QMetaObject* childType) const
{
    return GetParent() ? GetParent()->IsChildAllowed(childType) : ZAXFeatObject::IsChildAllowed(childType);
}
