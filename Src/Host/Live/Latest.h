// What the simulator has sent, and what each page has still to get of it: the last
// state of each topic, the last items of streams, and the last picture. A slow page
// skips intermediate values.
#ifndef AVSK_HOST_LIVE_LATEST_H
#define AVSK_HOST_LIVE_LATEST_H

#include "Client.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace host {

using Topics = std::set<std::string, std::less<>>;

// What one page has got.
struct Progress {
    std::map<std::string, std::uint64_t, std::less<>> states; // versions, by topic
    std::map<std::string, std::uint64_t, std::less<>> items;  // the next one, by stream
    std::uint32_t picture = 0;                                // version of the newest tile
    std::deque<std::uint32_t> unshown;                        // pictures that it has not drawn yet
};

class Latest {
  public:
    // Forgets the simulator, but not how its items and versions were counted.
    void Clear();
    // Forgets topics that no page has open: nobody says any more when they change.
    void Keep(const Topics &open);
    // A message for all pages, and the topic that it names.
    void Add(const std::string &topic, const nlohmann::json &message, const std::string &text);
    // Throws std::runtime_error if they are no valid tiles.
    void AddTiles(std::string_view message);

    // What a page with these topics open gets next; empty if nothing is new.
    std::optional<Outgoing> Next(const Topics &open, Progress &progress) const;

  private:
    struct State {
        std::uint64_t version;
        std::shared_ptr<const std::string> text;
    };
    struct Item {
        std::string text;
        std::uint64_t gap; // items before it that the simulator has left out
    };
    struct Stream {
        std::deque<Item> items;
        std::uint64_t begin = 0; // the number of the first one
        std::size_t bytes = 0;
        std::uint64_t gap = 0; // items left out after the last one
    };
    struct Tile {
        std::uint32_t version;
        std::string head; // place and size, as in the message
        std::string bytes;
    };

    void AddItems(const std::string &topic, const nlohmann::json &message);
    std::optional<Outgoing> NextState(const Topics &open, Progress &progress) const;
    std::optional<Outgoing> NextItems(const Topics &open, Progress &progress) const;
    std::optional<Outgoing> NextPicture(const Topics &open, Progress &progress) const;

    std::map<std::string, State, std::less<>> mStates;
    std::map<std::string, Stream, std::less<>> mStreams;
    std::map<std::string, Tile, std::less<>> mTiles; // by place
    std::string mFrame;                              // its number, as in the message
    std::string mSize;                               // of the screen, as in the message
    std::uint64_t mVersion = 0;                      // of the newest state
    std::uint32_t mPicture = 0;                      // of the newest tile
};

} // namespace host

#endif
