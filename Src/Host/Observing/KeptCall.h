// A copy of what reports show of a call. It contains all of it, because after a
// crash nothing can be looked up; it becomes text only in a report.
#ifndef AVSK_HOST_OBSERVING_KEPT_CALL_H
#define AVSK_HOST_OBSERVING_KEPT_CALL_H

#include "Crossings/Crossing.h"
#include "Crossings/Line.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace host {

class KeptCall {
  public:
    KeptCall() = default;
    KeptCall(const KeptCall &other) { *this = other; }
    // Copies only the values and texts that there are.
    KeptCall &operator=(const KeptCall &other);

    // Allocates only for the names of functions, the first time. The outer call may be null.
    void Keep(const crossings::Crossing &crossing, const KeptCall *outer);
    void KeepResult(const crossings::Crossing &crossing);

    crossings::Side To() const { return mHead.to; }
    bool IsForHost() const { return mHead.plugin == AVSK_PLUGIN_AERIVO; } // no plugin is involved
    // Whose code runs, or for which the library or host works.
    std::string_view Plugin() const { return mHead.pluginName; }

    // These are safe in a signal handler.
    void AddTitle(crossings::Line &line) const; // "AVSKMenuHandler_f OnPick"
    void AddCall(crossings::Line &line) const;  // "library > Menu  AVSKMenuHandler_f OnPick(menuRef=...)"
    void AddResult(crossings::Line &line) const;

  private:
    static constexpr std::size_t kMostValues = 20;
    static constexpr std::size_t kTexts = 5 * 84;

    // Copies a value, with the text or name that shows it. Texts are offsets in mTexts.
    void KeepValue(crossings::Value &kept, const crossings::Value &value);
    void KeepText(crossings::Value &kept);
    void KeepValues(std::span<const crossings::Value> values);
    crossings::Value Restored(const crossings::Value &value) const;

    struct Head {
        const crossings::Prototype *what = nullptr;
        std::string_view callback; // the name of its function; empty for others
        std::string_view pluginName;
        std::string_view outerName; // of the plugin that calls
        const char *fields = "";    // of the argument that is a structure
        AVSKPluginID plugin = AVSK_PLUGIN_AERIVO;
        crossings::Side from = crossings::Side::Host;
        crossings::Side to = crossings::Side::Host;
        bool isReturned = false;
        std::uint8_t arguments = 0;
        std::uint8_t values = 0; // the arguments, and behind them the structure's fields
        std::uint16_t texts = 0; // bytes in use
        crossings::Value result{};
    };

    Head mHead;
    std::array<crossings::Value, kMostValues> mValues;
    std::array<char, kTexts> mTexts;
};

} // namespace host

#endif
