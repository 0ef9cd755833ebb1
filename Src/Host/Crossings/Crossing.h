// Every call between plugins, library and host: a crossing of the library's border.
//
// A program that is linked with this layer defines the library's exported
// names itself and hands each call on, so calls into the library pass through
// here. Callbacks, entry points and the host's table are replaced when the
// library receives them, so calls out of it pass through here too. Observers
// see the begin and the end of each call. The library does not know of them.
#ifndef AVSK_HOST_CROSSING_H
#define AVSK_HOST_CROSSING_H

#include "CallState.h"
#include "Clock.h"

#include "AVSK/AVSKTypes.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

namespace crossings {

// The side that calls or is called.
enum class Side : std::uint8_t {
    Host,
    Library,
    Plugin,
    OpenGL, // is only called
};

struct Callback;

// One argument or result.
struct Value {
    enum class Kind : std::uint8_t {
        Nothing,
        Integer,
        Word,
        Real,
        Character,
        Text,
        Function,
        Pointer,
        Structure,
        // Of OpenGL:
        Enumerant, // a word
        Bits,      // a word, the sum of enumerants
        // Only in copies that outlive the call:
        Name,      // of a function or handle, shown as it is
        Unreadable // a text at a bad address
    };

    Kind kind = Kind::Nothing;
    bool isHandle = false;   // of the library or the host
    std::int16_t group = -1; // of enumerants; -1: any
    int length = -1;         // of a name, and of a text without a terminating zero; -1: it has one
    union {
        int integer;
        AVSKWord word;
        double real;
        const char *text;
        const void *pointer = nullptr; // also of a function
        const struct StructureView *structure;
    };
};

// A structure's fields, by name.
struct StructureView {
    const char *fields;
    std::span<const Value> values;
};

template <class T>
constexpr Value::Kind KindOf() {
    if constexpr (std::is_void_v<T>)
        return Value::Kind::Nothing;
    else if constexpr (std::is_same_v<T, char>)
        return Value::Kind::Character;
    else if constexpr (std::is_same_v<T, AVSKWord>)
        return Value::Kind::Word;
    else if constexpr (std::is_integral_v<T>)
        return Value::Kind::Integer;
    else if constexpr (std::is_floating_point_v<T>)
        return Value::Kind::Real;
    else if constexpr (std::is_same_v<T, const char *>)
        return Value::Kind::Text;
    else
        return std::is_function_v<std::remove_pointer_t<T>> ? Value::Kind::Function : Value::Kind::Pointer;
}

template <class T>
Value ValueOf(T argument) {
    Value value;
    value.kind = KindOf<T>();
    if constexpr (KindOf<T>() == Value::Kind::Character)
        value.integer = static_cast<unsigned char>(argument);
    else if constexpr (KindOf<T>() == Value::Kind::Word)
        value.word = argument;
    else if constexpr (KindOf<T>() == Value::Kind::Integer)
        value.integer = argument;
    else if constexpr (KindOf<T>() == Value::Kind::Real)
        value.real = argument;
    else if constexpr (KindOf<T>() == Value::Kind::Text)
        value.text = argument;
    else if constexpr (KindOf<T>() == Value::Kind::Function)
        value.pointer = reinterpret_cast<const void *>(argument);
    else
        value.pointer = argument;
    return value;
}

// One function, as the public headers declare it. There is one object for each; see PrototypeTable.h.
struct Prototype {
    enum class Form : std::uint8_t {
        Function,
        Service,
        OpenGL,
        Callback,
        EntryPoint, // a callback that plugins export
        Start,      // the entry point that is called first
    };

    const char *name;
    const char *parameters; // names: "x,y,refcon"
    Form form;
    Value::Kind result;

    // What the present observers want of its calls; see Interest.
    std::uint32_t observers = 0; // a bit for each
    bool isTimed = false;
    bool isMeasured = false;
};

// A call across the border, from its begin to its end.
class Crossing {
  public:
    using Clock = crossings::Clock;

    // The callback is null for calls of functions and services.
    Crossing(const Prototype &prototype, Side callee, std::span<const Value> values,
             const Callback *called = nullptr) noexcept;
    ~Crossing();
    Crossing(const Crossing &) = delete;
    Crossing &operator=(const Crossing &) = delete;

    // Notes that the call returned. Without this an exception ended it.
    void Return(const Value &value = {}) noexcept {
        result = value;
        returned = true;
    }
    // Notes the exception that is being handled and then leaves the call.
    void NoteException() noexcept;

    const Prototype &what;
    const Side from;
    const Side to;
    const std::span<const Value> arguments;
    const Callback *const callback;
    // The plugin whose code runs, or for which the library or host works; the host is 0.
    AVSKPluginID plugin;
    // The plugin that the library considers the caller.
    const AVSKPluginID dispatched;
    Crossing *const outer; // null for the outermost
    const int depth;       // 0 for the outermost
    Value result;
    bool returned = false;
    Clock::time_point began; // if an observer reads times
    Clock::time_point ended;
    // Of the exception that ended the call: the object that was thrown, and its type.
    const void *thrown = nullptr;
    const std::type_info *thrownType = nullptr; // null if C++ code did not throw it
    // Equal unless states are kept and this call of a plugin or the host changed something.
    CallState stateBefore;
    CallState stateAfter;

    // An argument by its name, which must be the name of a parameter.
    const Value &operator[](const char *parameter) const;
    // Whether this is a plugin's start, from which on the ID belongs to that plugin.
    bool IsStart() const { return what.form == Prototype::Form::Start; }
    bool IsEntryPoint() const { return what.form >= Prototype::Form::EntryPoint; }
    // Without the time that observing the inner calls took. Valid in Ends() only, for observers that read times.
    Clock::duration Duration() const { return ended - began - mObserving; }

  private:
    void NotifyBegin() noexcept;

    const bool mIsTimed;    // the clock is read
    const bool mIsMeasured; // also before and after the observers' work
    Clock::duration mObserving{};
};

// What an observer wants of the calls of a function.
enum class Interest : std::uint8_t {
    None = 0,
    Calls = 1,          // it is notified
    Times = Calls | 2,  // and reads the times of the crossing
    Work = Calls | 4,   // and takes longer than the clock does, so this time is left out of durations
    All = Times | Work, // both
};

// Sees the calls on the observed thread, except the calls that observers make
// themselves. An observer must outlive all calls or be removed.
class Observer {
  public:
    virtual ~Observer() = default;
    // Asked for each function whenever an observer is added or removed.
    virtual Interest InterestIn(const Prototype & /*function*/) const { return Interest::All; }
    virtual Interest InterestInOpenGL(const Prototype & /*function*/) const { return Interest::None; }
    virtual void Begins(const Crossing &crossing) = 0;
    virtual void Ends(const Crossing &crossing) = 0;
};

void AddObserver(Observer &observer);
void RemoveObserver(Observer &observer);

// The functions of OpenGL, in a program that serves them. They must stay. The other function is called whenever the
// observers want something else of them.
void SetOpenGL(std::span<Prototype> functions, void (*update)());

// The time since then was spent neither in plugins nor in what they called. It is left out of durations.
void LeaveOutTime(Clock::time_point since);

// The innermost call under way; null if there is none.
const Crossing *Innermost();
// The side whose code runs now. OpenGL runs no code of its own that calls others, but that of plugins.
Side CurrentSide();

// Called once, when an exported function is called for the first time, on that
// thread. Null for none.
void OnFirstCall(void (*prepare)());

// Only one thread is observed: that which loaded this program, until another one
// initialises the library.
inline std::atomic<const void *> gObservedThread = nullptr;
// While the observed thread runs observers, and it alone reads and writes this.
inline bool gIsUnobserved = false;

inline bool IsObservedThread() {
    const void *thread = nullptr;
    asm("movl %%gs:0, %0" : "=r"(thread)); // its own address; cheaper than a thread_local variable
    return thread == gObservedThread.load(std::memory_order_relaxed);
}
// Makes the calling thread the observed one, unless the present one is inside a call.
void ObserveThisThread();
// Whether calls are observed now: true on the observed thread outside of observers.
inline bool AreObserved() { return IsObservedThread() && !gIsUnobserved; }
// Whether an observer makes the calls that are made now.
inline bool AreByObserver() { return IsObservedThread() && gIsUnobserved; }

// Calls of exported functions on other threads than the observed one are not
// observed. They call the handlers, on their thread, before they do anything. A
// handler must call no exported function. At most three at a time.
using ForeignHandler = void (*)(const Prototype &function);
void AddForeignHandler(ForeignHandler handler);
void RemoveForeignHandler(ForeignHandler handler);
// To be called for each call that is not observed.
void NoteUnobserved(const Prototype &function, Side callee);

// A plugin's name, or its folder's while it has none; "host" for 0. The text is never freed.
const std::string &LabelOf(AVSKPluginID plugin);
// The same text outside the heap.
std::string_view KeptLabelOf(AVSKPluginID plugin);

// Calls during its lifetime are not observed.
class Unobserved {
  public:
    Unobserved() noexcept : mSets(AreObserved()) {
        if (mSets)
            gIsUnobserved = true;
    }
    ~Unobserved() {
        if (mSets)
            gIsUnobserved = false;
    }
    Unobserved(const Unobserved &) = delete;
    Unobserved &operator=(const Unobserved &) = delete;

  private:
    const bool mSets;
};

} // namespace crossings

#endif
