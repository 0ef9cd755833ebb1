// Menu: a submenu of "Plugins" with two items that can be checked, a separator,
// and an item that is disabled while it has no effect.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>

namespace {

struct Light {
    const char *name;
    bool byDefault;
    bool on;
    int item; // its index in the menu
};
std::array<Light, 2> gLights{{{"Beacon", true, true, -1}, {"Landing light", false, false, -1}}};

AVSKMenuID gMenu = nullptr;
int gResetItem = -1;

// The simulator asks for check marks and enabled states when it shows the menu; these calls only store them.
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

// The menu has one handler. The reference with which the item was appended says which item it is.
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

    // Without a parent, an item of this name is appended to "Plugins" and opens the menu.
    gMenu = AVSKCreateMenu("Sample lights", nullptr, 0, Picked, nullptr);
    constexpr int kTranslate = 0;
    for (Light &light : gLights)
        light.item = AVSKAppendMenuItem(gMenu, light.name, &light, kTranslate);
    AVSKAppendMenuSeparator(gMenu); // counts as an item: the next index is one higher
    gResetItem = AVSKAppendMenuItem(gMenu, "Reset", nullptr, kTranslate);
    ShowState();
    return 1;
}

// The library removes the menu and its item in "Plugins".
void AVPluginStop(void) {}

// These are empty: the log reports every entry point that a plugin lacks.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
