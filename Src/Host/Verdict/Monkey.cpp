// Random steps; see MonkeyLines() in Scenarios.h.
#include "Scenarios.h"

#include "Session/Values.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <random>

namespace host {
namespace {

class Monkey {
  public:
    Monkey(const Stage &stage, unsigned seed) : mStage(stage), mRandom(seed) {}

    std::string Step() {
        // A kind of step that the plugin offers nothing for is replaced by frames.
        switch (Below(16)) {
        case 0:
            return Pick(mStage.made.items, [](const auto &item) { return "menu " + Written(item); });
        case 1:
            return Pick(mStage.made.commands, [this](const auto &command) {
                constexpr std::array kWords{"command ", "begin ", "end "};
                return kWords[Below(std::size(kWords))] + Written(command);
            });
        case 2:
            return Pick(mStage.made.keys, [](const auto &key) { return "key " + key; });
        case 3:
            return (Below(2) == 0 ? "key " : "keydown ") + Key();
        case 4:
            return "keyup " + Key();
        case 5:
            return "click " + Point();
        case 6:
            return "drag " + Point() + " " + Point() + " " + std::to_string(1 + Below(3));
        case 7:
            return "wheel " + Point() + " " + std::to_string(static_cast<int>(Below(7)) - 3);
        case 8:
            return Pick(mStage.made.datarefs, [this](const auto &dataref) { return Access(dataref); });
        case 9:
            return "message " + mStage.plugin + " " + std::to_string(100 + Below(10));
        case 10:
            return (Below(3) == 0 ? "disable " : "enable ") + mStage.plugin;
        case 11:
            return Below(4) == 0 ? "reload" : (Below(2) == 0 ? "show " : "hide ") + mStage.plugin;
        case 12:
            return Below(3) == 0 ? "crash" : "view next";
        case 13: {
            constexpr std::array kLags{"0.0005", "0.1", "0.7", "4", "600"};
            return std::string("lag ") + kLags[Below(std::size(kLags))];
        }
        default:
            return Frames();
        }
    }

  private:
    unsigned Below(std::size_t end) { return static_cast<unsigned>(mRandom() % end); }

    std::string Frames() { return "frames " + std::to_string(1 + Below(4)); }

    template <class Things, class Use>
    std::string Pick(const Things &things, Use use) {
        return things.empty() ? Frames() : use(things[Below(things.size())]);
    }

    // In or near a window, or anywhere on the screen.
    std::string Point() {
        constexpr int kMargin = 15;
        std::array<int, 4> place{0, 768, 1024, 0};
        if (!mStage.made.windows.empty() && Below(4) > 0)
            place = mStage.made.windows[Below(mStage.made.windows.size())];
        const auto between = [this](int low, int high) {
            return low - kMargin +
                   static_cast<int>(Below(static_cast<std::size_t>(std::max(high - low, 0) + 2 * kMargin)));
        };
        return std::to_string(between(place[0], place[2])) + "," + std::to_string(between(place[3], place[1]));
    }

    std::string Key() {
        constexpr std::array kKeys{"A", "Z", "5", "Escape", "Return", "Tab", "Left", "F4", "F8", "Delete"};
        return kKeys[Below(std::size(kKeys))];
    }

    std::string Access(const Inventory::Dataref &dataref) {
        const std::string name = Written(dataref.name);
        if (dataref.accessors.empty())
            return "get " + name;
        const std::string &accessor = dataref.accessors[Below(dataref.accessors.size())];
        if (dataref.writable && Below(2) == 0)
            return "set " + name + " " + (accessor == "data" ? "\"monkey\"" : std::to_string(Below(1000)));
        const bool isArray = accessor.ends_with('s') || accessor == "data";
        return "read " + name + " " + accessor +
               (isArray ? " " + std::to_string(Below(20)) + " " + std::to_string(1 + Below(50)) : "");
    }

    const Stage &mStage;
    std::mt19937 mRandom;
};

} // namespace

std::vector<std::string> MonkeyLines(const Stage &stage, unsigned seed, int count) {
    Monkey monkey(stage, seed);
    std::vector<std::string> lines(static_cast<std::size_t>(count));
    std::generate(lines.begin(), lines.end(), [&monkey] { return monkey.Step(); });
    return lines;
}

} // namespace host
