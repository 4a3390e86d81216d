#ifndef ZAXSYSREGISTERINIT_H
#define ZAXSYSREGISTERINIT_H

#include "ZAXSysExport.h"

#include <functional>

/// Has the host run \a function once: when the host starts, after the functions queued before, or at once when it has
/// started already. Returns false for an empty function, which is ignored. Meant for static initialisers of modules;
/// a queued function is dropped when the module that queued it leaves the process first.
ZAXSYSTEM_EXPORT bool ZAXSysRegisterInit(const std::function<void()>& function);

#endif
