/**
 * AVSKPlugins.h: the entry points a plugin exports, and how plugins find,
 * ask about, enable and message one another.
 *
 * Everything here runs on the simulator's main thread. "The calling plugin"
 * is the plugin whose entry point or callback the library is inside of at the
 * time of the call; outside of any, it is the simulator (ID 0).
 */
#ifndef AVSK_PLUGINS_H
#define AVSK_PLUGINS_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Entry points, defined by the plugin. Only AVPluginStart is required. */

/**
 * Starts the plugin. Called once, right after its file was loaded, before it is enabled.
 *
 * What the plugin registers here belongs to it; callbacks begin once it is
 * enabled. A plugin that refuses is unloaded without a stop call, so give
 * back what you registered before you refuse.
 *
 * @param outName         256 bytes for the display name, zero-terminated. Not cleared beforehand.
 * @param outSignature    256 bytes for a signature that no other plugin has, by custom
 *                        "organisation.project.plugin". Must not be empty. The plugin
 *                        that was loaded first with a signature wins.
 * @param outDescription  256 bytes for a sentence about the plugin.
 * @return non-zero to accept, 0 to refuse to start.
 */
AVSK_API int AVPluginStart(char *outName, char *outSignature, char *outDescription);

/**
 * Ends the plugin, just before it is unloaded. Called whether or not the
 * plugin is enabled. What it still owns is torn down afterwards.
 */
AVSK_API void AVPluginStop(void);

/**
 * Asks the plugin to begin its work.
 *
 * AVSKIsPluginEnabled() of its own ID is still 0 in here.
 *
 * @return non-zero to accept; 0 leaves the plugin loaded and disabled.
 */
AVSK_API int AVPluginEnable(void);

/**
 * Tells the plugin that it gets no more callbacks until it is enabled again.
 * Its focus, mouse capture, camera and aircraft control are already gone, and
 * AVSKIsPluginEnabled() of its own ID is 0.
 */
AVSK_API void AVPluginDisable(void);

/**
 * Receives a message, inside the sender's call. Disabled plugins hear nothing.
 *
 * @param sender     the plugin that sent it; 0 for the simulator.
 * @param message    what it is about. 101 to 108 are the simulator's.
 * @param parameter  agreed between sender and receiver, may be null.
 */
AVSK_API void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter);

/** Called with one English sentence about a misuse of the interface. The text is static. */
typedef void (*AVSKError_f)(const char *message);

/**
 * Called once per feature by AVSKEnumerateFeatures().
 *
 * @param name       the feature's name, a static text.
 * @param reference  what the caller of AVSKEnumerateFeatures() passed.
 */
typedef void (*AVSKFeatureEnumerator_f)(const char *name, void *reference);

/**
 * Tells the calling plugin who it is.
 *
 * @return the calling plugin's ID; -1 in code that runs on after its plugin was unloaded
 *         from inside its own callback.
 */
AVSK_API AVSKPluginID AVSKGetMyID(void);

/**
 * Counts the plugins.
 *
 * @return the number of plugins known, the simulator and disabled plugins included.
 */
AVSK_API int AVSKCountPlugins(void);

/**
 * Names the plugin at an index. IDs are indices: the index is returned as it is, unchecked.
 *
 * @param index  from 0 to AVSKCountPlugins() - 1.
 * @return the index.
 */
AVSK_API AVSKPluginID AVSKGetNthPlugin(int index);

/**
 * Finds a plugin by its file.
 *
 * @param path  UTF-8, compared byte for byte with the full path the plugin was loaded from.
 *              Null finds nothing. The simulator's is "corvane.aerivo.aerivo".
 * @return the first plugin with that path, else -1.
 */
AVSK_API AVSKPluginID AVSKFindPluginByPath(const char *path);

/**
 * Finds a plugin by its signature.
 *
 * @param signature  compared byte for byte. Null finds nothing. The simulator has an empty one.
 * @return the first plugin with that signature, else -1.
 */
AVSK_API AVSKPluginID AVSKFindPluginBySignature(const char *signature);

/**
 * Describes a plugin.
 *
 * Each text is cut to 255 bytes and zero-terminated. An ID that is not in use
 * gets empty texts.
 *
 * @param plugin          the plugin to describe.
 * @param outName         256 bytes for its display name, or null.
 * @param outPath         256 bytes for its file's full path, or null.
 * @param outSignature    256 bytes for its signature, or null.
 * @param outDescription  256 bytes for its description, or null.
 */
AVSK_API void AVSKGetPluginInfo(AVSKPluginID plugin, char *outName, char *outPath, char *outSignature,
                                char *outDescription);

/**
 * Tells whether a plugin is enabled.
 *
 * @param plugin  any number.
 * @return 1 if that plugin is enabled, 0 if it is not or does not exist.
 */
AVSK_API int AVSKIsPluginEnabled(AVSKPluginID plugin);

/**
 * Enables a plugin: calls its AVPluginEnable and hands it the results that
 * arrived while it was disabled, newest first. On an enabled plugin only the
 * second happens. The simulator (ID 0) cannot be enabled or disabled.
 *
 * @param plugin  any number.
 * @return 1 if the plugin is enabled afterwards, else 0.
 */
AVSK_API int AVSKEnablePlugin(AVSKPluginID plugin);

/**
 * Disables a plugin: takes the keyboard focus, the mouse, the camera and the
 * aircraft from it, then calls its AVPluginDisable. What it registered stays,
 * silent. A disabled or unknown plugin and the simulator are left alone.
 *
 * @param plugin  any number; a plugin may disable itself.
 */
AVSK_API void AVSKDisablePlugin(AVSKPluginID plugin);

/**
 * Asks for every plugin to be unloaded and loaded afresh. It happens at the
 * end of the next flight-loop pass, so it is safe in any callback; asking
 * twice reloads once. Scenery plugins return when their scenery is reported again.
 */
AVSK_API void AVSKReloadPlugins(void);

/**
 * Sends a message, which is received before the call returns. Plugins that
 * are disabled or have no AVPluginReceiveMessage are passed over.
 *
 * @param target     the receiver; -1 for everybody in order of ID, the simulator and the
 *                   sender included. An ID that is not in use is ignored.
 * @param message    what it is about.
 * @param parameter  passed on as it is; must stay valid until the call returns.
 */
AVSK_API void AVSKSendMessageToPlugin(AVSKPluginID target, int message, void *parameter);

/**
 * Tells whether the library knows a feature.
 *
 * @param name  compared exactly; null is unknown. "AVSK_WANTS_REFLECTIONS" has draw
 *              callbacks called in reflection passes too, "AVSK_USE_NATIVE_PATHS" leaves
 *              paths unconverted.
 * @return 1 if it does, else 0.
 */
AVSK_API int AVSKHasFeature(const char *name);

/**
 * Reads the calling plugin's setting of a feature.
 *
 * @param name  a known name. Another one is reported to the error callback, with a
 *              message that names AVSKEnableFeature.
 * @return the value stored last, at first 0; 0 for an unknown name.
 */
AVSK_API int AVSKIsFeatureEnabled(const char *name);

/**
 * Switches a feature for the calling plugin only. It takes effect at its next use.
 *
 * @param name    a known name. Another one is reported to the error callback:
 *                "Illegal feature name passed to AVSKEnableFeature".
 * @param enable  stored as it is; any value but 0 means on.
 */
AVSK_API void AVSKEnableFeature(const char *name, int enable);

/**
 * Lists the features the library knows, in a fixed order.
 *
 * @param callback   called once per feature before the call returns. Null lists nothing.
 * @param reference  passed to the callback.
 */
AVSK_API void AVSKEnumerateFeatures(AVSKFeatureEnumerator_f callback, void *reference);

/**
 * Registers a function that hears of the calling plugin's own misuse of the
 * interface. Without one nothing is reported, and some checks are not made at
 * all: set it while you develop, and break in it.
 *
 * @param callback  called inside the offending call; null ends reporting.
 */
AVSK_API void AVSKSetErrorCallback(AVSKError_f callback);

/**
 * Labels the calling plugin for a debugger's or a log's eye.
 *
 * @return the plugin's name, or a label in square brackets for the simulator, no plugin
 *         and bad IDs. Owned by the library; valid until a plugin is loaded or unloaded.
 */
AVSK_API const char *AVSKDebugGetCurrentPluginName(void);

#ifdef __cplusplus
}
#endif

#endif
