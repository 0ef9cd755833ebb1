// What the fuzz target knows: which puppets were started and how far they
// got, what was registered on whose account, and what must hold whenever the
// library calls. Whatever does not hold ends the process with one line.
#ifndef AVSK_FUZZ_MODEL_H
#define AVSK_FUZZ_MODEL_H

#include "Input.h"

#include "AVSKLoaderRegistry.h"
#include "AVSKScopedValue.h"

#include <deque>
#include <memory>
#include <vector>

// What the library is to do and does not do yet: set each to true with the
// change of the library. The last two let the target do what crashes before that.
struct Rules {
    bool throwingEntryStopsNobody = false; // the other plugins are loaded and enabled, then the exception passes on
    bool earlierLifeIsNobody = false;      // frames of an earlier life restore -1 as the dispatched plugin
    bool nobodyCreatesNothing = false;     // plugin -1 gets a neutral result, and no service is called
    bool enablingAnswersZero = false;      // enabling a plugin that is being enabled
    bool clearTakesWhatWasThere = false;   // clearing a menu spares what its services append
    bool menuIsWhole = false;              // while the host makes a menu, no stale handle finds it
    bool constructorsAct = false;          // a file's constructors and destructors act, on its plugin's account
    bool livesInServices = false;          // the host shuts down and starts again from inside a service
};
constexpr Rules kRules;

constexpr int kPuppets = 8;
constexpr int kProgram = kPuppets; // the file of the host's own callbacks, which is always mapped
constexpr int kMaxDepth = 6;
constexpr int kMaxActions = 2000;
constexpr std::size_t kMaxRegistrations = 800;

// The entry points of a file, as bits.
constexpr unsigned kStartEntry = 1;
constexpr unsigned kStopEntry = 2;
constexpr unsigned kAllEntries = 31;

// One life of a puppet, from its start on.
struct Incarnation {
    int file = 0;
    int id = 0;
    int serial = 0;
    unsigned entries = 0;                 // those that its file has
    std::shared_ptr<PluginRecord> record; // the library's own
    const Incarnation *heir = nullptr;    // the next life with this ID
    bool accepted = false;
    bool stopped = false;
    bool enabling = false;
    bool asked = false;   // whether it would be enabled
    bool enabled = false; // as its own entry points imply
    bool errorSet = false;
};

enum class Kind {
    Loop,
    Draw,
    Sniffer,
    Window,
    HotKey,
    Menu,
    Command,
    Shared,
    Data,
    Load,
    Planes,
    Camera,
    Probe,
    Object,
    Feature,
    Count
};

// Something that was registered. Its address is the refcon; none is used twice in a run.
struct Registration {
    Kind kind;
    int owner;              // the plugin ID that was dispatched
    const Incarnation *who; // null for the host and nobody
    int file;               // whose callbacks it has
    int serial;             // when, in the order of everything
    int count = 0;          // how often it is registered now, where that matters
    bool removed = false;   // a call that removes it has returned
    bool revived = false;   // a removed window that was brought to the front
    bool done = false;      // a load that was delivered
    void *handle = nullptr; // what the library answered
    int a = 0;              // phase, button, name index and so on
    int b = 0;
};

enum class Status {
    Live,
    Limbo, // of a plugin in its tear-down, or of one that refused to start: another's, once one has its ID
    Gone
};

// A plugin's library, as the stand-in of the system's loader keeps it.
struct File {
    int mapped = 0; // how often it was loaded and not unloaded
    int mapping = 0;
    int underWay = 0;     // calls of its code
    unsigned entries = 0; // those that it has
    bool kept = false;    // refused once, or something was thrown: it may stay mapped
    bool tried = false;   // since the last start of the library
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
    const struct AVSKHostCallbacks *table = nullptr;
    int actions = 0;
    int loads = 0;
    int upheavals = 0; // what may keep a start of the library from its end
    int depth = 0;     // of callbacks and host services
    int hostDepth = 0; // of host services: nothing may be thrown past them
    int services = 0;  // called so far
    int quiet = 0;     // services until one acts
    bool calm = false; // tear-down: callbacks do nothing
    bool wildHost = false;
    bool trace = false;
    int serial = 0;
    int file = kProgram; // whose code runs
    float now = 0;
    std::deque<Incarnation> incarnations;
    std::vector<Incarnation *> latest;       // by plugin ID
    std::vector<Incarnation *> watched;      // not known to be unloaded
    std::vector<Registration> registrations; // never grows past its capacity
    std::vector<Registration *> of[static_cast<std::size_t>(Kind::Count)];
    std::vector<FlightPass> passes;
    std::vector<int> senders; // of the messages under way
    std::vector<int> buttons;
    int keyHooks = 0;
    int drawHooks = 0;
    Registration *camera = nullptr;
    File files[kPuppets + 1];
};
extern Fuzz &gFuzz;
extern Counters gCounters;

[[noreturn]] void Fail(const char *format, ...) __attribute__((format(printf, 1, 2)));
#define REQUIRE(condition, ...)                                                                                        \
    do {                                                                                                               \
        if (!(condition)) [[unlikely]]                                                                                 \
            Fail(__VA_ARGS__);                                                                                         \
    } while (false)

// With AVSK_FUZZ_TRACE in the environment, one line to standard error.
void PrintTrace(const char *format, ...) __attribute__((format(printf, 1, 2)));
#define TRACE(...)                                                                                                     \
    do {                                                                                                               \
        if (gFuzz.trace) [[unlikely]]                                                                                  \
            PrintTrace(__VA_ARGS__);                                                                                   \
    } while (false)

const char *NameOf(Kind kind);

// The life that a plugin ID stands for, or null.
Incarnation *IncarnationOf(int id);
// A new life, of the plugin that the library loads.
Incarnation &Begin(int file);

// A new registration on the dispatched plugin's account; null if there were enough.
Registration *Register(Kind kind);
Status StatusOf(const Registration &registration);
// One of a kind, alive or not, as the input says; null if there was none.
Registration *Pick(Kind kind);
// The latest with this handle: addresses come again.
Registration *ByHandle(Kind kind, const void *handle);
// The registration whose address this is, or null.
Registration *ByRefcon(const void *refcon);

// What holds for every callback.
Registration &CheckCall(void *refcon, Kind kind);
// What holds between two reports of the host.
void CheckQuiet();
// Whether every plugin was loaded and asked to be enabled.
void CheckAfterStart();
void CheckAfterShutdown();

// Something at the end of a list for a scope.
template <class T>
class Pushed {
  public:
    Pushed(std::vector<T> &extended, const T &value) : list(extended) { list.push_back(value); }
    ~Pushed() { list.pop_back(); }
    Pushed(const Pushed &) = delete;
    Pushed &operator=(const Pushed &) = delete;

  private:
    std::vector<T> &list;
};

// What callbacks and the session do next; see Actions.cpp.
void ShareNames();                   // once: shared data stays for good
void ActInCallback(int throwsOneIn); // may throw
void ActAsHost();                    // hooks and host events, from a host service; throws nothing
void ActAtTop();
void StartLibrary();
void ShutDownLibrary();

#endif
