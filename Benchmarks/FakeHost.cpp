// The table of a host whose services do nothing. Handed to the library by Simulator.
#include "FakeHost.h"

#include <cstring>
#include <stdexcept>
#include <string>

namespace {

std::uint64_t messages = 0;
std::uint64_t continuedCommands = 0;
std::uintptr_t handles = 0;
int menuItems = 0;
void *lastMenu = nullptr;
std::string aircraft;

void *NewHandle() { return reinterpret_cast<void *>(++handles); }

template <class Result, class... Arguments>
Result DoNothing(Arguments... /*ignored*/) {
    return Result();
}

template <class Result, class... Arguments>
void Fill(Result (*&slot)(Arguments...)) {
    slot = DoNothing<Result, Arguments...>;
}

template <class... Slots>
void FillAll(Slots &...slots) {
    (Fill(slots), ...);
}

void CheckNoSlotIsEmpty(const AVSKHostCallbacks &table) {
    std::uintptr_t words[AVSK_HOST_SLOTS];
    static_assert(sizeof words == sizeof table, "a slot is a word");
    std::memcpy(words, &table, sizeof table);
    for (int slot = 0; slot < AVSK_HOST_SLOTS; ++slot)
        if (words[slot] == 0)
            throw std::logic_error("the fake host leaves slot " + std::to_string(slot) +
                                   " empty: fill it in Benchmarks/FakeHost.cpp");
}

AVSKHostCallbacks MakeTable() {
    AVSKHostCallbacks t = {};
    t.version = AVSK_HOST_INTERFACE;
    t.sizeInBytes = sizeof t;
    FillAll(t.getScreenSize, t.getMouseLocation, t.setGraphicsState, t.bindTexture2d, t.generateTextureNumbers,
            t.getTexture, t.worldToLocal, t.localToWorld, t.drawTranslucentDarkBox, t.drawString, t.drawNumber,
            t.getFontDimensions, t.getElapsedTime, t.readCameraPosition, t.drawAircraft, t.loadAircraftModel,
            t.countAircraft, t.placeUserAtAirport, t.simulateKeyPress, t.speakString, t.commandKeyStroke,
            t.commandButton, t.getSystemPath, t.getPrefsPath, t.getVersions, t.getLanguage, t.debugString,
            t.setMenuItemName, t.destroyMenu, t.reinitUsersPlane, t.reloadScenery, t.getFirstNavAid, t.getNextNavAid,
            t.findFirstNavAidOfType, t.findLastNavAidOfType, t.findNavAid, t.getNavAidInfo, t.countFMSEntries,
            t.getDisplayedFMSEntry, t.getDestinationFMSEntry, t.setDisplayedFMSEntry, t.setDestinationFMSEntry,
            t.getFMSEntryInfo, t.setFMSEntryInfo, t.setFMSEntryLatLon, t.clearFMSEntry, t.getGPSDestinationType,
            t.getGPSDestination, t.showMessage, t.showProgress, t.beginCommand, t.endCommand, t.probeTerrain,
            t.findSymbol, t.measureString, t.removeMenuItem, t.drawObject, t.unloadObject, t.lookupObjects,
            t.loadDataFile, t.saveDataFile, t.loadObjectAsync);
    // The library stores these results, so they must differ.
    t.createMenu = [](void *, int, const char *) { return lastMenu = NewHandle(); };
    t.appendMenuItem = [](void *, int, const char *, int) { return ++menuItems; };
    t.findCommand = [](const char *, const char *, int) { return NewHandle(); };
    t.continueCommand = [](void *) { ++continuedCommands; };
    t.createProbe = [] { return NewHandle(); };
    t.getAircraftModel = [](int, char *path, char *) { std::strcpy(path, aircraft.c_str()); };
    t.loadObject = [](const char *) { return NewHandle(); };
    t.receiveMessage = [](AVSKPluginID, int, void *) { ++messages; };
    CheckNoSlotIsEmpty(t);
    return t;
}

} // namespace

const AVSKHostCallbacks &FakeHostTable() {
    static const AVSKHostCallbacks table = MakeTable();
    return table;
}

void SetFakeHostAircraft(const std::string &model) { aircraft = model; }

std::uint64_t FakeHostMessages() { return messages; }

std::uint64_t FakeHostContinuedCommands() { return continuedCommands; }

void *FakeHostMenu() { return lastMenu; }

int FakeHostMenuItem() { return menuItems; }
