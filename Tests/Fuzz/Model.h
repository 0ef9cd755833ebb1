// The model of the fuzz target: the state of each puppet, every registration
// with its owner, and the checks for each call of the library. A failed check
// prints one line and ends the process.
#ifndef AVSK_FUZZ_MODEL_H
#define AVSK_FUZZ_MODEL_H

#include "AVSKDispatch.h"
#include "AVSKLoaderRegistry.h"
#include "AVSKScopedValue.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKMenus.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <vector>

// The input of one run, read from front to back. Past its end it yields zeros.
class Input {
  public:
    void Set(const std::uint8_t *bytes, std::size_t size) {
        at = bytes;
        end = bytes + size;
    }
    bool Empty() const { return at == end; }
    unsigned Byte() { return at == end ? 0 : *at++; }
    // A number from 0 to limit - 1; limit is at most 256.
    int Below(int limit) { return static_cast<int>(Byte() % static_cast<unsigned>(limit)); }
    // True with a probability of 1 / oneIn.
    bool Rarely(int oneIn) { return Below(oneIn) == oneIn - 1; }
    bool Flag() { return (Byte() & 1U) != 0; }
    template <class T, std::size_t kCount>
    T OneOf(const T (&values)[kCount]) {
        return values[Byte() % kCount];
    }

  private:
    const std::uint8_t *at = nullptr;
    const std::uint8_t *end = nullptr;
};

constexpr int kPuppets = 8;
constexpr int kProgram = kPuppets; // the pseudo-file of the host's callbacks, always mapped
constexpr int kMaxDepth = 6;
constexpr int kMaxActions = 2000;
constexpr std::size_t kMaxRegistrations = 800;

// Bits for the entry points of a file.
constexpr unsigned kStartEntry = 1;
constexpr unsigned kStopEntry = 2;
constexpr unsigned kAllEntries = 31;

// One life of a puppet. It begins with the start call.
struct Incarnation {
    int file = 0;
    int id = 0;
    int serial = 0;
    unsigned entries = 0;                 // of its file
    std::shared_ptr<PluginRecord> record; // of the library
    const Incarnation *heir = nullptr;    // the next life with the same ID
    bool inLoader = false;                // its file's constructors or destructors are running
    int settled = 0;                      // from this report on, nothing is left of what its destructors registered
    bool accepted = false;
    bool stopped = false;
    bool enabling = false;
    bool asked = false;   // the library has called its enable entry
    bool enabled = false; // according to the calls of its entry points
    bool errorSet = false;
};

// clang-format off
#define FUZZ_KINDS(X)                                                                                                  \
    X(Loop, "flight loop")                                                                                             \
    X(Draw, "draw callback")                                                                                           \
    X(Sniffer, "key sniffer")                                                                                          \
    X(Window, "window")                                                                                                \
    X(HotKey, "hot key")                                                                                               \
    X(Menu, "menu") X(Command, "command") X(Shared, "subscription") X(Data, "dataref") X(Load, "object load")          \
        X(Planes, "planes") X(Camera, "camera") X(Probe, "probe") X(Object, "object") X(Feature, "enumeration")
// clang-format on
#define FUZZ_KIND(kind, name) kind,
enum class Kind {
    FUZZ_KINDS(FUZZ_KIND) Count
};
#undef FUZZ_KIND

// One registration. Its address is the refcon, which no other registration of the run uses.
struct Registration {
    Kind kind;
    int owner;              // the plugin ID dispatched at the registration
    const Incarnation *who; // null for the host and for plugin -1
    int file;               // the file of its callbacks
    int serial;             // its position in the order of all events
    int count = 0;          // how often it is registered now; kept for some kinds
    bool removed = false;   // a call that removed it has returned
    bool revived = false;   // a window brought to the front after its removal
    bool done = false;      // a load whose callback ran
    void *handle = nullptr; // returned by the library
    int a = 0;              // phase, button, name index and so on
    int b = 0;
};

enum class Status {
    Live,
    Limbo, // its plugin is being torn down, or refused to start; the next plugin with its ID inherits it
    Gone
};

// A plugin's library file in the simulated system loader.
struct File {
    int mapped = 0; // loads minus unloads
    int mapping = 0;
    int underWay = 0;     // calls of its code that have not returned
    unsigned entries = 0; // entry points that it exports
    bool kept = false;    // may stay mapped: it refused to start, or an exception was thrown
    bool tried = false;   // loading was tried since the last start of the library
};

struct FlightPass {
    int phase;
    float now;
    int serial;
};

struct Counters {
    unsigned long long runs, calls, hooks, callbacks, starts, throws;
};

// The state of the run.
struct Fuzz {
    Input in;
    const AVSKHostCallbacks *table = nullptr;
    int actions = 0;
    int reports = 0;
    int loads = 0;
    int upheavals = 0; // events that may interrupt a start of the library
    int depth = 0;     // of nested callbacks and host services
    int hostDepth = 0; // of nested host services; no exception may pass them
    int services = 0;  // service calls so far
    int quiet = 0;     // service calls until one acts
    bool calm = false; // tear-down: callbacks do nothing
    bool wildHost = false;
    int serial = 0;
    int file = kProgram; // the file whose code is running
    float now = 0;
    std::deque<Incarnation> incarnations;
    std::vector<Incarnation *> latest;       // by plugin ID
    std::vector<Incarnation *> watched;      // those not known to be unloaded
    std::vector<Registration> registrations; // never reallocates: addresses are refcons
    std::vector<Registration *> of[static_cast<std::size_t>(Kind::Count)];
    auto &Of(Kind kind) { return of[static_cast<std::size_t>(kind)]; }
    FlightPass pass = {-1, 0, 0}; // the innermost under way, or phase -1
    std::vector<int> buttons;
    int keyHooks = 0;
    int drawHooks = 0;
    Registration *camera = nullptr;
    File files[kPuppets + 1];
};
extern Fuzz &gFuzz;
extern Counters gCounters;

#define REQUIRE(condition, ...)                                                                                        \
    do {                                                                                                               \
        if (!(condition)) [[unlikely]]                                                                                 \
            std::fprintf(stderr, "fuzz: broken: " __VA_ARGS__), std::fputs("\n", stderr), std::abort();                \
    } while (false)

// Prints one line to standard error if AVSK_FUZZ_TRACE is set in the environment.
extern const bool kTrace;
#define TRACE(...)                                                                                                     \
    do {                                                                                                               \
        if (kTrace) [[unlikely]]                                                                                       \
            std::fprintf(stderr, "%*s%d: ", 2 * gFuzz.depth, "", gDispatchedPlugin),                                   \
                std::fprintf(stderr, __VA_ARGS__), std::fputs("\n", stderr);                                           \
    } while (false)

// Makes a call and counts the exception that leaves it, if any.
template <class Call>
void Catching(Call call) {
    try {
        call();
    } catch (...) {
        ++gCounters.throws;
    }
}

const char *NameOf(Kind kind);

// Returns the current life with a plugin ID, or null.
Incarnation *IncarnationOf(int id);
// Begins a life of the plugin that the library is loading.
Incarnation &Begin(int file);

// Adds a registration owned by the dispatched plugin; returns null at the limit.
Registration *Register(Kind kind);
Status StatusOf(const Registration &registration);
// Returns a registration of the kind, removed or not, chosen by the input; null if there was none.
Registration *Pick(Kind kind);
// Returns the latest with this handle, since the library reuses addresses.
Registration *ByHandle(Kind kind, const void *handle);
// Returns the registration with this address, or null.
Registration *ByRefcon(const void *refcon);

// Checks every callback: who is called, when, and as which plugin.
Registration &CheckCall(void *refcon, Kind kind);
// Checks the state between two reports of the host.
void CheckQuiet();
// Checks that every plugin was loaded and that its enable entry was called.
void CheckAfterStart();
void CheckAfterShutdown();

// ---- The host; see Host.cpp. It checks the library's service calls, and sometimes
// calls the library from inside a service.

constexpr int kCommands = 4;

// Resets the host and returns its table for the run.
const AVSKHostCallbacks *FreshHost(int version, bool fullTable);

// Handles for reports to the library.
void *HostCommand(int number);
void *AnyHostMenu(); // chosen by the input; null if there is none
int AnyHostItemID();

// While AVSKClearAllMenuItems runs: limits the renames of the menu's items at this call depth.
struct Clearing {
    AVSKMenuID menu;
    int depth;
    int renames; // how many are left; -1 until the first rename identifies the menu
};
extern Clearing *gClearing; // the innermost, or null

// Completes a requested load, chosen by the input. It may complete one twice.
void CompleteLoad();
void CompleteAllLoads();
void CheckObjectsReturned();

// The actions of callbacks and of the session; see Actions.cpp.
void ShareNames();                   // call it once: shared data is never removed
void ActInCallback(int throwsOneIn); // may throw
void ActAsHost();                    // hooks and host events, inside a host service; never throws
void ActAtTop();
void StartLibrary();
void ShutDownLibrary();

#endif
