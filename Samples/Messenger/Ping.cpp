// MessengerPing: finds Pong by its signature, sends it a message each second
// and hears the reply before its own call returns.
#include "Messages.h"

#include <AVSK/AVSK.h>

#include <cstdio>

namespace {

int gRally = 0;

float Serve(float /*sinceLastCall*/, float elapsed, int /*pass*/, void * /*refcon*/) {
    // IDs are found anew each time: after an unload another plugin may have Pong's.
    const AVSKPluginID pong = AVSKFindPluginBySignature(messenger::kPongSignature);
    if (pong == NO_PLUGIN_ID || AVSKIsPluginEnabled(pong) == 0) {
        AVSKDebugString("MessengerPing: nobody to play with\n");
        return 5.0F;
    }
    messenger::Ball ball{++gRally, elapsed};
    // The parameter is ours and on our stack. That is safe: messages are received inside this call.
    AVSKSendMessageToPlugin(pong, messenger::kServe, &ball);
    return 1.0F;
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "MessengerPing");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "%s", messenger::kPingSignature);
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Serves messages to MessengerPong.");
    // Create and schedule in one call. The loop goes with the plugin.
    AVSKRegisterFlightLoopCallback(Serve, 1.0F, nullptr);
    return 1;
}

void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    // Broadcasts of the simulator and of strangers arrive here too, and their parameters are not balls.
    if (message != messenger::kReturn || sender != AVSKFindPluginBySignature(messenger::kPongSignature))
        return;
    const auto *ball = static_cast<const messenger::Ball *>(parameter);
    char line[AVSK_TEXT_SIZE];
    std::snprintf(line, sizeof line, "MessengerPing: rally %d, served at %.2f s, came back\n", ball->rally,
                  static_cast<double>(ball->servedAt));
    AVSKDebugString(line);
}

// Nothing to do, but the log mentions each entry point that a plugin does not have.
void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
