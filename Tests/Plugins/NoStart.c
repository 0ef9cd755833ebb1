/* Fault: lacks AVPluginStart, the one entry point that is required. */
#include "AVSK/AVSKPlugins.h"

void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender;
    (void)message;
    (void)parameter;
}
