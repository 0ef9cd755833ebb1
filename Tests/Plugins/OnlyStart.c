/* Fault: exports none of the optional entry points. */
#include "AVSK/AVSKPlugins.h"

#include <string.h>

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    strcpy(outName, "Only Start");
    strcpy(outSignature, "zoo.only-start");
    strcpy(outDescription, "Exports nothing else");
    return 1;
}
