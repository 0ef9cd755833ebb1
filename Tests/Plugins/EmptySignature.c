/* Fault: fills in no text at all, so its signature is empty. */
#include "AVSK/AVSKPlugins.h"

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    (void)outName;
    (void)outSignature;
    (void)outDescription;
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
