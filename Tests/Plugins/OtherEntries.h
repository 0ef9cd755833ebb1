/* The remaining entry points of a plugin with a fault in another place. */
#include "AVSK/AVSKPlugins.h"

#include <string.h>

void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender;
    (void)message;
    (void)parameter;
}
