// The puppets' entry points and callbacks: each checks that it may be called
// now, and then does what the input says.
#include "Model.h"

#include "AVSKDispatch.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// The plugin whose entry point is called.
Incarnation &EntryOf(int index, const char *entry) {
    ++gCounters.callbacks;
    Trace("%s of file %d", entry, index);
    Incarnation *who = IncarnationOf(AVSKGetMyID());
    REQUIRE(who, "%s of file %d is called while %d is dispatched", entry, index, AVSKGetMyID());
    REQUIRE(who->index == index, "%s of file %d is called on the account of file %d", entry, index, who->index);
    REQUIRE(!who->record->unloaded, "%s of plugin %d is called after it was unloaded", entry, who->id);
    return *who;
}

// Does what the input says in a callback or an entry point.
void Act(const FuzzCode &code) {
    const Pushed frame(gFuzz.frames, code.index);
    ActInCallback(code);
}
void Act(const Registration &r) { Act(r.functions); }

const Registration &CheckWindow(AVSKWindowID window, void *refcon) {
    const Registration &r = CheckCall(refcon, Kind::Window);
    REQUIRE(window == r.handle, "a window is called as another");
    return r;
}

int AnyAnswer() {
    constexpr int answers[] = {1, 0, 1, 2, 1, 3, -1, 0};
    return answers[gFuzz.in.Below(8)];
}

float AnyInterval() {
    constexpr float intervals[] = {0, -1, 1, -1, 0.25F, -2, -0.5F, 1e30F, -1e30F, INFINITY, -INFINITY, NAN};
    return intervals[gFuzz.in.Below(12)];
}

} // namespace

void FuzzMapped(const char *path, FuzzCode *code) {
    for (int index = 0; index < kPuppets; ++index) {
        const std::size_t length = std::strlen(kPuppetFiles[index]);
        const std::size_t whole = std::strlen(path);
        if (whole < length || std::strcmp(path + whole - length, kPuppetFiles[index]) != 0)
            continue;
        REQUIRE(!gFuzz.mapped[index], "file %d is mapped twice", index);
        gFuzz.mapped[index] = true;
        gFuzz.code[index] = code;
        code->index = index;
        return;
    }
    Fail("%s is no puppet", path);
}

void FuzzUnmapped(int index) {
    gFuzz.mapped[index] = false;
    REQUIRE(std::find(gFuzz.frames.begin(), gFuzz.frames.end(), index) == gFuzz.frames.end(),
            "file %d is unmapped while its code is on the stack", index);
    for (const auto &each : gFuzz.incarnations)
        REQUIRE(each->index != index || each->record->unloaded, "file %d is unmapped while plugin %d is loaded", index,
                each->id);
}

int FuzzStart(FuzzCode *code, char *name, char *signature, char *description) {
    ++gCounters.starts;
    Trace("start of file %d", code->index);
    const int id = AVSKGetMyID();
    REQUIRE(id == AVSKCountPlugins() - 1, "file %d starts as %d of %d plugins", code->index, id, AVSKCountPlugins());
    REQUIRE(id != AVSK_PLUGIN_AERIVO, "file %d starts in the host's place", code->index);
    REQUIRE(!AVSKIsPluginEnabled(id), "file %d is enabled before it starts", code->index);
    gFuzz.incarnations.push_back(std::make_unique<Incarnation>());
    Incarnation &who = *gFuzz.incarnations.back();
    who.index = code->index;
    who.id = id;
    who.serial = ++gFuzz.serial;
    who.record = gAllPlugins[static_cast<unsigned>(id)];
    who.code = code;

    const Pushed frame(gFuzz.frames, code->index);
    std::snprintf(name, AVSK_TEXT_SIZE, "Puppet %d", code->index);
    std::snprintf(signature, AVSK_TEXT_SIZE, "fuzz.%d", code->index);
    std::snprintf(description, AVSK_TEXT_SIZE, "a puppet");
    bool refused = false;
    switch (gFuzz.in.Below(16)) {
    case 13: // the signature of another
        std::snprintf(signature, AVSK_TEXT_SIZE, "fuzz.%d", gFuzz.in.Below(kPuppets));
        break;
    case 14: // one of its own, or none
        std::snprintf(signature, AVSK_TEXT_SIZE, "%.*s", gFuzz.in.Below(2) * 8, "own.name");
        break;
    case 15:
        refused = true;
        break;
    default:
        break;
    }
    try {
        ActInCallback(*code);
    } catch (...) {
        gFuzz.kept[code->index] = true;
        throw;
    }
    if (refused)
        gFuzz.kept[code->index] = true;
    return who.accepted = !refused;
}

void FuzzStop(int index) {
    Incarnation &who = EntryOf(index, "stop");
    REQUIRE(!who.stopped, "plugin %d is stopped twice", who.id);
    who.stopped = true;
    Act(*who.code);
}

int FuzzEnable(int index) {
    Incarnation &who = EntryOf(index, "enable");
    REQUIRE(!who.record->enabled, "plugin %d is enabled while it is", who.id);
    Act(*who.code);
    return who.enabled = !gFuzz.in.Rarely(16);
}

void FuzzDisable(int index) {
    Incarnation &who = EntryOf(index, "disable");
    REQUIRE(!who.record->enabled, "plugin %d still counts as enabled in its disable call", who.id);
    REQUIRE(who.enabled, "plugin %d is disabled, which was not enabled", who.id);
    who.enabled = false;
    Act(*who.code);
}

void FuzzMessage(int index, int sender, int message, void *parameter) {
    const Incarnation &who = EntryOf(index, "message");
    REQUIRE(who.record->enabled, "plugin %d, disabled, hears message %d", who.id, message);
    if (message >= 1000) {
        const auto number = reinterpret_cast<std::uintptr_t>(parameter);
        REQUIRE(number < gFuzz.senders.size(), "message %d comes with another's parameter", message);
        REQUIRE(gFuzz.senders[number] == sender, "message %d of plugin %d comes from %d", message,
                gFuzz.senders[number], sender);
    } else {
        REQUIRE(sender == AVSK_PLUGIN_AERIVO, "message %d comes from %d", message, sender);
    }
    Act(*who.code);
}

void FuzzError(int index, const char *message) {
    ++gCounters.callbacks;
    Trace("error of file %d: %s", index, message);
    const int id = AVSKGetMyID();
    const Incarnation *who = IncarnationOf(id);
    REQUIRE(who ? who->index == index : index == -1 && id == AVSK_PLUGIN_AERIVO, "error of file %d for plugin %d: %s",
            index, id, message);
    REQUIRE(!who || (who->errorSet && !who->record->unloaded), "error of plugin %d, which wants none: %s", id, message);
    Act(who ? *who->code : kProgramCode);
}

float FuzzFlightLoop(float, float total, int counter, void *refcon) {
    const Registration &r = CheckCall(refcon, Kind::Loop);
    REQUIRE(!gFuzz.passes.empty(), "a flight loop is called outside a pass");
    const FlightPass &pass = gFuzz.passes.back();
    REQUIRE(r.a == pass.phase, "a flight loop of phase %d is called in a pass of %d", r.a, pass.phase);
    REQUIRE(r.serial < pass.serial, "a flight loop is called in the pass in which it was created");
    REQUIRE(std::memcmp(&total, &pass.now, sizeof total) == 0 || (std::isnan(total) && std::isnan(pass.now)),
            "a flight loop hears of the time %g at %g", total, pass.now);
    REQUIRE(counter == AVSKGetCycleNumber(), "a flight loop hears of pass %d in %d", counter, AVSKGetCycleNumber());
    Act(r);
    return AnyInterval();
}

int FuzzDraw(int phase, int isBefore, void *refcon) {
    const Registration &r = CheckCall(refcon, Kind::Draw);
    REQUIRE(gFuzz.drawHooks > 0, "a draw callback is called outside a pass");
    REQUIRE(phase == r.a && isBefore == r.b, "a draw callback of %d/%d is called for %d/%d", r.a, r.b, phase, isBefore);
    Act(r);
    return AnyAnswer();
}

int FuzzSniffer(char, int, char, void *refcon) {
    REQUIRE(gFuzz.keyHooks > 0, "a sniffer is called without a key");
    Act(CheckCall(refcon, Kind::Sniffer));
    return AnyAnswer();
}

void FuzzDrawWindow(AVSKWindowID window, void *refcon) {
    const Registration &r = CheckWindow(window, refcon);
    REQUIRE(gFuzz.drawHooks > 0, "a window is drawn outside a pass");
    Act(r);
}

void FuzzKey(AVSKWindowID window, char, int, char, void *refcon, int losingFocus) {
    const Registration &r = CheckCall(refcon, Kind::Window);
    if (!losingFocus) {
        REQUIRE(window == r.handle, "a window is called as another");
        REQUIRE(gFuzz.keyHooks > 0, "a window gets a key that was not pressed");
    }
    Act(r);
}

int FuzzClick(AVSKWindowID window, int, int, int status, void *refcon) {
    const Registration &r = CheckWindow(window, refcon);
    REQUIRE(status >= AVSKMouseDown && status <= AVSKMouseUp, "mouse status %d", status);
    Act(r);
    return AnyAnswer();
}

int FuzzCursor(AVSKWindowID window, int, int, void *refcon) {
    Act(CheckWindow(window, refcon));
    return gFuzz.in.Below(3);
}

int FuzzWheel(AVSKWindowID window, int, int, int, int, void *refcon) {
    Act(CheckWindow(window, refcon));
    return gFuzz.in.Below(2);
}

void FuzzHotKey(void *refcon) {
    REQUIRE(gFuzz.keyHooks > 0, "a hot key runs without a key");
    Act(CheckCall(refcon, Kind::HotKey));
}

void FuzzMenu(void *menuRef, void *) { Act(CheckCall(menuRef, Kind::Menu)); }

int FuzzCommand(AVSKCommandRef command, int phase, void *refcon) {
    const Registration &r = CheckCall(refcon, Kind::Command);
    REQUIRE(command == r.handle, "a handler of one command is called for another");
    REQUIRE(phase >= AVSKCommandPhaseBegin && phase <= AVSKCommandPhaseEnd, "command phase %d", phase);
    Act(r);
    return AnyAnswer();
}

void FuzzDataChanged(void *refcon) { Act(CheckCall(refcon, Kind::Shared)); }

int FuzzReadInt(void *refcon) {
    Act(CheckCall(refcon, Kind::Data));
    return AnyAnswer();
}

void FuzzWriteInt(void *refcon, int) { Act(CheckCall(refcon, Kind::Data)); }

int FuzzReadInts(void *refcon, int *values, int offset, int max) {
    const Registration &r = CheckCall(refcon, Kind::Data);
    if (values && max > 0)
        values[0] = offset;
    Act(r);
    return AnyAnswer();
}

void FuzzWriteInts(void *refcon, int *, int, int) { Act(CheckCall(refcon, Kind::Data)); }

void FuzzObjectLoaded(AVSKObjectRef, void *refcon) {
    Registration &r = CheckCall(refcon, Kind::Load);
    REQUIRE(!r.done, "an object is delivered twice");
    r.done = true;
    Act(r);
}

void FuzzPlanes(void *refcon) {
    Registration &r = CheckCall(refcon, Kind::Planes);
    REQUIRE(r.count > 0, "planes are offered to a plugin that does not wait");
    --r.count;
    Act(r);
}

int FuzzCamera(AVSKCameraPosition *position, int isLosingControl, void *refcon) {
    const Registration &r = CheckCall(refcon, Kind::Camera);
    REQUIRE(&r == gFuzz.camera, "the camera is asked of a plugin without control");
    REQUIRE(AVSKIsCameraBeingControlled(nullptr), "the camera is asked of a plugin when nobody has control");
    REQUIRE((position == nullptr) == (isLosingControl != 0), "losing control %d, with position %p", isLosingControl,
            static_cast<void *>(position));
    Act(r);
    return gFuzz.in.Below(4) != 0;
}

void FuzzFeature(const char *, void *refcon) {
    // Called on the caller's account, which the caller's own calls may change.
    for (const Registration &each : gFuzz.registrations)
        if (&each == refcon)
            return Act(each);
    Fail("an enumeration is called with %p", refcon);
}
