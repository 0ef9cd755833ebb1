#include "Model.h"

#include "AVSKDispatch.h"
#include "AVSKModules.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

Fuzz &gFuzz = *new Fuzz;
Counters gCounters = {};

// Thin and fat plugins, one under the first name that is tried of a folder
// and under the second, one with both; two of the aircraft; one of a scenery.
const char *const kPuppetFiles[kPuppets] = {
    "Resources/plugins/p0.avp",      "Resources/plugins/p1/32/lin.avp",
    "Resources/plugins/p1/lin.avp",  "Resources/plugins/PluginAdmin/lin.avp",
    "Aircraft/a/plugins/p4/lin.avp", "Aircraft/a/plugins/p5/32/lin.avp",
    "Scenery/s/plugins/p6/lin.avp",  "Resources/plugins/p7/lin.avp",
};

static void ProgramError(const char *message) { FuzzError(-1, message); }
static void ThrowNumber() { throw 1; }
#define FUZZ_FUNCTION(member, type, function) function,
const FuzzCode kProgramCode = {-1, FUZZ_CALLBACKS(FUZZ_FUNCTION) ProgramError, ThrowNumber};

void Fail(const char *format, ...) {
    std::fputs("fuzz: broken: ", stderr);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputs("\n", stderr);
    std::abort();
}

void Trace(const char *format, ...) {
    if (!gFuzz.trace)
        return;
    std::fprintf(stderr, "%*s%d: ", 2 * gFuzz.depth, "", AVSKGetMyID());
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputs("\n", stderr);
}

const char *NameOf(Kind kind) {
    static const char *const names[] = {"flight loop", "draw callback", "key sniffer",  "window",  "hot key",
                                        "menu",        "command",       "subscription", "dataref", "object load",
                                        "planes",      "camera",        "probe",        "object",  "enumeration"};
    return names[static_cast<int>(kind)];
}

Incarnation *IncarnationOf(int id) {
    const PluginRecord *record = PluginAt(id);
    for (auto at = gFuzz.incarnations.rbegin(); record && at != gFuzz.incarnations.rend(); ++at)
        if ((*at)->record.get() == record)
            return at->get();
    return nullptr;
}

Incarnation *LatestOf(int index) {
    for (auto at = gFuzz.incarnations.rbegin(); at != gFuzz.incarnations.rend(); ++at)
        if ((*at)->index == index)
            return at->get();
    return nullptr;
}

Registration *Register(Kind kind) {
    if (gFuzz.registrations.size() == kMaxRegistrations)
        return nullptr;
    Registration fresh = {};
    fresh.kind = kind;
    fresh.owner = AVSKGetMyID();
    fresh.who = IncarnationOf(fresh.owner);
    REQUIRE(fresh.owner <= 0 || fresh.who, "plugin %d is dispatched and was never started", fresh.owner);
    fresh.functions = fresh.who ? *fresh.who->code : kProgramCode;
    fresh.serial = ++gFuzz.serial;
    gFuzz.registrations.push_back(fresh);
    Registration &added = gFuzz.registrations.back();
    added.code = &added.functions;
    return &added;
}

Status StatusOf(const Registration &registration) {
    if (registration.removed && !registration.revived)
        return Status::Gone;
    const Incarnation *who = registration.who;
    if (!who)
        return registration.owner == AVSK_PLUGIN_AERIVO ? Status::Live : Status::Gone;
    if (!who->record->unloaded)
        return who->stopped ? Status::Limbo : Status::Live; // being torn down, piece by piece
    if (who->accepted || registration.kind == Kind::Load)
        return Status::Gone;
    for (const auto &heir : gFuzz.incarnations)
        if (heir->id == who->id && heir->serial > who->serial && heir->accepted && heir->record->unloaded)
            return Status::Gone;
    return Status::Limbo;
}

Registration *Pick(Kind kind) {
    int count = 0;
    for (const Registration &each : gFuzz.registrations)
        count += each.kind == kind;
    if (count == 0)
        return nullptr;
    // From the latest on, so that short inputs mean what was just made.
    int skip = gFuzz.in.Below(std::min(count, 256));
    for (auto at = gFuzz.registrations.rbegin(); at != gFuzz.registrations.rend(); ++at)
        if (at->kind == kind && skip-- == 0)
            return &*at;
    return nullptr;
}

Registration *ByHandle(Kind kind, const void *handle) {
    for (auto at = gFuzz.registrations.rbegin(); at != gFuzz.registrations.rend(); ++at)
        if (at->kind == kind && at->handle == handle)
            return &*at;
    return nullptr;
}

Registration &CheckCall(void *refcon, Kind kind) {
    ++gCounters.callbacks;
    Trace("%s called", NameOf(kind));
    Registration *found = nullptr;
    for (Registration &each : gFuzz.registrations)
        if (&each == refcon)
            found = &each;
    REQUIRE(found, "a %s is called with a refcon of another run, %p", NameOf(kind), refcon);
    const Registration &r = *found;
    REQUIRE(r.kind == kind, "a %s is called with the refcon of a %s", NameOf(kind), NameOf(r.kind));
    REQUIRE(AVSKGetMyID() == r.owner, "a %s of plugin %d is called while %d is dispatched", NameOf(kind), r.owner,
            AVSKGetMyID());
    REQUIRE(r.owner != NO_PLUGIN_ID, "a %s of nobody is called", NameOf(kind));
    REQUIRE(r.owner == AVSK_PLUGIN_AERIVO || AVSKIsPluginEnabled(r.owner), "a %s of plugin %d, disabled, is called",
            NameOf(kind), r.owner);
    REQUIRE(StatusOf(r) != Status::Gone, "a %s of plugin %d is called after it was removed (%s)", NameOf(kind), r.owner,
            r.removed ? "by a call" : "with its plugin");
    return *found;
}

void CheckQuiet() {
    REQUIRE(AVSKGetMyID() == AVSK_PLUGIN_AERIVO, "between hooks %d is dispatched, not the host", AVSKGetMyID());
    REQUIRE(gFuzz.frames.empty(), "a file's code is still on the stack");
    REQUIRE(gCallFlags.count == std::max<std::size_t>(gAllPlugins.size(), 1), "flags of %u plugins, records of %zu",
            gCallFlags.count, gAllPlugins.size());
    for (unsigned id = 0; id < gAllPlugins.size(); ++id) {
        REQUIRE(gAllPlugins[id]->id == static_cast<int>(id), "the record at %u has ID %d", id, gAllPlugins[id]->id);
        REQUIRE((gCallFlags.enabled[id] != 0) == gAllPlugins[id]->enabled, "plugin %u: flag and record differ", id);
    }
    for (const auto &each : gFuzz.incarnations) {
        const PluginRecord &record = *each->record;
        if (record.unloaded) {
            REQUIRE(!record.enabled, "plugin %d of file %d is unloaded and enabled", each->id, each->index);
            continue;
        }
        REQUIRE(PluginAt(each->id) == &record, "plugin %d of file %d left the registry without being unloaded",
                each->id, each->index);
        REQUIRE(each->enabled == record.enabled, "plugin %d of file %d: enabled is %d, its calls say %d", each->id,
                each->index, record.enabled, each->enabled);
    }
}

void CheckAfterShutdown() {
    REQUIRE(AVSKCountPlugins() == 0, "%d plugins are left after the shutdown", AVSKCountPlugins());
    constexpr bool (*holds[])(int) = {CommandsHold, DisplayHolds, ProcessingHolds, CameraHolds, MenusHold,
                                      PlanesHold,   DataRefsHold, SharedDataHolds, SceneryHolds};
    for (const auto &each : gFuzz.incarnations) {
        REQUIRE(each->record->unloaded, "plugin %d of file %d was not unloaded by the shutdown", each->id, each->index);
        const bool inherited =
            std::any_of(gFuzz.incarnations.begin(), gFuzz.incarnations.end(),
                        [&](const auto &other) { return other->id == each->id && !other->accepted; });
        for (unsigned module = 0; !inherited && module < std::size(holds); ++module)
            REQUIRE(!holds[module](each->id), "module %u of the tear-down holds something of plugin %d", module,
                    each->id);
    }
    for (int index = 0; index < kPuppets; ++index)
        REQUIRE(!gFuzz.mapped[index] || gFuzz.kept[index], "file %d is still mapped after the shutdown", index);
}
