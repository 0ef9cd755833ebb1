// The library's border, and every call across it.
//
// A program that is linked with this layer defines the library's exported
// names itself and hands each call on, so plugins and the program come past
// here on their way in. Callbacks, entry points and the host's table are
// replaced where the library learns of them, so its calls out come past too.
// Observers see each call begin and end, nested as they happened. The library
// knows nothing of it.
#ifndef AVSK_HOST_CROSSING_H
#define AVSK_HOST_CROSSING_H

#include "AVSK/AVSKTypes.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>

namespace crossings {

// Who calls, and who is called.
enum class Side : std::uint8_t {
    Host,
    Library,
    Plugin
};

// One function, as the public headers declare it.
struct Prototype {
    const char *name;
    const char *parameters; // their names: "x,y,refcon"
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
        Structure
    };

    Kind kind = Kind::Nothing;
    int length = -1; // of a text that may lack its end; -1: it has one
    union {
        int integer;
        AVSKWord word;
        double real;
        const char *text;
        const void *pointer = nullptr; // of a function too
        const struct StructureView *structure;
    };
};

// A structure's fields, by name.
struct StructureView {
    const char *fields;
    std::span<const Value> values;
};

template <class T>
Value ValueOf(T argument) {
    Value value;
    if constexpr (std::is_same_v<T, char>) {
        value.kind = Value::Kind::Character;
        value.integer = static_cast<unsigned char>(argument);
    } else if constexpr (std::is_same_v<T, AVSKWord>) {
        value.kind = Value::Kind::Word;
        value.word = argument;
    } else if constexpr (std::is_integral_v<T>) {
        value.kind = Value::Kind::Integer;
        value.integer = argument;
    } else if constexpr (std::is_floating_point_v<T>) {
        value.kind = Value::Kind::Real;
        value.real = argument;
    } else if constexpr (std::is_same_v<T, const char *>) {
        value.kind = Value::Kind::Text;
        value.text = argument;
    } else if constexpr (std::is_function_v<std::remove_pointer_t<T>>) {
        value.kind = Value::Kind::Function;
        value.pointer = reinterpret_cast<const void *>(argument);
    } else {
        value.kind = Value::Kind::Pointer;
        value.pointer = argument;
    }
    return value;
}

// A call across the border, while it lasts.
class Crossing {
  public:
    using Clock = std::chrono::steady_clock;

    // The callback is null for calls of functions and services.
    Crossing(const Prototype &prototype, Side callee, std::span<const Value> values,
             const Callback *called = nullptr) noexcept;
    ~Crossing();
    Crossing(const Crossing &) = delete;
    Crossing &operator=(const Crossing &) = delete;

    // The call came back; without this it ended by an exception.
    void Return(const Value &value = {}) noexcept {
        result = value;
        returned = true;
    }

    const Prototype &what;
    const Side from;
    const Side to;
    const std::span<const Value> arguments;
    const Callback *const callback;
    // Whose code runs in it, or on whose behalf: the host is 0.
    AVSKPluginID plugin;
    // The plugin that the library takes the caller for.
    const AVSKPluginID dispatched;
    Crossing *const outer; // null for the outermost
    const int depth;       // 0 for the outermost
    Value result;
    bool returned = false;
    Clock::time_point began;
    Clock::time_point ended;

    // An argument by its name. The name must be one.
    const Value &operator[](const char *parameter) const;
    // Whether a plugin is being started, which is when its ID becomes its own.
    bool IsStart() const;
    // Without what observing the calls within took. For Ends() only.
    Clock::duration Duration() const { return ended - began - mObserving; }

  private:
    Clock::duration mObserving{};
};

// Sees every call of the main thread. What it calls of the library itself is
// not observed. An observer must outlive all calls or be removed.
class Observer {
  public:
    virtual ~Observer() = default;
    virtual void Begins(const Crossing &crossing) = 0;
    virtual void Ends(const Crossing &crossing) = 0;
};

void AddObserver(Observer &observer);
void RemoveObserver(Observer &observer);

// The innermost call that has not come back; null if none.
const Crossing *Innermost();
// Whose code runs now.
Side CurrentSide();
// Whether calls are to be observed now: on the main thread, and not by an observer itself.
bool AreObserved();

// A plugin by its name, or by its folder while it has none; "host" for 0. The
// text stays until the plugin of that ID is another one.
const std::string &LabelOf(AVSKPluginID plugin);

// Calls within are not observed.
class Unobserved {
  public:
    Unobserved() noexcept;
    ~Unobserved();
    Unobserved(const Unobserved &) = delete;
    Unobserved &operator=(const Unobserved &) = delete;

  private:
    const bool mBefore;
};

} // namespace crossings

#endif
