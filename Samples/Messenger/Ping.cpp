// MessengerPing: finds Pong by its signature, sends it a message each second and
// receives the reply before its own call returns.
#include "Messages.h"

#include <AVSK/AVSK.h>

#include <cstdio>

namespace {

int gRally = 0;

float Serve(float /*sinceLastCall*/, float elapsed, int /*pass*/, void * /*refcon*/) {
    // Look the ID up each time: after an unload another plugin may have it.
    const AVSKPluginID pong = AVSKFindPluginBySignature(messenger::kPongSignature);
    if (pong == NO_PLUGIN_ID || AVSKIsPluginEnabled(pong) == 0) {
        AVSKDebugString("MessengerPing: nobody to play with\n");
        return 5.0F;
    }
    messenger::Ball ball{++gRally, elapsed};
    // The parameter may be on the stack: the message is received inside this call.
    AVSKSendMessageToPlugin(pong, messenger::kServe, &ball);
    return 1.0F;
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "MessengerPing");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "%s", messenger::kPingSignature);
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Serves messages to MessengerPong.");
    // Creates and schedules a loop. The library destroys it when the plugin is unloaded.
    AVSKRegisterFlightLoopCallback(Serve, 1.0F, nullptr);
    return 1;
}

void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    // Broadcasts of the simulator and of other plugins arrive here too, with other parameters.
    if (message != messenger::kReturn || sender != AVSKFindPluginBySignature(messenger::kPongSignature))
        return;
    const auto *ball = static_cast<const messenger::Ball *>(parameter);
    char line[AVSK_TEXT_SIZE];
    std::snprintf(line, sizeof line, "MessengerPing: rally %d, served at %.2f s, came back\n", ball->rally,
                  static_cast<double>(ball->servedAt));
    AVSKDebugString(line);
}

// These are empty: the log reports every entry point that a plugin lacks.
void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
