/* Fault: lacks AVPluginStart, the one entry point that is required. */
#include "OtherEntries.h"
