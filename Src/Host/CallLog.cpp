// The recorders in front of the slots, one made from each slot's type; see CallLog.h.
#include "CallLog.h"

#include "Simulator.h"
#include "Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <utility>

namespace host {
namespace {

CallLog *gCalls = nullptr; // slots get no context word

std::string TextOf(int value) { return std::to_string(value); }
std::string TextOf(AVSKWord value) {
    // Words carry numbers and addresses alike; an address differs from run to run.
    constexpr AVSKWord kFirstPage = 4096;
    return value < kFirstPage ? std::to_string(value) : "word";
}
std::string TextOf(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.6g", value);
    return text.data();
}
std::string TextOf(float value) { return TextOf(double{value}); }
std::string TextOf(const char *text) { return text ? text : "null"; }
std::string TextOf(void *handle) { return gCalls->Describe(handle); }
template <typename T>
std::string TextOf(T *pointer) {
    if (!pointer)
        return "null";
    return std::is_function_v<T> ? "function" : "pointer";
}

// The list ends with 0.
std::string ListOf(const int *buttons) {
    std::string list;
    for (; buttons && *buttons != 0; ++buttons)
        list += (list.empty() ? "" : " ") + std::to_string(*buttons);
    return list;
}

template <auto Slot>
struct Recorder;

template <typename R, typename... A, R (*AVSKHostCallbacks::*Slot)(A...)>
struct Recorder<Slot> {
    static constexpr int kArguments = sizeof...(A);
    static inline R (*original)(A...) = nullptr;
    static inline const char *name = nullptr;

    static R Call(A... arguments) {
        gCalls->Record(name, {TextOf(arguments)...});
        return original(arguments...);
    }

    static void PutInFront(AVSKHostCallbacks &table, const char *slot) {
        name = slot;
        original = std::exchange(table.*Slot, &Call);
    }
};

// A text in a buffer of its own type; other plain char buffers are for the answer.
using DrawString = Recorder<&AVSKHostCallbacks::drawString>;
template <>
void DrawString::Call(float *colour, int x, int y, char *text, int *width, int font) {
    gCalls->Record(name, {TextOf(colour), TextOf(x), TextOf(y), TextOf(static_cast<const char *>(text)), TextOf(width),
                          TextOf(font)});
    original(colour, x, y, text, width, font);
}

using CommandButton = Recorder<&AVSKHostCallbacks::commandButton>;
template <>
void CommandButton::Call(const int *buttons, int release, int pass) {
    gCalls->Record(name, {ListOf(buttons), TextOf(release), TextOf(pass)});
    original(buttons, release, pass);
}

struct Slot {
    const char *name;
    int arguments;
    void (*putInFront)(AVSKHostCallbacks &table, const char *name);
};

#define SLOT(name)                                                                                                     \
    Slot { #name, Recorder < &AVSKHostCallbacks::name> ::kArguments, Recorder < &AVSKHostCallbacks::name> ::PutInFront }
constexpr Slot kSlots[] = {
    SLOT(getScreenSize),
    SLOT(getMouseLocation),
    SLOT(setGraphicsState),
    SLOT(bindTexture2d),
    SLOT(generateTextureNumbers),
    SLOT(getTexture),
    SLOT(worldToLocal),
    SLOT(localToWorld),
    SLOT(drawTranslucentDarkBox),
    SLOT(drawString),
    SLOT(drawNumber),
    SLOT(getFontDimensions),
    SLOT(getElapsedTime),
    SLOT(readCameraPosition),
    SLOT(drawAircraft),
    SLOT(loadAircraftModel),
    SLOT(getAircraftModel),
    SLOT(countAircraft),
    SLOT(placeUserAtAirport),
    SLOT(simulateKeyPress),
    SLOT(speakString),
    SLOT(commandKeyStroke),
    SLOT(commandButton),
    SLOT(getSystemPath),
    SLOT(getPrefsPath),
    SLOT(getVersions),
    SLOT(getLanguage),
    SLOT(debugString),
    SLOT(createMenu),
    SLOT(appendMenuItem),
    SLOT(setMenuItemName),
    SLOT(destroyMenu),
    SLOT(reinitUsersPlane),
    SLOT(reloadScenery),
    SLOT(getFirstNavAid),
    SLOT(getNextNavAid),
    SLOT(findFirstNavAidOfType),
    SLOT(findLastNavAidOfType),
    SLOT(findNavAid),
    SLOT(getNavAidInfo),
    SLOT(countFMSEntries),
    SLOT(getDisplayedFMSEntry),
    SLOT(getDestinationFMSEntry),
    SLOT(setDisplayedFMSEntry),
    SLOT(setDestinationFMSEntry),
    SLOT(getFMSEntryInfo),
    SLOT(setFMSEntryInfo),
    SLOT(setFMSEntryLatLon),
    SLOT(clearFMSEntry),
    SLOT(getGPSDestinationType),
    SLOT(getGPSDestination),
    SLOT(showMessage),
    SLOT(showProgress),
    SLOT(findCommand),
    SLOT(beginCommand),
    SLOT(continueCommand),
    SLOT(endCommand),
    SLOT(createProbe),
    SLOT(probeTerrain),
    SLOT(findSymbol),
    SLOT(measureString),
    SLOT(removeMenuItem),
    SLOT(loadObject),
    SLOT(drawObject),
    SLOT(unloadObject),
    SLOT(lookupObjects),
    SLOT(loadDataFile),
    SLOT(saveDataFile),
    SLOT(loadObjectAsync),
    SLOT(receiveMessage),
};
#undef SLOT
constexpr int kNumbers = 2; // version and size are no functions
static_assert(std::size(kSlots) == AVSK_HOST_SLOTS - kNumbers);

std::optional<double> NumberIn(const std::string &text) {
    double number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace

void CallLog::Watch(AVSKHostCallbacks &table) {
    gCalls = this;
    for (const Slot &slot : kSlots)
        slot.putInFront(table, slot.name);
}

int CallLog::CountArguments(std::string_view slot) {
    const auto found =
        std::find_if(std::begin(kSlots), std::end(kSlots), [slot](const Slot &known) { return known.name == slot; });
    return found == std::end(kSlots) ? -1 : found->arguments;
}

void CallLog::Record(const char *slot, Arguments arguments) {
    for (std::string &argument : arguments)
        argument = mSimulator.console.WithoutRoot(argument);
    mCalls[slot][std::move(arguments)] = ++mLast;
}

bool CallLog::Contains(const std::string &slot, const Arguments &wanted) const {
    const auto calls = mCalls.find(slot);
    return calls != mCalls.end() && std::any_of(calls->second.begin(), calls->second.end(), [&](const auto &call) {
               return wanted.size() <= call.first.size() &&
                      std::equal(wanted.begin(), wanted.end(), call.first.begin(), Matches);
           });
}

std::string CallLog::Latest(const std::string &slot) const {
    constexpr std::size_t kMost = 3;
    const auto calls = mCalls.find(slot);
    if (calls == mCalls.end())
        return "no call of it";
    std::vector<std::pair<long, std::string>> latest;
    for (const auto &[arguments, number] : calls->second) {
        std::string text;
        for (const std::string &argument : arguments)
            text += (text.empty() ? "" : ", ") + argument;
        latest.emplace_back(number, slot + "(" + text + ")");
    }
    std::sort(latest.begin(), latest.end());
    const std::size_t skipped = latest.size() > kMost ? latest.size() - kMost : 0;
    std::string text = skipped > 0 ? std::to_string(skipped) + " others and " : "";
    for (std::size_t i = skipped; i < latest.size(); ++i)
        text += (i == skipped ? "" : ", ") + latest[i].second;
    return text;
}

std::string CallLog::Describe(const void *handle) const {
    if (!handle)
        return "null";
    if (const Menu *menu = mSimulator.menus.Known(handle))
        return menu->name;
    if (const Command *command = mSimulator.commands.Known(handle))
        return command->name;
    if (const Object *object = mSimulator.objects.Known(handle) ? static_cast<const Object *>(handle) : nullptr)
        return object->path;
    return mSimulator.probes.Known(handle) ? "probe" : "pointer";
}

bool Matches(const std::string &wanted, const std::string &seen) {
    constexpr double kClose = 1e-4;
    if (wanted == "*" || wanted == seen)
        return true;
    const std::size_t tilde = wanted.find('~');
    const auto a = NumberIn(wanted.substr(0, tilde));
    const auto b = NumberIn(seen);
    const auto tolerance = tilde == std::string::npos ? std::optional(kClose * std::max(1.0, std::fabs(a.value_or(0))))
                                                      : NumberIn(wanted.substr(tilde + 1));
    return a && b && tolerance && std::fabs(*a - *b) <= *tolerance;
}

} // namespace host
