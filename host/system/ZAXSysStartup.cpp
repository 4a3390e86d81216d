#include "ZAXSysStartup.h"

#include "ZAXSysModules.h"
#include "ZAXSysRegisterInit.h"

#include <QScopedValueRollback>

#include <deque>

namespace {

struct Queued
{
    std::function<void()> function;
    const void* module;
};

struct Startup
{
    Startup()
    {
        ZAXSysModules::OnLeave([this](const void* module) {
            std::erase_if(queue, [module](const Queued& queued) { return queued.module == module; });
        });
    }

    std::deque<Queued> queue;
    bool isStarted = false;
    bool isRunning = false;
};

Startup& Instance()
{
    // Never destroyed: modules may leave after the statics of this library are gone.
    static auto* const startup = new Startup;
    return *startup;
}

} // namespace

bool ZAXSysRegisterInit(const std::function<void()>& function)
{
    if (!function)
        return false;
    auto& startup = Instance();
    if (startup.isStarted && startup.queue.empty())
        function();
    else
        startup.queue.push_back({function, ZAXSysModules::ModuleOf(__builtin_return_address(0))});
    return true;
}

void ZAXSysStartup::Start()
{
    auto& startup = Instance();
    startup.isStarted = true;
    if (startup.isRunning)
        return;
    const QScopedValueRollback running(startup.isRunning, true);
    while (!startup.queue.empty()) {
        const Queued next = std::move(startup.queue.front());
        startup.queue.pop_front();
        next.function();
    }
}

bool ZAXSysStartup::IsStarted()
{
    return Instance().isStarted;
}
