// Hands one call on across the border and lets the observers see it. Callbacks
// in the arguments are replaced by thunks. Used by the macros that read the
// table of prototypes.
#ifndef AVSK_HOST_FORWARD_H
#define AVSK_HOST_FORWARD_H

#include "CallState.h"
#include "Callback.h"
#include "Crossing.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKProcessing.h"

#include <array>
#include <bit>

namespace crossings {

// ---- Arguments whose type alone does not say how they are passed on; see generate_prototypes.py

template <class F>
struct Called {
    Called(F callback, const CallbackKind &itsKind) : function(callback), kind(itsKind) {}
    F function;
    const CallbackKind &kind;
};

struct Text {
    explicit Text(char *argument) : text(argument) {}
    char *text;
};

struct Start {
    Start(const char *argument, int bytes) : text(argument), count(bytes) {}
    const char *text;
    int count;
};

template <class T>
struct Handle {
    explicit Handle(T *argument) : handle(argument) {}
    T *handle;
};

// A copy of a structure with its callbacks replaced, and the original fields for
// observers. A structure whose size the library will refuse is passed on unchanged.
template <class T>
class Structure {
  public:
    explicit Structure(const T *given);
    Structure(const Structure &) = delete;
    Structure &operator=(const Structure &) = delete;

    const T *Replaced() const;
    Value Shown() const;

  private:
    static constexpr std::size_t kMostFields = 12;
    const T *mGiven;
    mutable T mCopy{};
    std::array<Value, kMostFields> mValues;
    StructureView mView{};
};

// The host's table is replaced by one whose slots are observed. They call the
// slots of the given table, read at the time of each call. The thread that gives
// the table, to initialise the library, is the one that is observed from then on.
template <>
class Structure<AVSKHostCallbacks> {
  public:
    explicit Structure(const AVSKHostCallbacks *given) : mGiven(given) { ObserveThisThread(); }
    const AVSKHostCallbacks *Replaced() const;
    Value Shown() const { return ValueOf<const void *>(mGiven); }

  private:
    const AVSKHostCallbacks *mGiven;
};

template <class T>
Structure(const T *) -> Structure<T>;

// ---- What is passed on for an argument, and the value that observers see

// The side and plugin that pass the arguments of the present call.
struct Giver {
    Side side;
    AVSKPluginID plugin;
};
Giver CurrentGiver();

// Another thread passes its functions unchanged: the tables belong to the observed thread.
template <class F>
F Replace(F function, const CallbackKind &kind) {
    if (!IsObservedThread())
        return function;
    const Giver giver = CurrentGiver();
    return reinterpret_cast<F>(Wrap(reinterpret_cast<Function>(function), kind, giver.side, giver.plugin));
}

// By reference: a floating-point number that is returned by value may lose bits.
template <class T>
const T &Passed(const T &argument) {
    return argument;
}
template <class F>
F Passed(const Called<F> &called) {
    return Replace(called.function, called.kind);
}
template <class T>
const T *Passed(const Structure<T> &structure) {
    return structure.Replaced();
}
inline char *Passed(const Text &argument) { return argument.text; }
inline const char *Passed(const Start &argument) { return argument.text; }
template <class T>
T *Passed(const Handle<T> &argument) {
    return argument.handle;
}

template <class F>
Value ValueOf(const Called<F> &called) {
    return ValueOf(called.function);
}
template <class T>
Value ValueOf(const Structure<T> &structure) {
    return structure.Shown();
}
template <class T>
Value ValueOf(const Handle<T> &argument) {
    Value value = ValueOf(argument.handle);
    value.isHandle = true;
    return value;
}
inline Value ValueOf(const Text &argument) { return ValueOf(static_cast<const char *>(argument.text)); }
inline Value ValueOf(const Start &argument) {
    Value value = ValueOf(argument.text);
    value.length = argument.count > 0 ? argument.count : 0;
    return value;
}

// ---- The call

// A function object: calls the target with the arguments that it is called with.
template <class R, class... P>
struct Forward {
    const Prototype &what;
    const Side callee;
    const Callback *const callback; // null for functions and services
    R (*const target)(P...);

    template <class... A>
    R operator()(const A &...arguments) const {
        if (!AreObserved()) {
            NoteUnobserved(what, callee);
            return target(Passed(arguments)...);
        }
        const std::array<Value, sizeof...(A)> values{ValueOf(arguments)...};
        Crossing crossing(what, callee, values, callback);
        try {
            const StateKeeper state(crossing);
            if constexpr (std::is_void_v<R>) {
                target(Passed(arguments)...);
                crossing.Return();
            } else {
                const R result = target(Passed(arguments)...);
                crossing.Return(ValueOf(result));
                return result;
            }
        } catch (...) {
            crossing.NoteException();
            throw;
        }
    }
};

template <class R, class... P>
Forward(const Prototype &, Side, const Callback *, R (*)(P...)) -> Forward<R, P...>;

} // namespace crossings

#endif
