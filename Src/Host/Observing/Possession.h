// A thing that a plugin has made and can give back.
#ifndef AVSK_HOST_OBSERVING_POSSESSION_H
#define AVSK_HOST_OBSERVING_POSSESSION_H

#include "AVSK/AVSKTypes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

struct Possession {
    Kind kind = Kind::Dataref;
    AVSKPluginID owner = NO_PLUGIN_ID;
    std::string key;              // tells it from others of its kind
    std::string otherKey;         // another way to name it, if there is one
    const void *handle = nullptr; // the library's, for datarefs and windows; of a load the object that arrived
    bool arrived = false;         // of a load: its plugin has not been told yet
    std::string what;             // as it was made, without addresses
    std::string madeBy;           // "AVSKCreateMenu in AVPluginStart"
};

// How many there can be of one key.
enum class Uniqueness : std::uint8_t {
    Many,
    OnePerPlugin,
    One,
};

struct KindTraits {
    const char *word; // for a reader
    Uniqueness uniqueness;
    bool canBeGivenBack;
    bool canBeTaken; // by the library, while its plugin stays
    // Whether it is still there, where the library can be asked; else null.
    bool (*exists)(const Possession &possession);
};
const KindTraits &TraitsOf(Kind kind);

// As far as the library can be asked.
bool Exists(const Possession &possession);
bool HasKey(const Possession &possession, const std::string &key);

std::optional<Kind> KindOf(std::string_view word);
// All of them: "dataref, subscription, ...".
std::string KindWords();

} // namespace host

#endif
