#include "ZAXHostDuplicator.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXHostStateLoader.h"

#include <QLoggingCategory>
#include <QPointer>
#include <QScopeGuard>

namespace {

Q_LOGGING_CATEGORY(logDuplicator, "zax.host.duplicator")

qsizetype PlaceBehind(const ZAXFeatObject* source)
{
    const ZAXFeatObject* const parent = source->GetParent();
    const auto siblings = parent ? parent->GetChildren() : ZAXFeatObjectPrivate::Get(*source).container->GetRoots();
    return siblings.indexOf(source) + 1;
}

} // namespace

ZAXFeatObject* ZAXHostDuplicator::Duplicate(ZAXFeatObject* source)
{
    if (ZAXFeatObjectPrivate::Get(*source).isAside) {
        qCWarning(logDuplicator, "%s is not duplicated: it was removed.", qUtf8Printable(source->GetLabel()));
        return nullptr;
    }
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
    loader.SetUnavailable(
        [container](const ZAXGeoGeometryRef& reference) { return !container->GetGeometryByRef(reference); });
    // What features outside made of the copy must not outlive it.
    auto cleanUp = qScopeGuard([&] {
        try {
            ZAXFeatObjectPrivate::Get(*top).ReleasePointers();
        } catch (const std::exception& exception) {
            qCWarning(logDuplicator, "A reference to a discarded copy was not released: %s", exception.what());
        }
    });
    for (const ZAXFeatObject* original : originals) {
        ZAXGeoStream stream(original->GetContainer());
        original->Save(stream);
        loader.Load(copies.value(original), stream.GetPayload(), stream.GetReferences());
    }
    loader.EndLoad();
    for (const ZAXFeatObject* original : originals)
        copies.value(original)->PostDuplicate(original, source);

    cleanUp.dismiss();
    QList<ZAXFeatObject*> announced;
    for (const ZAXFeatObject* original : originals)
        announced.append(copies.value(original));
    const QPointer<ZAXFeatObject> copy = top.release();
    ZAXFeatObjectPrivate::Announce(announced);
    const bool isThere = copy && !ZAXFeatObjectPrivate::Get(*copy).isAside;
    return isThere ? copy.data() : nullptr;
}
