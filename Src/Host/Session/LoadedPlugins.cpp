// Asks the library for its plugins; see LoadedPlugins.h.
#include "LoadedPlugins.h"

#include "AVSK/AVSKPlugins.h"

#include <array>

namespace host {

AVSKPluginID FindPlugin(const std::string &name) {
    const AVSKPluginID bySignature = AVSKFindPluginBySignature(name.c_str());
    if (bySignature != NO_PLUGIN_ID)
        return bySignature;
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        std::array<char, AVSK_TEXT_SIZE> known{};
        AVSKGetPluginInfo(AVSKGetNthPlugin(i), known.data(), nullptr, nullptr, nullptr);
        if (name == known.data())
            return AVSKGetNthPlugin(i);
    }
    return NO_PLUGIN_ID;
}

std::string NoPlugin(const std::string &name) {
    return "no plugin of this name or signature is loaded: '" + name + "'";
}

} // namespace host
