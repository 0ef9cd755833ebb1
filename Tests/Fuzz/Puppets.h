// The puppets: plugins whose code lies in the program. Each of their functions is
// instantiated once per file. So the target detects calls into a file that is not
// mapped, and files that are unmapped before a call returns.
#ifndef AVSK_FUZZ_PUPPETS_H
#define AVSK_FUZZ_PUPPETS_H

#include "Model.h"

#include "AVSK/AVSK.h"

#include <cmath>
#include <tuple>
#include <type_traits>
#include <utility>

// Marks a call of a file's code.
class InFile {
  public:
    explicit InFile(int index);
    ~InFile();
    InFile(const InFile &) = delete;
    InFile &operator=(const InFile &) = delete;

  private:
    const int previous;
    const int mapping;
};

// Returns Calls::Call<file>.
template <class Calls>
auto OfFile(int file) {
    return [file]<int... kFiles>(std::integer_sequence<int, kFiles...>) {
        constexpr decltype(&Calls::template Call<0>) calls[] = {Calls::template Call<kFiles>...};
        return calls[file];
    }
    (std::make_integer_sequence<int, kPuppets + 1>());
}

// Wraps a function as code of each file.
template <auto kTarget, class Pointer = decltype(kTarget)>
struct InFiles;
template <auto kTarget, class Result, class... Arguments>
struct InFiles<kTarget, Result (*)(Arguments...)> {
    template <int kFile>
    static Result Call(Arguments... arguments) {
        const InFile call(kFile);
        return kTarget(arguments...);
    }
};

// Checks the arguments of a callback by its kind.
void CheckLoop(const Registration &r, float total, int counter);
void CheckCamera(const Registration &r, const AVSKCameraPosition *position, int isLosingControl);
template <Kind kKind, class... Arguments>
void Check(Registration &r, Arguments... arguments) {
    const auto all = std::make_tuple(arguments...);
    if constexpr (kKind == Kind::Loop)
        CheckLoop(r, std::get<1>(all), std::get<2>(all));
    if constexpr (kKind == Kind::Camera)
        CheckCamera(r, std::get<0>(all), std::get<1>(all));
    if constexpr (kKind == Kind::Draw)
        REQUIRE(gFuzz.drawHooks > 0 && std::get<0>(all) == r.a && std::get<1>(all) == r.b,
                "a draw callback of %d/%d is called for %d/%d", r.a, r.b, std::get<0>(all), std::get<1>(all));
    if constexpr (kKind == Kind::Sniffer || kKind == Kind::HotKey)
        REQUIRE(gFuzz.keyHooks > 0, "a %s runs without a key", NameOf(kKind));
    if constexpr (kKind == Kind::Window) {
        bool losingFocus = false; // only the key callback ends with an int
        if constexpr (std::is_same_v<
                          std::tuple_element_t<sizeof...(arguments) - 1, decltype(std::make_tuple(arguments...))>, int>)
            losingFocus = std::get<sizeof...(arguments) - 1>(all) != 0;
        REQUIRE(losingFocus || std::get<0>(all) == r.handle, "a window is called as another");
        REQUIRE(sizeof...(arguments) != 2 || gFuzz.drawHooks > 0, "a window is drawn outside a pass");
    }
    if constexpr (kKind == Kind::Command)
        REQUIRE(std::get<0>(all) == r.handle, "a handler of one command is called for another");
    if constexpr (kKind == Kind::Load)
        REQUIRE(!std::exchange(r.done, true), "an object is delivered twice");
    if constexpr (kKind == Kind::Planes)
        REQUIRE(r.count-- > 0, "planes are offered to a plugin that does not wait");
}

// A callback of a kind. Its last void * argument is the refcon; for menus it is the first.
template <Kind kKind, class Result, class... Arguments>
struct Callback {
    template <int kFile>
    static Result Call(Arguments... arguments) {
        const InFile call(kFile);
        void *refcon = nullptr;
        const auto take = [&](auto argument) {
            if constexpr (std::is_same_v<decltype(argument), void *>)
                refcon = kKind == Kind::Menu && refcon ? refcon : argument;
        };
        (take(arguments), ...);
        Check<kKind>(CheckCall(refcon, kKind), arguments...);
        ActInCallback(24);
        constexpr float intervals[] = {0, -1, 1, -1, 0.25F, -2, -0.5F, 1e30F, -1e30F, INFINITY, -INFINITY, NAN};
        constexpr int answers[] = {1, 0, 1, 2, 1, 3, -1, 0};
        if constexpr (std::is_same_v<Result, float>)
            return gFuzz.in.OneOf(intervals);
        else if constexpr (!std::is_void_v<Result>)
            return gFuzz.in.OneOf(answers);
    }
};

// Converts to the callback of its kind and file with any function type.
template <Kind kKind>
struct Code {
    explicit Code(const Registration &r) : file(r.file) {}
    template <class Result, class... Arguments>
    using Function = Result (*)(Arguments...);
    template <class Result, class... Arguments>
    operator Function<Result, Arguments...>() const {
        return OfFile<Callback<kKind, Result, Arguments...>>(file);
    }
    const int file;
};

// Returns the error callback of a file.
AVSKError_f ErrorCallback(int file);
// Throws an object whose type and destructor belong to the file whose code is running.
[[noreturn]] void ThrowOwn();

#endif
