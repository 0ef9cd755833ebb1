// Menu: a submenu of "Plugins" with two items to check, a separator, and an
// item that is disabled while there is nothing for it to do.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

struct Light {
    const char *name;
    bool byDefault;
    bool on;
    int item; // the index that the menu gave it
};
std::array<Light, 2> gLights{{{"Beacon", true, true, -1}, {"Landing light", false, false, -1}}};

AVSKMenuID gMenu = nullptr;
int gResetItem = -1;

// The simulator asks for marks and greying when it shows the menu, so they are only noted here.
void ShowState() {
    bool changed = false;
    for (const Light &light : gLights) {
        AVSKCheckMenuItem(gMenu, light.item, light.on ? AVSKMenuChecked : AVSKMenuUnchecked);
        changed = changed || light.on != light.byDefault;
    }
    AVSKEnableMenuItem(gMenu, gResetItem, changed ? 1 : 0);
}

void Switch(Light &light, bool on) {
    std::array<char, AVSK_TEXT_SIZE> line{};
    light.on = on;
    std::snprintf(line.data(), line.size(), "Menu: %s %s\n", light.name, on ? "on" : "off");
    AVSKDebugString(line.data());
}

// One handler for the menu. The item says what it is about with the reference it was appended with.
void Picked(void * /*menuRef*/, void *itemRef) {
    if (itemRef != nullptr) {
        auto &light = *static_cast<Light *>(itemRef);
        Switch(light, !light.on);
    } else {
        for (Light &light : gLights)
            Switch(light, light.byDefault);
    }
    ShowState();
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "Menu");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.menu");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "A menu with check marks.");

    // No parent: an item of this name is appended to "Plugins", and the menu hangs from it.
    gMenu = AVSKCreateMenu("Sample lights", nullptr, 0, Picked, nullptr);
    constexpr int kTranslate = 0;
    for (Light &light : gLights)
        light.item = AVSKAppendMenuItem(gMenu, light.name, &light, kTranslate);
    AVSKAppendMenuSeparator(gMenu); // an item too: the next index is one higher
    gResetItem = AVSKAppendMenuItem(gMenu, "Reset", nullptr, kTranslate);
    ShowState();
    return 1;
}

// The menu goes with us, and so does its item in "Plugins".
void AVPluginStop(void) {}

// Nothing to do, but the log mentions each entry point that a plugin does not have.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
