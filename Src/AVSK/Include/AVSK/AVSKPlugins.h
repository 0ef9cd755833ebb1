/**
 * AVSKPlugins.h: the entry points that a plugin exports, and the functions by
 * which plugins find, describe, enable and message each other.
 */
#ifndef AVSK_PLUGINS_H
#define AVSK_PLUGINS_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Entry points, defined by the plugin. Only AVPluginStart is required. */

/**
 * Starts the plugin. Called once, after its file was loaded and before the plugin
 * is enabled.
 *
 * What the plugin registers in this call belongs to it. Its callbacks are called
 * once it is enabled. A plugin that refuses to start gets no stop call, and what
 * it registered is not removed: unregister it before returning 0.
 *
 * Register nothing in static constructors and destructors. What a constructor
 * registers belongs to the plugin, and what a destructor registers is removed at
 * once. An exception that leaves a constructor leaves the dynamic linker locked.
 *
 * @param outName         a buffer of 256 bytes for the display name, zero-terminated; an empty text
 *                        at first.
 * @param outSignature    a buffer of 256 bytes for a signature that is different from every other
 *                        plugin's, by convention "organisation.project.plugin"; an empty text at
 *                        first. A plugin whose signature is empty or in use is unloaded.
 * @param outDescription  a buffer of 256 bytes for a sentence about the plugin; an empty text at
 *                        first.
 * @return non-zero to start, 0 to refuse.
 *
 * [callback, any state]
 */
AVSK_API int AVPluginStart(char *outName, char *outSignature, char *outDescription);

/**
 * Stops the plugin. Called once, just before the plugin is unloaded, whether or
 * not it is enabled. After this call the library removes everything that the
 * plugin still owns.
 *
 * [callback, any state]
 */
AVSK_API void AVPluginStop(void);

/**
 * Enables the plugin. Called while it is disabled: AVSKIsPluginEnabled() of its
 * own ID returns 0 during the call. When the call returns non-zero, the plugin
 * becomes enabled and its callbacks are called.
 *
 * @return non-zero to become enabled, 0 to stay disabled.
 *
 * [callback, any state]
 */
AVSK_API int AVPluginEnable(void);

/**
 * Notifies the plugin that it was disabled. No callback is called until it is
 * enabled again. It no longer has the keyboard focus, the mouse, the camera or
 * the other aircraft, and AVSKIsPluginEnabled() of its own ID returns 0.
 *
 * [callback, any state]
 */
AVSK_API void AVPluginDisable(void);

/**
 * Receives a message, inside the sender's call.
 *
 * @param sender     the plugin that sent the message; 0 for the host.
 * @param message    the message's number. 101 to 108 are the host's.
 * @param parameter  agreed between sender and receiver, may be null. The sender owns what it points
 *                   to; it is valid during the call.
 *
 * [callback, plugin enabled]
 */
AVSK_API void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter);

/* ---- Callbacks */

/**
 * Receives an error: a misuse of the interface by the plugin that set the
 * callback. Called inside the offending call.
 *
 * @param message  one English sentence; owned by the library, valid for the life of the process.
 *
 * [callback, any state]
 */
typedef void (*AVSKError_f)(const char *message);

/**
 * Receives the name of one feature. Called inside AVSKEnumerateFeatures().
 *
 * @param name       the feature's name; owned by the library, valid for the life of the process.
 * @param reference  the reference given to AVSKEnumerateFeatures().
 *
 * [callback, any state]
 */
typedef void (*AVSKFeatureEnumerator_f)(const char *name, void *reference);

/* ---- Plugins */

/**
 * Returns the ID of the calling plugin.
 *
 * @return the ID; 0 outside of every entry point and callback; -1 in a callback of a plugin that was
 *         unloaded during that callback.
 *
 * [main thread, any time]
 */
AVSK_API AVSKPluginID AVSKGetMyID(void);

/**
 * Counts the plugins.
 *
 * @return the number of plugins, the host and disabled plugins included.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKCountPlugins(void);

/**
 * Returns the ID of the plugin at an index. IDs are indices, so the index is
 * returned unchanged.
 *
 * @param index  from 0 to AVSKCountPlugins() - 1; not checked.
 * @return the index.
 *
 * [main thread, any time]
 */
AVSK_API AVSKPluginID AVSKGetNthPlugin(int index);

/**
 * Finds a plugin by its path.
 *
 * @param path  the full path from which the plugin was loaded, UTF-8, compared byte for byte. The
 *              host's path is "corvane.aerivo.aerivo". Null finds nothing.
 * @return the first plugin with that path; -1 if there is none.
 *
 * [main thread, any time]
 */
AVSK_API AVSKPluginID AVSKFindPluginByPath(const char *path);

/**
 * Finds a plugin by its signature.
 *
 * @param signature  compared byte for byte. The host's signature is empty. Null finds nothing.
 * @return the first plugin with that signature; -1 if there is none.
 *
 * [main thread, any time]
 */
AVSK_API AVSKPluginID AVSKFindPluginBySignature(const char *signature);

/**
 * Describes a plugin. Each text is UTF-8, cut to 255 bytes and zero-terminated.
 * The texts are empty if no plugin has the ID.
 *
 * @param plugin          the plugin, any number.
 * @param outName         a buffer of 256 bytes, receives the display name; may be null.
 * @param outPath         a buffer of 256 bytes, receives the full path; may be null.
 * @param outSignature    a buffer of 256 bytes, receives the signature; may be null.
 * @param outDescription  a buffer of 256 bytes, receives the description; may be null.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKGetPluginInfo(AVSKPluginID plugin, char *outName, char *outPath, char *outSignature,
                                char *outDescription);

/**
 * Tells whether a plugin is enabled.
 *
 * @param plugin  the plugin, any number.
 * @return 1 if the plugin is enabled, else 0; 0 if no plugin has the ID.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKIsPluginEnabled(AVSKPluginID plugin);

/**
 * Enables a plugin: calls its AVPluginEnable, then delivers the results that
 * arrived while it was disabled, the newest first. If the plugin is enabled
 * already, only results are delivered. Nothing happens to the host (ID 0) and to
 * a plugin whose AVPluginEnable is running.
 *
 * @param plugin  the plugin, any number.
 * @return 1 if the plugin is enabled after the call, else 0; 0 for the host and inside the plugin's
 *         own AVPluginEnable.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKEnablePlugin(AVSKPluginID plugin);

/**
 * Disables a plugin: takes the keyboard focus, the mouse, the camera and the other
 * aircraft from it, then calls its AVPluginDisable. Its registrations stay, but
 * its callbacks are not called. Nothing happens to the host, a disabled plugin
 * or an unknown ID.
 *
 * @param plugin  the plugin, any number. A plugin may disable itself.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKDisablePlugin(AVSKPluginID plugin);

/**
 * Requests that all plugins are unloaded and loaded again. This happens at the
 * end of the next flight-loop pass. Two requests cause one reload. Scenery
 * plugins are loaded when the host reports their scenery again.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKReloadPlugins(void);

/**
 * Sends a message. The receiver handles it before the call returns. Plugins that
 * are disabled or have no AVPluginReceiveMessage are skipped.
 *
 * @param target     the receiver; -1 for all plugins in the order of their IDs, the host and the
 *                   sender included. An ID that no plugin has is ignored.
 * @param message    the message's number.
 * @param parameter  passed on unchanged, may be null; must stay valid until the call returns.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSendMessageToPlugin(AVSKPluginID target, int message, void *parameter);

/* ---- Features */

/**
 * Tells whether the library has a feature. With "AVSK_WANTS_REFLECTIONS" the
 * plugin's draw callbacks are also called in passes that draw reflections; with
 * "AVSK_USE_NATIVE_PATHS" its paths are not converted.
 *
 * @param name  the feature's name, compared byte for byte. Null is unknown.
 * @return 1 if the library has the feature, else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKHasFeature(const char *name);

/**
 * Reads the calling plugin's setting of a feature.
 *
 * @param name  the feature's name. If it is unknown or null, the error callback receives
 *              "Illegal feature name passed to AVSKEnableFeature", which names the other function.
 * @return the value stored last, at first 0; 0 for an unknown name.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKIsFeatureEnabled(const char *name);

/**
 * Sets a feature for the calling plugin only. The setting takes effect when the
 * library next reads it.
 *
 * @param name    the feature's name. If it is unknown or null, the error callback receives
 *                "Illegal feature name passed to AVSKEnableFeature".
 * @param enable  0 to switch the feature off, non-zero to switch it on; stored unchanged.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKEnableFeature(const char *name, int enable);

/**
 * Lists the features of the library in a fixed order.
 *
 * @param callback   called once per feature before the call returns. Null lists nothing.
 * @param reference  passed to the callback, may be null.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKEnumerateFeatures(AVSKFeatureEnumerator_f callback, void *reference);

/* ---- Errors */

/**
 * Sets the calling plugin's error callback. Without one, errors are not reported
 * and some checks are skipped. Set one during development and put a breakpoint
 * into it.
 *
 * @param callback  called inside the offending call; null ends the reports.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetErrorCallback(AVSKError_f callback);

/**
 * Returns a label of the calling plugin for a debugger or a log.
 *
 * @return the plugin's name; a label in square brackets for the host, for no plugin and for an
 *         invalid ID. Owned by the library, valid until a plugin is loaded or unloaded.
 *
 * [main thread, any time]
 */
AVSK_API const char *AVSKDebugGetCurrentPluginName(void);

#ifdef __cplusplus
}
#endif

#endif
