// Asks the library for its plugins; see LoadedPlugins.h.
#include "LoadedPlugins.h"

#include "Common/NearestName.h"
#include "Common/Text.h"

#include "AVSK/AVSKPlugins.h"

#include <array>
#include <vector>

namespace host {

namespace {

struct Identity {
    std::string name;
    std::string signature;
};

Identity IdentityOf(AVSKPluginID plugin) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    std::array<char, AVSK_TEXT_SIZE> signature{};
    AVSKGetPluginInfo(plugin, name.data(), nullptr, signature.data(), nullptr);
    return {name.data(), signature.data()};
}

} // namespace

AVSKPluginID FindPlugin(const std::string &name) {
    const AVSKPluginID bySignature = AVSKFindPluginBySignature(name.c_str());
    if (bySignature != NO_PLUGIN_ID)
        return bySignature;
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        if (IdentityOf(AVSKGetNthPlugin(i)).name == name)
            return AVSKGetNthPlugin(i);
    }
    return NO_PLUGIN_ID;
}

std::string NoPlugin(const std::string &name) {
    std::vector<std::string> names;
    std::vector<std::string> all; // with signatures
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const Identity identity = IdentityOf(AVSKGetNthPlugin(i));
        names.push_back(identity.name);
        all.insert(all.end(), {identity.name, identity.signature});
    }
    const std::string nearest = DidYouMean(name, all);
    return "no plugin with the name or signature '" + name + "' is loaded" +
           (nearest.empty() ? "; loaded are " + (names.empty() ? "none" : Shortened(names)) : nearest);
}

} // namespace host
