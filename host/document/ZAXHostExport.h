#ifndef ZAXHOSTEXPORT_H
#define ZAXHOSTEXPORT_H

#include <QtGlobal>

#ifdef ZAXHOST_LIBRARY
#define ZAXHOST_EXPORT Q_DECL_EXPORT
#else
#define ZAXHOST_EXPORT Q_DECL_IMPORT
#endif

#endif
