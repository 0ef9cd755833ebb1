// Learns handles; see KnownHandles.h.
#include "KnownHandles.h"

#include "Crossings/ValueText.h"

#include "AVSK/AVSKPlugins.h"

#include <string_view>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Side;
using crossings::Value;
using Event = HandleRow::Event;

constexpr HandleRow kHandleRows[] = {
    {"AVSKFindCommand", HandleKind::Command, Event::Found},
    {"AVSKCreateCommand", HandleKind::Command, Event::Found},
    {"AVSKCommandHandler_f", HandleKind::Command, Event::Passed, "command"},
    {"AVSKFindDataRef", HandleKind::Dataref, Event::Found},
    {"AVSKRegisterDataAccessor", HandleKind::Dataref, Event::Found},
    {"AVSKRegisterHotKey", HandleKind::HotKey, Event::Created},
    {"AVSKGetNthHotKey", HandleKind::HotKey, Event::Found},
    {"AVSKUnregisterHotKey", HandleKind::HotKey, Event::Destroyed, "hotKey"},
    {"AVSKCreateFlightLoop", HandleKind::Loop, Event::Created},
    {"AVSKDestroyFlightLoop", HandleKind::Loop, Event::OwnDestroyed, "loop"},
    {"AVSKFindPluginsMenu", HandleKind::Menu, Event::Found},
    {"AVSKCreateMenu", HandleKind::Menu, Event::Created},
    {"AVSKDestroyMenu", HandleKind::Menu, Event::OwnDestroyed, "menu"},
    {"AVSKLoadObject", HandleKind::Object, Event::Created},
    {"AVSKObjectLoaded_f", HandleKind::Object, Event::Arriving, "object"},
    {"AVSKUnloadObject", HandleKind::Object, Event::OwnDestroyed, "object"},
    {"AVSKCreateProbe", HandleKind::Probe, Event::Created},
    {"AVSKDestroyProbe", HandleKind::Probe, Event::Destroyed, "probe"},
    {"AVSKCreateWindow", HandleKind::Window, Event::Created},
    {"AVSKCreateWindowEx", HandleKind::Window, Event::Created},
    {"AVSKDestroyWindow", HandleKind::Window, Event::Destroyed, "window"},
    {"AVPluginStop", HandleKind::Window, Event::OwnerLeaves},
};

// The hooks that walk the windows. A window that is destroyed in a walk stays usable until its end.
bool MayWalkWindows(const Crossing &call) {
    for (const Crossing *outer = &call; outer; outer = outer->outer) {
        const std::string_view name = outer->what.name;
        if (name.ends_with("Hook") && name != "AVSKEventHook")
            return true;
    }
    return false;
}

} // namespace

const char *WordFor(HandleKind kind) {
    static constexpr const char *kWords[] = {"a command", "a dataref", "a hot key", "a flight loop",
                                             "a menu",    "an object", "a probe",   "a window"};
    return kWords[static_cast<std::size_t>(kind)];
}

KnownHandles::KnownHandles() : mRows(kHandleRows) { crossings::AddObserver(*this); }
KnownHandles::~KnownHandles() { crossings::RemoveObserver(*this); }

const KnownHandle *KnownHandles::Find(const void *handle) const {
    const auto known = mHandles.find(handle);
    return known == mHandles.end() ? nullptr : &known->second;
}

void KnownHandles::Begins(const Crossing &crossing) {
    if (crossing.depth == 0)
        ++mHostCall;
    if (crossing.to != Side::Plugin)
        return;
    for (const auto &[row, argument] : mRows.Of(crossing.what)) {
        if (row->event != Event::Arriving && row->event != Event::Passed)
            continue;
        const void *handle = crossing.arguments[argument].pointer;
        if (row->event == Event::Arriving || !Find(handle))
            Learn(handle, row->kind, NO_PLUGIN_ID, crossing);
    }
}

void KnownHandles::Ends(const Crossing &crossing) {
    for (const auto &[row, argument] : mRows.Of(crossing.what)) {
        if (row->event == Event::OwnerLeaves) {
            for (auto &[handle, known] : mHandles)
                known.isGone = known.isGone || known.owner == crossing.plugin;
        } else if (crossing.to == Side::Plugin && row->event == Event::Arriving) {
            const auto known = mHandles.find(crossing.arguments[argument].pointer);
            if (known != mHandles.end() && known->second.owner == NO_PLUGIN_ID)
                known->second.owner = crossing.plugin;
        } else if (crossing.to == Side::Library && crossing.returned) {
            if (row->event == Event::Created)
                Learn(crossing.result.pointer, row->kind, crossing.dispatched, crossing);
            else if (const KnownHandle *known = Find(crossing.result.pointer);
                     row->event == Event::Found && (!known || known->isGone || known->kind != row->kind))
                Learn(crossing.result.pointer, row->kind, AVSK_PLUGIN_AERIVO, crossing);
            else if (row->event == Event::Destroyed || row->event == Event::OwnDestroyed)
                GiveBack(crossing.arguments[argument].pointer, *row, crossing);
        }
    }
}

void KnownHandles::Learn(const void *handle, HandleKind kind, AVSKPluginID owner, const Crossing &call) {
    if (!handle)
        return;
    KnownHandle known{.kind = kind, .owner = owner};
    if (kind == HandleKind::Command && !call.arguments.empty())
        known.name = crossings::WholeText(call.arguments.front());
    mHandles[handle] = std::move(known);
}

void KnownHandles::GiveBack(const void *handle, const HandleRow &row, const Crossing &call) {
    const auto known = mHandles.find(handle);
    if (known == mHandles.end() || known->second.isGone || known->second.kind != row.kind)
        return;
    if (row.event == Event::OwnDestroyed && known->second.owner != call.dispatched)
        return;
    known->second.isGone = true;
    known->second.usableIn = row.kind == HandleKind::Window && MayWalkWindows(call) ? mHostCall : -1;
}

} // namespace host
