// Keeps the stack of calls and notifies the observers; see Crossing.h. Owns the
// innermost call, the observers, the handler of foreign calls, and the labels of plugins.
#include "Crossing.h"

#include "Callback.h"
#include "ValueText.h"
#include "Words.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cassert>
#include <cstring>
#include <exception>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include <cxxabi.h>

namespace crossings {
namespace {

Crossing *gInnermost = nullptr;
Crossing::Clock::duration gObserving{}; // the time spent in observers so far
// Never destroyed: plugins may call until the process ends.
std::map<AVSKPluginID, std::string> &gLabels = *new std::map<AVSKPluginID, std::string>;

// Constructed on first use: static observers register before main().
std::vector<Observer *> &Observers() {
    static auto &observers = *new std::vector<Observer *>;
    return observers;
}

// False on other threads, which may only use the library's thread slots.
thread_local bool tObserved = false;
thread_local bool tIsMain = false;

std::atomic<ForeignHandler> gForeignHandler = nullptr;

__attribute__((constructor)) void ObserveThisThread() { tObserved = tIsMain = true; }

AVSKPluginID Dispatched() {
    const Unobserved calls;
    return AVSKGetMyID();
}

// An entry point belongs to the called plugin, another callback to the plugin that registered it.
AVSKPluginID Owner(const Callback &callback, AVSKPluginID dispatched) {
    return callback.owner == NO_PLUGIN_ID ? dispatched : callback.owner;
}

// "Menu" for ".../Menu/lin.avp", and for ".../Menu.avp".
std::string NameFromPath(std::string_view path) {
    path = path.substr(0, path.rfind('.'));
    std::string_view name = path.substr(path.rfind('/') + 1);
    if (name == "lin" && path.size() > name.size()) {
        const std::string_view folder = path.substr(0, path.size() - name.size() - 1);
        name = folder.substr(folder.rfind('/') + 1);
    }
    return std::string(name);
}

// Labels appear in lines of reports.
std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
    return text;
}

// At the end of a start the library does not know the plugin's name yet, but the buffer holds it.
void NoteName(const Crossing &start) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    const auto *given = static_cast<const char *>(start["outName"].pointer);
    if (start.returned && start.result.integer != 0 && ReadText(given, -1, name.data(), name.size()) && name.front())
        gLabels[start.plugin] = OneLine(name.data());
}

} // namespace

Crossing::Crossing(const Prototype &prototype, Side callee, std::span<const Value> values,
                   const Callback *called) noexcept
    : what(prototype), from(CurrentSide()), to(callee), arguments(values), callback(called),
      plugin(gInnermost ? gInnermost->plugin : AVSK_PLUGIN_AERIVO), dispatched(Dispatched()), outer(gInnermost),
      depth(gInnermost ? gInnermost->depth + 1 : 0) {
    if (called)
        plugin = Owner(*called, dispatched);
    gInnermost = this;
    if (IsStart())
        gLabels.erase(plugin); // the ID may have belonged to another plugin
    const Unobserved calls;
    const Clock::time_point start = Clock::now();
    began = start;
    for (Observer *observer : Observers())
        observer->Begins(*this);
    began = Clock::now();
    gObserving += began - start;
    mObserving = gObserving;
}

Crossing::~Crossing() {
    ended = Clock::now();
    mObserving = gObserving - mObserving;
    {
        const Unobserved calls;
        if (IsStart())
            NoteName(*this);
        for (Observer *observer : Observers())
            observer->Ends(*this);
    }
    gObserving += Clock::now() - ended;
    gInnermost = outer;
}

void Crossing::NoteException() noexcept {
    thrownType = abi::__cxa_current_exception_type();
    const std::exception_ptr handled = std::current_exception();
    static_assert(sizeof handled == sizeof(void *),
                  "an exception_ptr holds the address of the object and nothing else");
    thrown = *reinterpret_cast<const void *const *>(&handled);
}

bool Crossing::IsEntryPoint() const { return std::strncmp(what.name, "AVPlugin", std::strlen("AVPlugin")) == 0; }
bool Crossing::IsStart() const { return std::strcmp(what.name, "AVPluginStart") == 0; }

const Value &Crossing::operator[](const char *parameter) const {
    const std::string_view wanted = parameter;
    std::string_view names = what.parameters;
    for (const Value &value : arguments) {
        if (TakeWord(names) == wanted)
            return value;
    }
    assert(!"no parameter of this name");
    static const Value nothing{};
    return nothing;
}

void AddObserver(Observer &observer) { Observers().push_back(&observer); }
void RemoveObserver(Observer &observer) { std::erase(Observers(), &observer); }

const Crossing *Innermost() { return gInnermost; }
Side CurrentSide() { return gInnermost ? gInnermost->to : Side::Host; }
bool AreObserved() { return tObserved; }
bool AreByObserver() { return tIsMain && !tObserved; }

void OnForeignCall(ForeignHandler handler) { gForeignHandler = handler; }

void NoteUnobserved(const Prototype &function, Side callee) {
    const ForeignHandler handler = tIsMain || callee != Side::Library ? nullptr : gForeignHandler.load();
    if (handler)
        handler(function);
}

const std::string &LabelOf(AVSKPluginID plugin) {
    const auto known = gLabels.find(plugin);
    if (known != gLabels.end())
        return known->second;
    if (plugin == AVSK_PLUGIN_AERIVO)
        return gLabels[plugin] = "host";
    const Unobserved calls;
    std::array<char, AVSK_TEXT_SIZE> name{};
    std::array<char, AVSK_TEXT_SIZE> path{};
    AVSKGetPluginInfo(plugin, name.data(), path.data(), nullptr, nullptr);
    // The library answers the path while a plugin has not started.
    const bool hasName = name.front() && !std::string_view(name.data()).ends_with(".avp");
    std::string label = OneLine(hasName ? name.data() : NameFromPath(path.data()));
    static const std::string nobody = "nobody";
    return label.empty() ? nobody : gLabels[plugin] = std::move(label);
}

Unobserved::Unobserved() noexcept : mBefore(std::exchange(tObserved, false)) {}
Unobserved::~Unobserved() { tObserved = mBefore; }

} // namespace crossings
