/* Fault: lacks AVPluginStart, the only required entry point. */
#include "OtherEntries.h"
