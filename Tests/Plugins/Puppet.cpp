// The library file of every puppet: forwards each entry point to the test program.
#include "Puppet.h"

#include <dlfcn.h>

namespace {

const char *Path() {
    static const char here = 0;
    Dl_info info = {};
    dladdr(&here, &info);
    return info.dli_fname;
}

// Counts the returns of players. It executes code of the plugin, so the plugin must still be mapped.
struct Return {
    ~Return() { AvskTestReturned(Path()); }
};

struct Own {
    explicit Own(int v) : value(new int(v)) {}
    Own(const Own &other) : value(new int(*other.value)) {}
    Own &operator=(const Own &) = delete;
    virtual ~Own() { delete value; }
    int *value;
};

template <class Player, class... Arguments>
auto Play(void *refcon, Arguments... arguments) {
    const Return count;
    return (*static_cast<const Player *>(refcon))(arguments...);
}

const PuppetCode kCode = {
    [](float sinceLast, float total, int counter, void *refcon) {
        return Play<LoopPlayer>(refcon, sinceLast, total, counter);
    },
    [](void *menuRef, void *itemRef) { Play<MenuPlayer>(menuRef, itemRef); },
    Play<IntPlayer>,
    Play<NoticePlayer>,
    [](AVSKCommandRef command, int phase, void *refcon) { return Play<CommandPlayer>(refcon, command, phase); },
    [](AVSKObjectRef object, void *refcon) { Play<ObjectPlayer>(refcon, object); },
    [](AVSKCameraPosition *position, int losing, void *refcon) { return Play<CameraPlayer>(refcon, position, losing); },
    [] { throw Own(1); },
};

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    return AvskTestStart(Path(), &kCode, outName, outSignature, outDescription);
}

void AVPluginStop() { AvskTestStop(Path()); }

int AVPluginEnable() { return AvskTestEnable(Path()); }

void AVPluginDisable() { AvskTestDisable(Path()); }

void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    const Return count;
    AvskTestMessage(Path(), sender, message, parameter);
}
