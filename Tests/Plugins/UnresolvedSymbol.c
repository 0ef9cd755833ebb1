/* Fault: calls a function that no library exports. */
#include "AVSK/AVSKPlugins.h"

extern int AvskTestExportedByNobody(void);

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    (void)outName;
    (void)outSignature;
    (void)outDescription;
    return AvskTestExportedByNobody();
}
