// A thing that a plugin has created or acquired, and can give back.
#ifndef AVSK_HOST_OBSERVING_POSSESSION_H
#define AVSK_HOST_OBSERVING_POSSESSION_H

#include "AVSK/AVSKTypes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class Kind : std::uint8_t {
    Dataref,
    Subscription, // to a shared value
    Loop,
    Draw,
    Sniffer,
    Window,
    HotKey,
    Menu,
    Item, // of a menu
    Handler,
    Command,
    Hold, // of a command that was begun
    Button,
    Probe,
    Object,
    Load, // of an object, under way
    Camera,
    Planes,
};

// Distinguishes a possession from others of its kind.
struct Key {
    std::vector<std::uintptr_t> numbers; // addresses too
    std::string text;

    bool IsEmpty() const { return numbers.empty() && text.empty(); }
    bool operator==(const Key &other) const = default;
};

struct Possession {
    Kind kind = Kind::Dataref;
    AVSKPluginID owner = NO_PLUGIN_ID;
    Key key;
    Key otherKey;                 // of calls that identify it in another way; may be empty
    const void *handle = nullptr; // of the library; of a load the object that arrived
    bool arrived = false;         // a load is finished, and its plugin has not been notified yet
    std::string what;             // a description at the time of its creation, without addresses
    std::string madeBy;           // "AVSKCreateMenu in AVPluginStart"
};

// How many possessions of a kind can have the same key.
enum class Uniqueness : std::uint8_t {
    Many,
    OnePerPlugin,
    One,
};

struct KindTraits {
    const char *word; // in lists and sessions
    Uniqueness uniqueness;
    bool canBeGivenBack;
    bool canBeTaken; // the library can take it from a loaded plugin
    // Asks the library whether it still exists; null if the library cannot tell.
    bool (*exists)(const Possession &possession);
};
const KindTraits &TraitsOf(Kind kind);

// True also if the library cannot tell.
bool Exists(const Possession &possession);
bool HasKey(const Possession &possession, const Key &key);

std::optional<Kind> KindOf(std::string_view word);
// The words of all kinds: "dataref, subscription, ...".
std::string KindWords();

} // namespace host

#endif
