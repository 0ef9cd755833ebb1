/**
 * AVSKTypes.h: what every other header of the interface uses: the export
 * macro, plugin IDs and the machine word of the forwarding calls.
 */
#ifndef AVSK_TYPES_H
#define AVSK_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Marks what crosses the border of a library or plugin. Everything else is hidden. */
#if defined(__GNUC__)
#define AVSK_API __attribute__((visibility("default")))
#else
#define AVSK_API
#endif

/**
 * Names a plugin. An ID never changes while its plugin is loaded; after the
 * plugin was unloaded, a plugin loaded later may receive the same ID.
 */
typedef int AVSKPluginID;

/** The simulator itself, which takes part as an ordinary plugin. */
#define AVSK_PLUGIN_AERIVO 0
/** No plugin: the answer of every failed lookup, and "all plugins" as the target of a message. */
#define NO_PLUGIN_ID (-1)

/** The room, in bytes, of every text that a plugin or the library hands over in a caller's buffer. */
#define AVSK_TEXT_SIZE 256

/**
 * One 32-bit argument whose meaning is the simulator's alone: an integer, a
 * pointer or the bits of a float. It is passed on bit for bit.
 */
typedef uint32_t AVSKWord;

#ifdef __cplusplus
}
#endif

#endif
