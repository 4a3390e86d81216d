#include "ZAXFeatRoot.h"

#include "ZAXFeatObjectPrivate.h"

#include <algorithm>

ZAXFeatRoot::ZAXFeatRoot(ZAXFeatContainer* container) : ZAXFeatFolder(container, nullptr) {}

ZAXFeatRoot::ZAXFeatRoot(const ZAXGeoGeometryRef& reference, ZAXGeoContainer* container)
    : ZAXFeatFolder(container, reference)
{
}

ZAXFeatRoot::~ZAXFeatRoot() = default;

void ZAXFeatRoot::Save(ZAXGeoStream& stream) const
{
    ZAXFeatFolder::Save(stream);
}

void ZAXFeatRoot::Load(ZAXGeoStream& stream)
{
    ZAXFeatFolder::Load(stream);
}

void ZAXFeatRoot::EndStateLoad()
{
    ZAXFeatFolder::EndStateLoad();
}

bool ZAXFeatRoot::IsChildAllowed(const QMetaObject* childType) const
{
    // Not what a folder does, which leaves that to its parent.
    return ZAXFeatObject::IsChildAllowed(childType); // NOLINT(bugprone-parent-virtual-call)
}

bool ZAXFeatRoot::IsUserDeletable() const
{
    return false;
}

ZAXFeatObject::MoveActions ZAXFeatRoot::GetAllowedMoveActions() const
{
    return NoMove;
}

bool ZAXFeatRoot::CanUserDuplicate() const
{
    return false;
}

ZAXFeatFolder* ZAXFeatRoot::GetFallbackDefaultFolder()
{
    const auto children = GetChildren();
    const auto folder = std::ranges::find_if(
        children, [](const ZAXFeatObject* child) { return ZAXFeatObjectPrivate::IsPlainFolder(child->metaObject()); });
    return folder != children.end() ? qobject_cast<ZAXFeatFolder*>(*folder) : this;
}
