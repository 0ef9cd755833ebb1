// The puppets: plugins whose code lies in the program. Each of the callbacks
// below exists once for each file, so that a call of code that is not mapped,
// or is unmapped before the call returns, is a fault that is seen.
#ifndef AVSK_FUZZ_PUPPETS_H
#define AVSK_FUZZ_PUPPETS_H

#include "Model.h"

#include "AVSK/AVSK.h"

#include <utility>

// A call of a file's code.
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

template <auto kTarget, class Pointer = decltype(kTarget)>
struct InFiles;
template <auto kTarget, class Result, class... Arguments>
struct InFiles<kTarget, Result (*)(Arguments...)> {
    template <int kFile>
    static Result Call(Arguments... arguments) {
        const InFile call(kFile);
        return kTarget(arguments...);
    }
    template <int... kFiles>
    static constexpr auto Select(int file, std::integer_sequence<int, kFiles...>) {
        constexpr Result (*const calls[])(Arguments...) = {Call<kFiles>...};
        return calls[file];
    }
};
// A function as that of a file.
template <auto kTarget>
auto In(int file) {
    return InFiles<kTarget>::Select(file, std::make_integer_sequence<int, kPuppets + 1>());
}

void OnError(const char *message);
float OnLoop(float sinceLast, float total, int counter, void *refcon);
int OnDraw(int phase, int isBefore, void *refcon);
int OnSniffer(char key, int flags, char virtualKey, void *refcon);
void OnDrawWindow(AVSKWindowID window, void *refcon);
void OnKey(AVSKWindowID window, char key, int flags, char virtualKey, void *refcon, int losingFocus);
int OnClick(AVSKWindowID window, int x, int y, int status, void *refcon);
int OnCursor(AVSKWindowID window, int x, int y, void *refcon);
int OnWheel(AVSKWindowID window, int x, int y, int wheel, int clicks, void *refcon);
void OnHotKey(void *refcon);
void OnMenu(void *menuRef, void *itemRef);
int OnCommand(AVSKCommandRef command, int phase, void *refcon);
void OnDataChanged(void *refcon);
int OnReadInt(void *refcon);
void OnWriteInt(void *refcon, int value);
int OnReadInts(void *refcon, int *values, int offset, int max);
void OnWriteInts(void *refcon, int *values, int offset, int count);
void OnObject(AVSKObjectRef object, void *refcon);
void OnPlanes(void *refcon);
int OnCamera(AVSKCameraPosition *position, int isLosingControl, void *refcon);
void OnFeature(const char *name, void *refcon);

// Throws an object whose type and destructor are those of the file whose code runs.
[[noreturn]] void ThrowOwn();

#endif
