/* Fault: a name as long as its buffer allows, and a description that overruns it. */
#include "AVSK/AVSKPlugins.h"

#include <string.h>

static void Fill(char *out, char letter, unsigned length) {
    memset(out, letter, length);
    out[length] = '\0';
}

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    Fill(outName, 'n', 255);
    Fill(outSignature, 's', 255);
    Fill(outDescription, 'd', 300);
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
