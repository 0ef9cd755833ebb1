// Keeps the last values; see Latest.h. Called by the hub.
#include "Latest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace host {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kMostStates = 64;
constexpr std::size_t kMostItems = 5000;                // of a stream
constexpr std::size_t kMostItemBytes = 2 * 1024 * 1024; // of a stream
constexpr std::size_t kMostInMessage = 200;             // items
constexpr std::size_t kMostBytesInMessage = 256 * 1024; // of items
constexpr std::size_t kMostUnshown = 2;
constexpr std::string_view kScreen = "screen";
constexpr std::string_view kHello = "hello"; // every page gets it

// A topic of which each message continues the last one, and the list of its items.
struct StreamTopic {
    std::string_view topic;
    const char *list;
};
constexpr std::array<StreamTopic, 3> kStreams{{{"time", "frames"}, {"calls", "lines"}, {"log", "lines"}}};

const StreamTopic *FindStream(std::string_view topic) {
    const auto found = std::find_if(kStreams.begin(), kStreams.end(),
                                    [topic](const StreamTopic &stream) { return stream.topic == topic; });
    return found == kStreams.end() ? nullptr : found;
}

// ---- Little endian numbers

constexpr std::size_t kVersionBytes = 4;
constexpr std::size_t kFrameBytes = 4;
constexpr std::size_t kSizeBytes = 2 + 2;             // width and height of the screen
constexpr std::size_t kTileHeadBytes = 2 + 2 + 2 + 2; // x, y, width, height
constexpr std::size_t kPlaceBytes = 2 + 2;            // x, y

std::string_view Take(std::string_view &message, std::size_t bytes) {
    if (message.size() < bytes)
        throw std::runtime_error("a picture ends too early");
    const std::string_view taken = message.substr(0, bytes);
    message.remove_prefix(bytes);
    return taken;
}

std::size_t TakeNumber(std::string_view &message, std::size_t bytes) {
    std::size_t number = 0;
    const std::string_view taken = Take(message, bytes);
    for (std::size_t i = bytes; i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(taken[i]);
    return number;
}

void AppendNumber(std::string &message, std::size_t number, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i)
        message += static_cast<char>(number >> (8 * i) & 0xff);
}

} // namespace

void Latest::Clear() {
    mStates.clear();
    mTiles.clear();
    mSize.clear();
    for (auto &[topic, stream] : mStreams) {
        stream.begin += stream.items.size();
        stream.items.clear();
        stream.bytes = 0;
        stream.gap = 0;
    }
}

void Latest::Keep(const Topics &open) {
    std::erase_if(mStates, [&open](const auto &state) { return state.first != kHello && !open.contains(state.first); });
}

// ---- What the simulator sends

void Latest::Add(const std::string &topic, const Json &message, const std::string &text) {
    if (FindStream(topic))
        return AddItems(topic, message);
    if (mStates.size() < kMostStates || mStates.contains(topic))
        mStates[topic] = {++mVersion, std::make_shared<const std::string>(text)};
}

void Latest::AddItems(const std::string &topic, const Json &message) {
    Stream &stream = mStreams[topic];
    if (const auto gap = message.find("gap"); gap != message.end() && gap->is_number_unsigned())
        stream.gap += gap->get<std::uint64_t>();
    const auto list = message.find(FindStream(topic)->list);
    if (list == message.end() || !list->is_array())
        return;
    for (const Json &item : *list) {
        stream.items.push_back(
            {item.dump(-1, ' ', false, Json::error_handler_t::replace), std::exchange(stream.gap, 0)});
        stream.bytes += stream.items.back().text.size();
    }
    while (stream.items.size() > kMostItems || stream.bytes > kMostItemBytes) {
        stream.bytes -= stream.items.front().text.size();
        stream.items.pop_front();
        ++stream.begin;
    }
}

void Latest::AddTiles(std::string_view message) {
    Take(message, kVersionBytes);
    mFrame = Take(message, kFrameBytes);
    if (const std::string_view size = Take(message, kSizeBytes); size != mSize) {
        mTiles.clear();
        mSize = size;
    }
    ++mPicture;
    constexpr std::size_t kMostTiles = 32768; // a screen of 8192 x 8192
    for (std::size_t count = TakeNumber(message, 2); count > 0; --count) {
        std::string head(Take(message, kTileHeadBytes));
        const std::string place = head.substr(0, kPlaceBytes);
        const std::size_t length = TakeNumber(message, 4);
        mTiles[place] = {mPicture, std::move(head), std::string(Take(message, length))};
    }
    if (mTiles.size() > kMostTiles)
        throw std::runtime_error("a picture has too many tiles");
}

// ---- What a page gets

std::optional<Outgoing> Latest::Next(const Topics &open, Progress &progress) const {
    if (auto picture = NextPicture(open, progress))
        return picture;
    if (auto state = NextState(open, progress))
        return state;
    return NextItems(open, progress);
}

// The one that waits longest.
std::optional<Outgoing> Latest::NextState(const Topics &open, Progress &progress) const {
    const State *oldest = nullptr;
    std::uint64_t *got = nullptr;
    for (const auto &[topic, state] : mStates) {
        if (topic != kHello && !open.contains(topic))
            continue;
        std::uint64_t &version = progress.states[topic];
        if (version < state.version && (!oldest || state.version < oldest->version)) {
            oldest = &state;
            got = &version;
        }
    }
    if (!oldest)
        return std::nullopt;
    *got = oldest->version;
    return Outgoing{oldest->text};
}

std::optional<Outgoing> Latest::NextItems(const Topics &open, Progress &progress) const {
    for (const auto &[topic, stream] : mStreams) {
        const std::uint64_t end = stream.begin + stream.items.size();
        if (!open.contains(topic))
            continue;
        const auto [known, isNew] = progress.items.emplace(topic, stream.begin);
        std::uint64_t &next = known->second;
        if (next >= end)
            continue;
        std::uint64_t gap = stream.begin - std::min(next, stream.begin);
        next += gap;
        auto item = stream.items.begin() + static_cast<std::ptrdiff_t>(next - stream.begin);
        gap += item->gap;
        std::string text = R"({"topic":")" + topic + R"(","gap":)" + std::to_string(gap) + R"(,")" +
                           FindStream(topic)->list + R"(":[)" + item->text;
        std::size_t count = 1;
        for (++item; item != stream.items.end() && item->gap == 0 && count < kMostInMessage &&
                     text.size() < kMostBytesInMessage;
             ++item, ++count)
            text.append(",").append(item->text);
        next += count;
        return Outgoing{std::make_shared<const std::string>(text + "]}")};
    }
    return std::nullopt;
}

std::optional<Outgoing> Latest::NextPicture(const Topics &open, Progress &progress) const {
    if (!open.contains(kScreen) || progress.picture == mPicture || progress.unshown.size() >= kMostUnshown)
        return std::nullopt;
    std::string tiles;
    std::size_t count = 0;
    for (const auto &[place, tile] : mTiles) {
        if (tile.version <= progress.picture)
            continue;
        tiles += tile.head;
        AppendNumber(tiles, tile.bytes.size(), 4);
        tiles += tile.bytes;
        ++count;
    }
    progress.picture = mPicture;
    if (count == 0) // the simulator has started again, and has sent none
        return std::nullopt;
    std::string message;
    AppendNumber(message, mPicture, kVersionBytes);
    message.append(mFrame).append(mSize);
    AppendNumber(message, count, 2);
    progress.unshown.push_back(mPicture);
    return Outgoing{std::make_shared<const std::string>(message + tiles), /*isBinary=*/true};
}

} // namespace host
