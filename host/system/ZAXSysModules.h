#ifndef ZAXSYSMODULES_H
#define ZAXSYSMODULES_H

#include "ZAXSysExport.h"

#include <functional>

/// Which loaded library a piece of code or data belongs to, and who has to let go of it before the library leaves
/// the process. Whatever the host keeps of a module (functions, values of its types) is tied to the module here.
namespace ZAXSysModules {

/// The module that \a address lies in, as a token to compare; null when it lies in none.
ZAXSYSTEM_EXPORT const void* ModuleOf(const void* address);

/// Has \a release called with the token of each module that leaves from now on, in the order of these calls.
ZAXSYSTEM_EXPORT void OnLeave(const std::function<void(const void* module)>& release);

/// Has everything that the host keeps of \a module released. Called while the module's code can still run: by the
/// host when the module takes back its last registered class, or by an application before it closes a module that
/// registers none. Null is ignored.
ZAXSYSTEM_EXPORT void Leave(const void* module);

} // namespace ZAXSysModules

#endif
