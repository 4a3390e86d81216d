#include "ZAXSysModules.h"

#include <QList>

#include <dlfcn.h>

namespace {

QList<std::function<void(const void*)>>& Releases()
{
    // Never destroyed: modules may leave after the statics of this library are gone.
    static auto* const releases = new QList<std::function<void(const void*)>>;
    return *releases;
}

} // namespace

const void* ZAXSysModules::ModuleOf(const void* address)
{
    Dl_info info{};
    return address && dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

void ZAXSysModules::OnLeave(const std::function<void(const void*)>& release)
{
    Releases().append(release);
}

void ZAXSysModules::Leave(const void* module)
{
    if (!module)
        return;
    const auto releases = Releases();
    for (const auto& release : releases)
        release(module);
}
