#include "ZAXHostDuplicator.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXHostStateLoader.h"

namespace {

qsizetype PlaceBehind(const ZAXFeatObject* source)
{
    const ZAXFeatObject* const parent = source->GetParent();
    const auto siblings = parent ? parent->GetChildren() : ZAXFeatObjectPrivate::Get(*source).container->GetRoots();
    return siblings.indexOf(source) + 1;
}

} // namespace

ZAXFeatObject* ZAXHostDuplicator::Duplicate(ZAXFeatObject* source)
{
    ZAXFeatContainer* const container = ZAXFeatObjectPrivate::Get(*source).container;
    const ZAXFeatStep step(container);
    ZAXHostStateLoader loader(container);
    const auto originals = ZAXFeatObjectPrivate::Get(*source).Subtree();
    QHash<const ZAXFeatObject*, ZAXFeatObject*> copies;
    QHash<ZAXGeoGeometryRef, ZAXGeoGeometryRef> references;

    // Owns all copies: the others are attached below it as they are made.
    std::unique_ptr<ZAXFeatObject> top = loader.Make(source->metaObject(), {});
    ZAXFeatObjectPrivate::Get(*top).AttachTo(source->GetParent(), PlaceBehind(source));
    for (const ZAXFeatObject* original : originals) {
        ZAXFeatObject* const copy = original == source ? top.get() : loader.Make(original->metaObject(), {}).release();
        if (original != source)
            ZAXFeatObjectPrivate::Get(*copy).AttachTo(copies.value(original->GetParent()), -1);
        copies.insert(original, copy);
        references.insert(ZAXGeoGeometryRef(original), ZAXGeoGeometryRef(copy));
    }

    loader.SetReferenceMap([&](const ZAXGeoGeometryRef& reference) { return references.value(reference, reference); });
    for (const ZAXFeatObject* original : originals) {
        ZAXGeoStream stream(original->GetContainer());
        original->Save(stream);
        loader.Load(copies.value(original), stream.GetPayload(), stream.GetReferences());
    }
    loader.EndLoad();
    for (const ZAXFeatObject* original : originals)
        copies.value(original)->PostDuplicate(original, source);

    ZAXFeatObject* const copy = top.release();
    for (const ZAXFeatObject* original : originals)
        ZAXFeatObjectPrivate::Get(*copies.value(original)).Announce();
    return copy;
}
