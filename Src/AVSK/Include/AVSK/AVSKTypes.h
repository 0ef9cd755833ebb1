/**
 * AVSKTypes.h: the export macro, plugin IDs, the machine word of forwarding
 * calls, and the context tags of the documentation.
 *
 * Terms used in all headers:
 *
 * The host is the simulator, or another program that embeds the library. It
 * takes part as plugin 0. A forwarding function passes its arguments
 * unchanged to one host service, a member of AVSKHostCallbacks (AVSKHost.h),
 * and returns its result. The host decides what the arguments mean.
 *
 * The calling plugin is the plugin whose entry point or callback is running.
 * Outside of every entry point and callback it is the host.
 *
 * A refcon is a pointer of the caller's choice, which the library stores,
 * passes to the callback and never dereferences. It may be null.
 *
 * The error callback is the one that the calling plugin set with
 * AVSKSetErrorCallback(). Without one, an error is not reported.
 */
#ifndef AVSK_TYPES_H
#define AVSK_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Context tags. The last line of the documentation of each function and each
 * callback type is one of these tags. It says where the call is safe and
 * useful. The library takes no locks and does not check the context.
 *
 * - [any thread]: a function that may be called on every thread at any time.
 * - [main thread, any time]: a function for the host's main thread. It may be
 *   called inside and outside of callbacks, and before AVSKInitializePlugins().
 * - [main thread, initialized]: as above, but only after the host has called
 *   AVSKInitializePlugins(). Before that the function would dereference a null
 *   pointer or has nothing to work on. A plugin is always past that point.
 * - [main thread, drawing]: a function for draw callbacks and window draw
 *   functions. Elsewhere it reaches the host when the host does not draw.
 * - [host only]: a function that only the host calls, on its main thread.
 *   Unless its documentation says otherwise, AVSKInitializePlugins() must have
 *   been called, and a host service may call it while a plugin's call is running.
 * - [callback, plugin enabled]: a function of the plugin. The library calls it
 *   on the main thread, only while its owner is enabled, with its owner as the
 *   calling plugin.
 * - [callback, any state]: a function of the plugin. It is called on the main
 *   thread, whether or not the plugin is enabled; its documentation says when.
 *
 * A callback may call every function of the plugin interface, destroy its own
 * registration, and throw a C++ exception. The exception passes through the
 * library to the caller of the function or hook that called the callback.
 */

/** Exports a symbol from a library or a plugin. Compile everything else with -fvisibility=hidden. */
#if defined(__GNUC__)
#define AVSK_API __attribute__((visibility("default")))
#else
#define AVSK_API
#endif

/**
 * Identifies a plugin. The ID does not change while the plugin is loaded. A
 * plugin loaded after that may receive the same ID.
 */
typedef int AVSKPluginID;

/** The host, which takes part as an ordinary plugin. */
#define AVSK_PLUGIN_AERIVO 0
/**
 * No plugin: the result of a failed search, and "all plugins" as the target of a
 * message. It is also the calling plugin in a callback of a plugin that was
 * unloaded during that callback. Then functions that create or register
 * something do nothing and return their neutral result.
 */
#define NO_PLUGIN_ID (-1)

/** The size in bytes of a caller's text buffer, unless the function names another size. */
#define AVSK_TEXT_SIZE 256

/**
 * One 32-bit argument whose meaning only the host knows: an integer, a
 * pointer or the bits of a float. The library passes it on bit for bit.
 */
typedef uint32_t AVSKWord;

#ifdef __cplusplus
}
#endif

#endif
