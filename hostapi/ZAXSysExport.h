#ifndef ZAXSYSEXPORT_H
#define ZAXSYSEXPORT_H

#include <QtGlobal>

#ifdef ZAXSYSTEM_LIBRARY
#define ZAXSYSTEM_EXPORT Q_DECL_EXPORT
#else
#define ZAXSYSTEM_EXPORT Q_DECL_IMPORT
#endif

#endif
