// A puppet is a plugin whose entry points run functions of the test. The same
// library file is copied under one name per plugin. Each copy finds its Puppet
// by its own path.
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

// Callbacks in the plugin's own code. Each runs the player that its refcon
// points to, then executes more code of the plugin, which must still be mapped.
struct PuppetCode {
    AVSKFlightLoop_f flightLoop;  // refcon: LoopPlayer
    AVSKMenuHandler_f menuPicked; // menuRef: MenuPlayer
    AVSKGetDatai_f readInt;       // refcon: IntPlayer
    AVSKDataChanged_f notified;   // refcon: NoticePlayer; also serves as AVSKPlanesAvailable_f
    AVSKCommandHandler_f command; // refcon: CommandPlayer
    AVSKObjectLoaded_f loaded;    // refcon: ObjectPlayer
    AVSKCameraControl_f camera;   // refcon: CameraPlayer
    void (*throwOwn)();           // throws an object whose destructor lies in the plugin
};

struct Puppet {
    std::string label; // its name in the journal
    std::string path;
    std::string name;
    std::string signature;
    std::string description;
    // The entry points. An empty one does nothing and accepts.
    std::function<int()> start;
    std::function<int()> enable;
    std::function<void()> disable;
    std::function<void()> stop;
    std::function<void(int sender, int message, void *parameter)> message;
    PuppetCode code = {}; // set when it is started
    int returned = 0;     // how often a player returned into the plugin's code

    int Id() const { return AVSKFindPluginBySignature(signature.c_str()); }
    bool IsMapped() const;
    // Runs f as this plugin, which must be enabled, and returns its result.
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

// The message with which Run() calls the plugin. It is not journaled.
constexpr int kRunMessage = 77777;

// The functions of the test program that the plugin calls.
extern "C" {
AVSK_API int AvskTestStart(const char *path, const PuppetCode *code, char *name, char *signature, char *description);
AVSK_API void AvskTestStop(const char *path);
AVSK_API int AvskTestEnable(const char *path);
AVSK_API void AvskTestDisable(const char *path);
AVSK_API void AvskTestMessage(const char *path, int sender, int message, void *parameter);
AVSK_API void AvskTestReturned(const char *path);
}

#endif
