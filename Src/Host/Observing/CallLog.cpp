// Records the library's calls of the host's services; see CallLog.h.
#include "CallLog.h"

#include "Crossings/Services.h"
#include "Crossings/ValueText.h"
#include "Services/Simulator.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <utility>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Value;

// The handles of the host's own objects, by name.
class HostHandles : public crossings::HandleNames {
  public:
    explicit HostHandles(const Simulator &simulator) : mSimulator(simulator) {}

    std::string_view NameOf(const void *handle) const override {
        if (const Menu *menu = mSimulator.menus.Known(handle))
            return menu->name;
        if (const Command *command = mSimulator.commands.Known(handle))
            return command->name;
        if (mSimulator.objects.Known(handle))
            return static_cast<const Object *>(handle)->path;
        return mSimulator.probes.Known(handle) ? "probe" : "";
    }

  private:
    const Simulator &mSimulator;
};

// A list of buttons ends with 0.
std::string ListOf(const Value &buttons) {
    std::string list;
    for (const int *button = static_cast<const int *>(buttons.pointer); button && *button != 0; ++button)
        list += (list.empty() ? "" : " ") + std::to_string(*button);
    return list;
}

bool IsList(const Crossing &crossing, std::size_t index) {
    return index == 0 && std::string_view(crossing.what.name) == "commandButton";
}

std::optional<double> ParseNumber(const std::string &text) {
    double number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace

CallLog::CallLog(const Simulator &simulator) : mSimulator(simulator) { crossings::AddObserver(*this); }
CallLog::~CallLog() { crossings::RemoveObserver(*this); }

int CallLog::CountArguments(std::string_view slot) {
    const crossings::Prototype *service = crossings::FindService(slot);
    return service ? crossings::CountParameters(*service) : -1;
}

crossings::Interest CallLog::InterestIn(const crossings::Prototype &function) const {
    return function.form == crossings::Prototype::Form::Service ? crossings::Interest::Work : crossings::Interest::None;
}

void CallLog::Begins(const Crossing &crossing) {
    Arguments arguments;
    for (std::size_t i = 0; i < crossing.arguments.size(); ++i) {
        const Value &value = crossing.arguments[i];
        const std::string text = IsList(crossing, i) ? ListOf(value) : StableText(value, HostHandles(mSimulator));
        arguments.push_back(mSimulator.console.WithoutRoot(text));
    }
    if (mCalls[crossing.what.name].insert_or_assign(std::move(arguments), ++mLast).second)
        ++mSize;
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

bool Matches(const std::string &wanted, const std::string &seen) {
    constexpr double kClose = 1e-4;
    if (wanted == "*" || wanted == seen)
        return true;
    const std::size_t tilde = wanted.find('~');
    const auto a = ParseNumber(wanted.substr(0, tilde));
    const auto b = ParseNumber(seen);
    const auto tolerance = tilde == std::string::npos ? std::optional(kClose * std::max(1.0, std::fabs(a.value_or(0))))
                                                      : ParseNumber(wanted.substr(tilde + 1));
    return a && b && tolerance && std::fabs(*a - *b) <= *tolerance;
}

} // namespace host
