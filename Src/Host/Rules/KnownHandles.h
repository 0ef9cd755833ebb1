// The handles that plugins have received, and what happened to them. Learned from
// the calls that create, find and give back.
#ifndef AVSK_HOST_RULES_KNOWN_HANDLES_H
#define AVSK_HOST_RULES_KNOWN_HANDLES_H

#include "RowTable.h"

#include "Crossings/Crossing.h"

#include "AVSK/AVSKTypes.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace host {

enum class HandleKind : std::uint8_t {
    Command,
    Dataref,
    HotKey,
    Loop,
    Menu,
    Object,
    Probe,
    Window,
};
// "a flight loop"
const char *WordFor(HandleKind kind);

struct KnownHandle {
    HandleKind kind = HandleKind::Command;
    AVSKPluginID owner = NO_PLUGIN_ID; // -1 while an object is being handed over
    std::string name{};                // of a command
    bool isGone = false;               // destroyed, or its plugin was unloaded
    long usableIn = -1; // the call of the host until whose end a window that is gone can be used; -1: none
};

// Which handle of a call is learned, or given back.
struct HandleRow {
    enum class Event : std::uint8_t {
        Created,  // the result is new
        Found,    // the result existed before
        Arriving, // the argument of a callback is new, and belongs to the plugin when the callback returns
        Passed,   // the argument of a callback exists
        Destroyed,
        OwnDestroyed, // only by its owner
        OwnerLeaves,
    };
    const char *function;
    HandleKind kind;
    Event event;
    const char *parameter = "";
};

class KnownHandles : public crossings::Observer {
  public:
    KnownHandles();
    ~KnownHandles() override;
    KnownHandles(const KnownHandles &) = delete;
    KnownHandles &operator=(const KnownHandles &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // Null if no plugin ever received it. Addresses are reused: this is the newest.
    const KnownHandle *Find(const void *handle) const;
    // Whether the library knows it no longer.
    bool IsUnusable(const KnownHandle &handle) const { return handle.isGone && handle.usableIn != mHostCall; }

  private:
    void Learn(const void *handle, HandleKind kind, AVSKPluginID owner, const crossings::Crossing &call);
    void GiveBack(const void *handle, const HandleRow &row, const crossings::Crossing &call);

    RowTable<HandleRow> mRows;
    std::unordered_map<const void *, KnownHandle> mHandles;
    long mHostCall = 0; // the number of the outermost call
};

} // namespace host

#endif
