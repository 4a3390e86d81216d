#ifndef ZAXMATGLOBAL_H
#define ZAXMATGLOBAL_H

#include <QtGlobal>

#ifdef ZAXMATERIAL_LIBRARY
#define ZAXMATERIAL_EXPORT Q_DECL_EXPORT
#else
#define ZAXMATERIAL_EXPORT Q_DECL_IMPORT
#endif

/// Whether the library is loaded and the host took its registration function.
extern ZAXMATERIAL_EXPORT bool _ZAXMaterialLoaded;

#endif
