/*
 * Template: the smallest whole plugin, in plain C. Copy this file, change the
 * three texts and fill in the bodies. Only AVPluginStart is required.
 */
#include <AVSK/AVSK.h>

#include <stdio.h>

/* Called when the plugin is loaded. Fill in the texts and register callbacks; they are called once it is enabled. */
int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    snprintf(outName, AVSK_TEXT_SIZE, "Template");
    /* The signature must be unique: begin it with your organisation. */
    snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.template");
    snprintf(outDescription, AVSK_TEXT_SIZE, "The plugin to start from.");
    AVSKDebugString("Template: start\n");
    return 1; /* 0 refuses, and the plugin is unloaded */
}

/* Called before the plugin is unloaded. Free your own memory; the library removes what you registered. */
void AVPluginStop(void) { AVSKDebugString("Template: stop\n"); }

/* Called when every plugin has started: the first place to look for other plugins. */
int AVPluginEnable(void) {
    AVSKDebugString("Template: enable\n");
    return 1; /* 0 stays disabled */
}

/* After this no callback is called until the next enable. */
void AVPluginDisable(void) { AVSKDebugString("Template: disable\n"); }

/* Receives a message from the simulator (sender 0) or from another plugin. */
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    char line[AVSK_TEXT_SIZE];
    (void)parameter;
    snprintf(line, sizeof line, "Template: message %d from plugin %d\n", message, sender);
    AVSKDebugString(line);
}
