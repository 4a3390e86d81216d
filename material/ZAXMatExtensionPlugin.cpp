#include "ZAXMatExtensionPlugin.h"

namespace {

QList<ZAXMatExtensionPlugin*>& Registry()
{
    static QList<ZAXMatExtensionPlugin*> registry;
    return registry;
}

} // namespace

ZAXMatExtensionPlugin::ZAXMatExtensionPlugin()
{
    Registry().append(this);
}

ZAXMatExtensionPlugin::ZAXMatExtensionPlugin(const ZAXMatExtensionPlugin&) {}

ZAXMatExtensionPlugin& ZAXMatExtensionPlugin::operator=(const ZAXMatExtensionPlugin&)
{
    return *this;
}

ZAXMatExtensionPlugin::~ZAXMatExtensionPlugin()
{
    Registry().removeAll(this);
}

QList<ZAXMatExtensionPlugin*> ZAXMatExtensionPlugin::GetPlugins()
{
    return Registry();
}
