// Keeps the stack of calls and notifies the observers; see Crossing.h. Owns the
// innermost call, the observers, the handler of foreign calls, and the labels of plugins.
#include "Crossing.h"

#include "Callback.h"
#include "Interned.h"
#include "PrototypeTable.h"
#include "RealSymbols.h"
#include "ValueText.h"
#include "Words.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cassert>
#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>
#include <vector>

#include <cxxabi.h>

namespace crossings {
namespace {

Crossing *gInnermost = nullptr;
Crossing::Clock::duration gObserving{}; // the time spent in observers so far, as far as it is measured
std::array<std::atomic<ForeignHandler>, 3> gForeignHandlers{};

std::span<Prototype> gOpenGL;
void (*gUpdateOpenGL)() = nullptr;

// In the order in which they are notified. Static observers register before main().
constinit std::array<Observer *, 32> gObservers{};
std::size_t gObserverCount = 0;

__attribute__((constructor)) void ObserveLoadingThread() { ObserveThisThread(); }

// The library's own function: a call of the exported name would be a crossing.
AVSKPluginID Dispatched() {
    static const auto real = reinterpret_cast<decltype(&AVSKGetMyID)>(NextSymbol("AVSKGetMyID"));
    return real();
}

bool Includes(Interest interest, Interest part) {
    return (static_cast<unsigned>(interest) & static_cast<unsigned>(part)) == static_cast<unsigned>(part);
}

// Asks the observers what they want of these functions. Whether one reads times.
bool AskObservers(std::span<Prototype> functions, Interest (Observer::*ask)(const Prototype &) const) {
    bool isTimed = false;
    for (Prototype &function : functions) {
        function.observers = 0;
        function.isTimed = function.isMeasured = false;
        for (std::size_t i = 0; i < gObserverCount; ++i) {
            const Interest interest = (gObservers[i]->*ask)(function);
            if (interest != Interest::None)
                function.observers |= 1U << i;
            function.isTimed = function.isTimed || Includes(interest, Interest::Times);
            function.isMeasured = function.isMeasured || Includes(interest, Interest::Work);
        }
        isTimed = isTimed || function.isTimed;
    }
    return isTimed;
}

void UpdatePrototypes() {
    const bool isTimed = AskObservers(gPrototypes, &Observer::InterestIn);
    const bool isOpenGLTimed = AskObservers(gOpenGL, &Observer::InterestInOpenGL);
    if (isTimed || isOpenGLTimed) {
        Clock::Prepare();
    } else {
        for (const std::span<Prototype> functions : {std::span<Prototype>(gPrototypes), gOpenGL}) {
            for (Prototype &function : functions)
                function.isMeasured = false;
        }
    }
    if (gUpdateOpenGL)
        gUpdateOpenGL();
}

template <auto kNotify>
void NotifyObservers(const Crossing &crossing) {
    for (std::uint32_t rest = crossing.what.observers; rest != 0; rest &= rest - 1)
        (gObservers[static_cast<std::size_t>(std::countr_zero(rest))]->*kNotify)(crossing);
}

// ---- Labels of plugins

// By ID; null if it is not known yet. Never destroyed: plugins may call until the process ends.
std::vector<const InternedText *> &gLabels = *new std::vector<const InternedText *>;

const InternedText *&LabelSlot(AVSKPluginID plugin) {
    const auto index = static_cast<std::size_t>(plugin);
    if (index >= gLabels.size())
        gLabels.resize(index + 1);
    return gLabels[index];
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
        LabelSlot(start.plugin) = &Interned(OneLine(name.data()));
}

const InternedText &Label(AVSKPluginID plugin) {
    const auto index = static_cast<std::size_t>(plugin);
    if (index < gLabels.size() && gLabels[index])
        return *gLabels[index];
    if (plugin == AVSK_PLUGIN_AERIVO)
        return *(LabelSlot(plugin) = &Interned("host"));
    const Unobserved calls;
    std::array<char, AVSK_TEXT_SIZE> name{};
    std::array<char, AVSK_TEXT_SIZE> path{};
    AVSKGetPluginInfo(plugin, name.data(), path.data(), nullptr, nullptr);
    // The library answers the path while a plugin has not started.
    const bool hasName = name.front() && !std::string_view(name.data()).ends_with(".avp");
    const std::string label = OneLine(hasName ? name.data() : NameFromPath(path.data()));
    if (label.empty())
        return Interned("nobody");
    return *(LabelSlot(plugin) = &Interned(label));
}

} // namespace

Crossing::Crossing(const Prototype &prototype, Side callee, std::span<const Value> values,
                   const Callback *called) noexcept
    : what(prototype), from(CurrentSide()), to(callee), arguments(values), callback(called),
      plugin(gInnermost ? gInnermost->plugin : AVSK_PLUGIN_AERIVO), dispatched(Dispatched()), outer(gInnermost),
      depth(gInnermost ? gInnermost->depth + 1 : 0), mIsTimed(prototype.isTimed), mIsMeasured(prototype.isMeasured) {
    if (called)
        plugin = Owner(*called, dispatched);
    gInnermost = this;
    if (IsStart() && plugin >= 0)
        LabelSlot(plugin) = nullptr; // the ID may have belonged to another plugin
    if (what.observers != 0)
        NotifyBegin();
}

void Crossing::NotifyBegin() noexcept {
    gIsUnobserved = true;
    const Clock::time_point start = mIsMeasured ? Clock::now() : Clock::time_point();
    began = start;
    NotifyObservers<&Observer::Begins>(*this);
    if (mIsTimed || mIsMeasured)
        began = Clock::now();
    if (mIsMeasured)
        gObserving += began - start;
    mObserving = gObserving;
    gIsUnobserved = false;
}

Crossing::~Crossing() {
    if (mIsTimed || mIsMeasured)
        ended = Clock::now();
    mObserving = gObserving - mObserving;
    gIsUnobserved = true;
    if (IsStart())
        NoteName(*this);
    NotifyObservers<&Observer::Ends>(*this);
    gIsUnobserved = false;
    if (mIsMeasured)
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

void AddObserver(Observer &observer) {
    assert(gObserverCount < gObservers.size());
    gObservers[gObserverCount++] = &observer;
    UpdatePrototypes();
}

void RemoveObserver(Observer &observer) {
    Observer **const end = gObservers.data() + gObserverCount;
    gObserverCount = static_cast<std::size_t>(std::remove(gObservers.data(), end, &observer) - gObservers.data());
    UpdatePrototypes();
}

void SetOpenGL(std::span<Prototype> functions, void (*update)()) {
    gOpenGL = functions;
    gUpdateOpenGL = update;
    UpdatePrototypes();
}

void LeaveOutTime(Clock::time_point since) { gObserving += Clock::now() - since; }

const Crossing *Innermost() { return gInnermost; }

Side CurrentSide() {
    if (!gInnermost)
        return Side::Host;
    return gInnermost->to == Side::OpenGL ? Side::Plugin : gInnermost->to;
}

void ObserveThisThread() {
    if (gInnermost)
        return;
    const void *thread = nullptr;
    asm("movl %%gs:0, %0" : "=r"(thread));
    gObservedThread = thread;
}

void AddForeignHandler(ForeignHandler handler) {
    for (auto &place : gForeignHandlers) {
        ForeignHandler free = nullptr;
        if (place.compare_exchange_strong(free, handler))
            return;
    }
    assert(!"no place for another handler");
}

void RemoveForeignHandler(ForeignHandler handler) {
    for (auto &place : gForeignHandlers) {
        ForeignHandler known = handler;
        place.compare_exchange_strong(known, nullptr);
    }
}

void NoteUnobserved(const Prototype &function, Side callee) {
    if (IsObservedThread() || (callee != Side::Library && callee != Side::OpenGL))
        return;
    for (const auto &place : gForeignHandlers) {
        if (const ForeignHandler handler = place.load())
            handler(function);
    }
}

const std::string &LabelOf(AVSKPluginID plugin) { return Label(plugin).text; }
std::string_view KeptLabelOf(AVSKPluginID plugin) { return Label(plugin).kept; }

} // namespace crossings
