/* Fault: starts, but never lets itself be enabled. */
#include "AVSK/AVSKPlugins.h"

#include <string.h>

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    strcpy(outName, "Refuses Enable");
    strcpy(outSignature, "zoo.refuses-enable");
    strcpy(outDescription, "");
    return 1;
}

void AVPluginStop(void) {}
int AVPluginEnable(void) { return 0; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender;
    (void)message;
    (void)parameter;
}
