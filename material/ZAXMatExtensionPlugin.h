#ifndef ZAXMATEXTENSIONPLUGIN_H
#define ZAXMATEXTENSIONPLUGIN_H

#include "ZAXMatGlobal.h"

#include <QList>

/// Announces one material extension type and one packaging extension type of another module, for as long as the object
/// lives; typically a static object of that module's library. Plug-ins are created and deleted on one thread.
///
/// The order of the virtual operations is part of the interface, since other modules derive from this class.
class ZAXMATERIAL_EXPORT ZAXMatExtensionPlugin
{
public:
    /// Appends the plug-in to the registry.
    ZAXMatExtensionPlugin();
    /// A plug-in that is not registered: only the default constructor does that.
    ZAXMatExtensionPlugin(const ZAXMatExtensionPlugin& other);
    /// Does nothing; who is registered stays so.
    ZAXMatExtensionPlugin& operator=(const ZAXMatExtensionPlugin& other);
    /// Takes the plug-in out of the registry, if it is there.
    virtual ~ZAXMatExtensionPlugin();

    /// The meta-object of a class derived from ZAXMatMaterialExtension; never null. Its class name is the extension key
    /// in catalogue records and the name by which a material finds or creates the extension.
    virtual const QMetaObject* GetMaterialExtensionMetaObject() const = 0;
    /// The same for a class derived from ZAXMatPackagingExtension.
    virtual const QMetaObject* GetPackagingExtensionMetaObject() const = 0;

    /// The registered plug-ins in the order of their registration. The list is a copy that later registrations do not
    /// change; the plug-ins belong to their modules.
    static QList<ZAXMatExtensionPlugin*> GetPlugins();
};

#endif
