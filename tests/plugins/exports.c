/* Registers nothing, but shows the process a function of its own. */
#include <zelcore/zel.h>

ZEL_C_API int ExportedByATestPlugin(void);
int ExportedByATestPlugin(void) { return 42; }
