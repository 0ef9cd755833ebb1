/* Fault: has the signature of RefusesEnable. */
#include "AVSK/AVSKPlugins.h"

#include <string.h>

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    strcpy(outName, "Duplicate");
    strcpy(outSignature, "zoo.refuses-enable");
    strcpy(outDescription, "");
    return 1;
}

void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender;
    (void)message;
    (void)parameter;
}
