#ifndef ZAXSYSSTARTUP_H
#define ZAXSYSSTARTUP_H

#include "ZAXSysExport.h"

/// The start of the host: the moment from which the functions queued with ZAXSysRegisterInit() have run.
namespace ZAXSysStartup {

/// Starts the host: runs the queued functions in the order in which they were queued, those queued meanwhile
/// included. Calling it again, or from one of them, does nothing. An exception of a function passes through; the
/// functions behind it run at the next call.
ZAXSYSTEM_EXPORT void Start();

/// True from the moment Start() is entered.
ZAXSYSTEM_EXPORT bool IsStarted();

} // namespace ZAXSysStartup

#endif
