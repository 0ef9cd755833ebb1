// MessengerPong: answers each of Ping's messages with one of its own.
#include "Messages.h"

#include <AVSK/AVSK.h>

#include <cstdio>

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "MessengerPong");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "%s", messenger::kPongSignature);
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Returns the messages of MessengerPing.");
    return 1;
}

void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    if (message != messenger::kServe || sender != AVSKFindPluginBySignature(messenger::kPingSignature))
        return;
    const auto *served = static_cast<const messenger::Ball *>(parameter);
    char line[AVSK_TEXT_SIZE];
    std::snprintf(line, sizeof line, "MessengerPong: rally %d, returned\n", served->rally);
    AVSKDebugString(line);

    // Reply with a copy, since the original belongs to the sender. Ping receives the reply inside this call,
    // which is itself inside Ping's call.
    messenger::Ball ball = *served;
    AVSKSendMessageToPlugin(sender, messenger::kReturn, &ball);
}

// These are empty: the log reports every entry point that a plugin lacks.
void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
