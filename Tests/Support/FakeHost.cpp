// Fills the fake host's slots. The function in a slot is generated from the
// slot's type. It journals the call and forwards it to the std::function in
// FakeHost::on.
#include "FakeHost.h"

#include <cstdio>
#include <cstring>
#include <utility>

namespace {

Lines gJournal;

std::string Text(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    return buffer;
}

std::string Text(const char *text) { return text ? '"' + std::string(text) + '"' : "null"; }

template <class Value>
std::string Text(Value *pointer) {
    if (!pointer)
        return "null";
    const void *address = reinterpret_cast<const void *>(pointer);
    const auto name = Host().names.find(address);
    if (name != Host().names.end())
        return name->second;
    // A message may carry a small number in its pointer parameter.
    const auto number = reinterpret_cast<std::uintptr_t>(address);
    return number < 65536 ? std::to_string(number) : "pointer";
}

#define AVSK_TEST_NAME(number, name) #name,
const char *const kSlotNames[] = {"version", "sizeInBytes", AVSK_TEST_SLOTS(AVSK_TEST_NAME)};
#undef AVSK_TEST_NAME

// These slots are called often and as a side effect of other calls, so they are not journaled.
bool IsQuiet(int slot) { return slot == 14 || slot == 18 || slot == 25 || slot == 29; }

template <int Slot, auto Service, class Pointer>
struct Trampoline;
template <int Slot, auto Service, class Result, class... Arguments>
struct Trampoline<Slot, Service, Result (*)(Arguments...)> {
    static Result Call(Arguments... arguments) {
        if (!IsQuiet(Slot)) {
            std::string line;
            ((line += (line.empty() ? "" : ", ") + Text(arguments)), ...);
            Note(std::string(kSlotNames[Slot]) + "(" + line + ")");
        }
        // A copy: the test may replace it during the call.
        if (const auto service = Host().on.*Service)
            return service(arguments...);
        return Result();
    }
};

} // namespace

void Note(const std::string &line) { gJournal.push_back(line); }

Lines Take() { return std::exchange(gJournal, {}); }

FakeHost::FakeHost() {
    table.version = 4;
    table.sizeInBytes = sizeof table;
#define AVSK_TEST_FILL(number, name)                                                                                   \
    table.name = &Trampoline<number, &HostServices::name, decltype(AVSKHostCallbacks::name)>::Call;
    AVSK_TEST_SLOTS(AVSK_TEST_FILL)
#undef AVSK_TEST_FILL

    on.getElapsedTime = [this] { return now; };
    on.debugString = [this](const char *text) {
        log += text;
        logPieces.emplace_back(text);
    };
    on.getSystemPath = [this](char *out) { std::strcpy(out, systemPath.c_str()); };
    on.getAircraftModel = [this](int, char *outPath, char *outFileName) {
        std::strcpy(outPath, aircraftModel.c_str());
        std::strcpy(outFileName, "model.acf");
    };
    on.createMenu = [this](void *, int, const char *) -> void * {
        menus.push_back("menu" + std::to_string(menus.size() + 1));
        names[&menus.back()] = menus.back();
        return &menus.back();
    };
    on.appendMenuItem = [this](void *, int, const char *, int) { return ++lastItemID; };
}

std::string FakeHost::TakeLog() {
    logPieces.clear();
    return std::exchange(log, {});
}

void *FakeHost::Menu(int number) {
    auto menu = menus.begin();
    std::advance(menu, number - 1);
    return &*menu;
}

FakeHost &Host() {
    static FakeHost host;
    return host;
}
