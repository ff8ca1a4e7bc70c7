#include <zentara/export.h>

ZENTARA_PLUGIN_EXPORT int answer() { return 42; }
