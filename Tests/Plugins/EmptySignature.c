/* Fault: fills in no text, so its signature is empty. */
#include "OtherEntries.h"

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    (void)outName;
    (void)outSignature;
    (void)outDescription;
    return 1;
}
