// Finds loaded plugins by the names that sessions use.
#ifndef AVSK_HOST_SESSION_LOADED_PLUGINS_H
#define AVSK_HOST_SESSION_LOADED_PLUGINS_H

#include "AVSK/AVSKTypes.h"

#include <string>

namespace host {

// A plugin by its signature or name; NO_PLUGIN_ID if there is none.
AVSKPluginID FindPlugin(const std::string &name);

// The message for a name that FindPlugin() did not find.
std::string NoPlugin(const std::string &name);

} // namespace host

#endif
