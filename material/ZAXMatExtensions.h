#ifndef ZAXMATEXTENSIONS_H
#define ZAXMATEXTENSIONS_H

// Private: what the extensions of materials and those of packagings share.

#include "ZAXFeatObjectListProperty.h"
#include "ZAXFeatValueProperty.h"
#include "ZAXMatFeatures.h"

#include <QByteArrayView>
#include <QSet>

#include <algorithm>

/// The data of an extension base class: its switch.
template <typename Extension>
class ZAXMatExtensionPrivate
{
public:
    explicit ZAXMatExtensionPrivate(Extension* extension)
        : q_ptr(extension),
          isExtensionEnabled(extension,
                             Extension::staticMetaObject.indexOfProperty(Extension::Property_isExtensionEnabled), false,
                             true)
    {
    }

    Extension* q_ptr;
    ZAXFeatValueProperty<bool> isExtensionEnabled;
};

/// The list of extensions that a material and a packaging each keep beside their children.
namespace ZAXMatExtensions {

/// The first item of \a list whose class is named \a key; null when there is none.
template <typename Extension>
Extension* Find(const ZAXFeatObjectListProperty<Extension>& list, const QByteArray& key)
{
    const QList<Extension*> extensions = list.GetObjects();
    const auto found = std::ranges::find_if(extensions, [&key](const Extension* extension) {
        return extension && QByteArrayView(extension->metaObject()->className()) == QByteArrayView(key);
    });
    return found == extensions.end() ? nullptr : *found;
}

/// Has the host create an extension of the class \a key as a child of the list's feature, and lists it.
/// \throws ZAXSysException with \a refusal when nothing comes of it, or something else.
template <typename Extension>
Extension* Create(ZAXFeatObjectListProperty<Extension>& list, const QByteArray& key, QLatin1String refusal)
{
    // Creating the extension and listing it is one undoable change.
    const ZAXFeatPropertyChange change(list);
    ZAXFeatObject* const owner = list.GetFeature();
    auto* const container = qobject_cast<ZAXFeatContainer*>(owner->GetContainer());
    auto* const extension = container ? qobject_cast<Extension*>(container->CreateInstance(key, owner)) : nullptr;
    if (!extension)
        throw ZAXSysException(refusal);
    list.Add(extension, false);
    return extension;
}

/// Lists the extension children of the list's feature anew, in no particular order, when one of them is missing in
/// the list. A list that holds them all is left alone, whatever else it holds.
template <typename Extension>
void ListMissingChildren(ZAXFeatObjectListProperty<Extension>& list)
{
    const QList<Extension*> children = ZAXMatFeatures::Only<Extension>(list.GetFeature()->GetChildren());
    if (children.isEmpty())
        return;
    const QList<Extension*> listed = list.GetObjects();
    const QSet<Extension*> owned(children.begin(), children.end());
    if (QSet<Extension*>(listed.begin(), listed.end()).contains(owned))
        return;
    list.Clear(false);
    for (Extension* extension : owned)
        list.Add(extension, true);
}

} // namespace ZAXMatExtensions

#endif
