#pragma once

#include <QtGlobal>

#if defined(KVTYPES_LIBRARY)
#define KVTYPES_EXPORT Q_DECL_EXPORT
#else
#define KVTYPES_EXPORT Q_DECL_IMPORT
#endif
