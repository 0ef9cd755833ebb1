// What the fuzz target knows: which puppets were started and how far they
// got, what was registered on whose account, and what must hold whenever the
// library calls. Whatever does not hold ends the process with one line.
#ifndef AVSK_FUZZ_MODEL_H
#define AVSK_FUZZ_MODEL_H

#include "Input.h"
#include "Puppet.h"

#include "AVSKLoaderRegistry.h"

#include <memory>
#include <string>
#include <vector>

constexpr int kPuppets = 8;
constexpr int kMaxDepth = 6;
constexpr int kMaxActions = 300;
constexpr int kMaxRegistrations = 400;

// One life of a puppet, from its start on.
struct Incarnation {
    int index = 0; // of its file
    int id = 0;
    int serial = 0;
    std::shared_ptr<PluginRecord> record; // the library's own
    const FuzzCode *code = nullptr;
    bool accepted = false;
    bool stopped = false;
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
    Feature
};

// Something that was registered. Its address is the refcon; none is used twice.
struct Registration {
    Kind kind;
    int owner;              // the plugin ID that was dispatched
    const Incarnation *who; // null for the host and nobody
    const FuzzCode *code;   // whose callbacks it has
    FuzzCode functions;     // a copy: the file may be gone
    int serial;             // when, in the order of everything
    int count = 0;          // how often it is registered now, where that matters
    bool removed = false;   // a call that removes it has returned
    bool revived = false;   // a removed window that was brought to the front
    void *handle = nullptr; // what the library answered
    int a = 0;              // phase, button, name index and so on
    int b = 0;
    bool done = false; // a load that was delivered
};

enum class Status {
    Live,
    Limbo, // of a plugin in its tear-down, or of one that refused to start: another's, once one has its ID
    Gone
};

struct FlightPass {
    int phase;
    float now;
    int serial;
};

struct Counters {
    unsigned long long runs, calls, hooks, callbacks, throws, starts;
};

// The state of the run.
struct Fuzz {
    Input in;
    int actions = 0;
    int loads = 0;
    int depth = 0;     // of callbacks and host services
    int hostDepth = 0; // of host services: nothing may be thrown past them
    bool calm = false; // tear-down: callbacks do nothing
    bool wildHost = false;
    int serial = 0;
    float now = 0;
    std::vector<std::unique_ptr<Incarnation>> incarnations;
    std::vector<Registration> registrations; // never grows past its capacity
    std::vector<int> frames;                 // files whose code is on the stack
    std::vector<FlightPass> passes;
    std::vector<int> senders; // of the messages under way
    std::vector<int> buttons;
    int keyHooks = 0;
    int drawHooks = 0;
    Registration *camera = nullptr;
    std::string root; // ends in a separator
    bool trace = false;

    bool mapped[kPuppets] = {};
    bool kept[kPuppets] = {}; // refused once, or something was thrown: the file may stay mapped
    FuzzCode *code[kPuppets] = {};
};
extern Fuzz &gFuzz;
extern Counters gCounters;
extern const FuzzCode kProgramCode;
extern const char *const kPuppetFiles[kPuppets];

[[noreturn]] void Fail(const char *format, ...) __attribute__((format(printf, 1, 2)));
#define REQUIRE(condition, ...)                                                                                        \
    do {                                                                                                               \
        if (!(condition))                                                                                              \
            Fail(__VA_ARGS__);                                                                                         \
    } while (false)

// With AVSK_FUZZ_TRACE in the environment, one line to standard error.
void Trace(const char *format, ...) __attribute__((format(printf, 1, 2)));

const char *NameOf(Kind kind);

// The life that a plugin ID stands for, or null.
Incarnation *IncarnationOf(int id);
// The latest life of a file, which an entry point of it is called for.
Incarnation *LatestOf(int index);

// A new registration on the dispatched plugin's account; null if there were enough.
Registration *Register(Kind kind);
Status StatusOf(const Registration &registration);
// One of a kind, alive or not, as the input says; null if there was none.
Registration *Pick(Kind kind);
// The latest with this handle: addresses come again.
Registration *ByHandle(Kind kind, const void *handle);

// What holds for every callback. Throws and acts as the input says when the scope ends.
Registration &CheckCall(void *refcon, Kind kind);
// What holds between two reports of the host.
void CheckQuiet();
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

// Raises a number for a scope.
class Deeper {
  public:
    explicit Deeper(int &counted) : number(counted) { ++number; }
    ~Deeper() { --number; }
    Deeper(const Deeper &) = delete;
    Deeper &operator=(const Deeper &) = delete;

  private:
    int &number;
};

// What callbacks and the session do next; see Actions.cpp.
void ShareNames();                        // once: shared data stays for good
void ActInCallback(const FuzzCode &code); // may throw
void ActAsHost();                         // hooks and host events, from a host service; throws nothing
void ActAtTop();

#endif
