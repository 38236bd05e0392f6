#pragma once

#include <QtGlobal>

#if defined(PLUGINFRAMEWORK_LIBRARY)
#  define PLUGINFRAMEWORK_EXPORT Q_DECL_EXPORT
#else
#  define PLUGINFRAMEWORK_EXPORT Q_DECL_IMPORT
#endif
