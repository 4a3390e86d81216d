#include "ZAXHostDuplicator.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXHostStateLoader.h"

#include <QHash>
#include <QPointer>

namespace {

qsizetype PlaceBehind(const ZAXFeatObject* source)
{
    const ZAXFeatObject* const parent = source->GetParent();
    const auto siblings = parent ? parent->GetChildren() : ZAXFeatObjectPrivate::Get(*source).container->GetRoots();
    return siblings.indexOf(source) + 1;
}

using Copies = QHash<const ZAXFeatObject*, ZAXFeatObject*>;

/// Makes an empty copy of each of \a originals but the first, below the copy of its parent, and enters it in \a copies.
void MakeBelow(ZAXHostStateLoader& loader, const QList<ZAXFeatObject*>& originals, Copies& copies)
{
    for (const ZAXFeatObject* original : originals.sliced(1)) {
        ZAXFeatObject* const copy = loader.Make(original->metaObject(), {}).release();
        ZAXFeatObjectPrivate::Get(*copy).AttachTo(copies.value(original->GetParent()), -1);
        copies.insert(original, copy);
    }
}

/// Loads the states of \a originals into their \a copies and completes these.
void Complete(ZAXHostStateLoader& loader, const QList<ZAXFeatObject*>& originals, const Copies& copies)
{
    QHash<ZAXGeoGeometryRef, ZAXGeoGeometryRef> references;
    for (const ZAXFeatObject* original : originals)
        references.insert(ZAXGeoGeometryRef(original), ZAXGeoGeometryRef(copies.value(original)));
    loader.SetReferenceMap([&](const ZAXGeoGeometryRef& reference) { return references.value(reference, reference); });
    for (const ZAXFeatObject* original : originals) {
        ZAXGeoStream stream(original->GetContainer());
        original->Save(stream);
        loader.Load(copies.value(original), stream.GetPayload(), stream.GetReferences());
    }
    loader.EndLoad();
    for (const ZAXFeatObject* original : originals)
        copies.value(original)->PostDuplicate(original, originals.constFirst());
}

} // namespace

ZAXFeatObject* ZAXHostDuplicator::Duplicate(ZAXFeatObject* source)
{
    ZAXHostStateLoader loader(ZAXFeatObjectPrivate::Get(*source).container);
    const auto originals = ZAXFeatObjectPrivate::Get(*source).Subtree();
    // Owns all copies: the others are attached below it as they are made.
    std::unique_ptr<ZAXFeatObject> top = loader.Make(source->metaObject(), {});
    ZAXFeatObjectPrivate::Get(*top).AttachTo(source->GetParent(), PlaceBehind(source));
    Copies copies{{source, top.get()}};
    MakeBelow(loader, originals, copies);
    try {
        Complete(loader, originals, copies);
    } catch (...) {
        ZAXFeatObjectPrivate::Get(*top).ReleasePointers();
        throw;
    }

    // A slot may do away with copies, and with originals.
    QList<QPointer<ZAXFeatObject>> announced;
    for (const ZAXFeatObject* original : originals)
        announced.append(copies.value(original));
    const QPointer<ZAXFeatObject> copy = top.release();
    for (const QPointer<ZAXFeatObject>& feature : std::as_const(announced)) {
        if (feature)
            ZAXFeatObjectPrivate::Get(*feature).Announce();
    }
    return copy;
}
