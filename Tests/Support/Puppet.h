// A plugin whose every entry point is played by the test. One file, copied
// under as many names as a test wants plugins; each copy finds its puppet by
// its own path.
#ifndef AVSK_TESTS_PUPPET_H
#define AVSK_TESTS_PUPPET_H

#include "AVSK/AVSKCamera.h"
#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKMenus.h"
#include "AVSK/AVSKPlugins.h"
#include "AVSK/AVSKProcessing.h"
#include "AVSK/AVSKScenery.h"
#include "AVSK/AVSKUtilities.h"

#include <functional>
#include <string>
#include <type_traits>

using LoopPlayer = std::function<float(float, float, int)>;
using MenuPlayer = std::function<void(void *itemRef)>;
using IntPlayer = std::function<int()>;
using NoticePlayer = std::function<void()>;
using CommandPlayer = std::function<int(AVSKCommandRef command, int phase)>;
using ObjectPlayer = std::function<void(AVSKObjectRef object)>;
using CameraPlayer = std::function<int(AVSKCameraPosition *position, int isLosingControl)>;

// Callbacks that lie in the plugin's own code. Each runs the player its
// refcon points to, and then goes on in the plugin: that code must still be there.
struct PuppetCode {
    AVSKFlightLoop_f flightLoop;  // refcon: LoopPlayer
    AVSKMenuHandler_f menuPicked; // menuRef: MenuPlayer
    AVSKGetDatai_f readInt;       // refcon: IntPlayer
    AVSKDataChanged_f notified;   // refcon: NoticePlayer; also told of free aircraft
    AVSKCommandHandler_f command; // refcon: CommandPlayer
    AVSKObjectLoaded_f loaded;    // refcon: ObjectPlayer
    AVSKCameraControl_f camera;   // refcon: CameraPlayer
    void (*throwOwn)();           // throws an object whose destructor is the plugin's
};

struct Puppet {
    std::string label; // in the journal
    std::string path;
    std::string name;
    std::string signature;
    std::string description;
    // Empty ones accept and do nothing.
    std::function<int()> start;
    std::function<int()> enable;
    std::function<void()> disable;
    std::function<void()> stop;
    std::function<void(int sender, int message, void *parameter)> message;
    PuppetCode code = {}; // once it was started
    int returned = 0;     // how often a player came back into the plugin's code

    int Id() const { return AVSKFindPluginBySignature(signature.c_str()); }
    bool IsMapped() const;
    // Runs f as this plugin, which must be enabled, and answers what f does.
    template <class F>
    auto Run(F f) const {
        if constexpr (std::is_void_v<decltype(f())>) {
            Call(f);
        } else {
            decltype(f()) answer{};
            Call([&] { answer = f(); });
            return answer;
        }
    }
    void Call(const std::function<void()> &f) const;
};

// The message by which Run() reaches the plugin; it leaves no line in the journal.
constexpr int kRunMessage = 77777;

// What the plugin calls, in the test program.
extern "C" {
AVSK_API int AvskTestStart(const char *path, const PuppetCode *code, char *name, char *signature, char *description);
AVSK_API void AvskTestStop(const char *path);
AVSK_API int AvskTestEnable(const char *path);
AVSK_API void AvskTestDisable(const char *path);
AVSK_API void AvskTestMessage(const char *path, int sender, int message, void *parameter);
AVSK_API void AvskTestReturned(const char *path);
}

#endif
