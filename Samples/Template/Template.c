/*
 * Template: the smallest whole plugin, in plain C. Copy this file, change the
 * three texts and fill in the bodies. Only AVPluginStart is required.
 */
#include <AVSK/AVSK.h>

#include <stdio.h>

/* Loaded. Say who you are and register what you need; callbacks begin once you are enabled. */
int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    snprintf(outName, AVSK_TEXT_SIZE, "Template");
    /* No other plugin may have this signature: yours begins with your organisation. */
    snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.template");
    snprintf(outDescription, AVSK_TEXT_SIZE, "The plugin to start from.");
    AVSKDebugString("Template: start\n");
    return 1; /* 0 refuses, and the plugin is unloaded */
}

/* About to be unloaded. Free what is yours; what you registered goes by itself. */
void AVPluginStop(void) { AVSKDebugString("Template: stop\n"); }

/* Every plugin has started by now, so this is the first place where others can be looked for. */
int AVPluginEnable(void) {
    AVSKDebugString("Template: enable\n");
    return 1; /* 0 stays disabled */
}

/* No more callbacks until the next enable. */
void AVPluginDisable(void) { AVSKDebugString("Template: disable\n"); }

/* A message: from the simulator (sender 0) or from another plugin. */
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    char line[AVSK_TEXT_SIZE];
    (void)parameter;
    snprintf(line, sizeof line, "Template: message %d from plugin %d\n", message, sender);
    AVSKDebugString(line);
}
