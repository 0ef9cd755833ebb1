/**
 * AVSKScenery.h: terrain probes and scenery objects.
 */
#ifndef AVSK_SCENERY_H
#define AVSK_SCENERY_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Terrain probes */

/**
 * Identifies a probe. Owned by the library. Valid until the probe is destroyed
 * or the plugin that created it is unloaded.
 */
typedef struct AVSKProbe_t *AVSKProbeRef;

/** The only type of probe that finds terrain. */
#define AVSK_PROBE_Y 0

/** The result of AVSKProbeTerrainXYZ(). */
typedef enum AVSKProbeResult {
    /** The probe found terrain. */
    AVSKProbeHit = 0,
    /** The probe, its type or the structure's size is wrong. The host was not asked. */
    AVSKProbeError = 1,
    /** The probe found no terrain. */
    AVSKProbeMissed = 2
} AVSKProbeResult;

/** What a probe found, filled by the host. 44 bytes. */
typedef struct AVSKProbeInfo {
    /** sizeof(AVSKProbeInfo), set by the caller. */
    int structSize;
    /** Three numbers whose meaning is the host's. */
    float triple1[3];
    /** Three numbers whose meaning is the host's. */
    float triple2[3];
    /** Three numbers whose meaning is the host's. */
    float triple3[3];
    /** A flag whose meaning is the host's. */
    int flag;
} AVSKProbeInfo;

/**
 * Creates a probe that belongs to the calling plugin. Create a probe once and use
 * it often. May call the host service createProbe.
 *
 * @param type  AVSK_PROBE_Y. A probe of another type is created and always returns AVSKProbeError.
 * @return the probe.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKProbeRef AVSKCreateProbe(int type);

/**
 * Destroys a probe.
 *
 * @param probe  a probe of any plugin. Null and an unknown probe are ignored.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKDestroyProbe(AVSKProbeRef probe);

/**
 * Finds the terrain below or above a point. Calls the host service probeTerrain.
 *
 * @param probe    a probe of any plugin. Null and an unknown probe are an AVSKProbeError.
 * @param x        the point, in the host's local coordinates.
 * @param y        the point, second coordinate.
 * @param z        the point, third coordinate.
 * @param outInfo  receives what was found. Its structSize must be set. Null is an AVSKProbeError.
 * @return one of AVSKProbeResult.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKProbeTerrainXYZ(AVSKProbeRef probe, float x, float y, float z, AVSKProbeInfo *outInfo);

/* ---- Objects */

/** Identifies a loaded object. Owned by the host. Null is no object. */
typedef void *AVSKObjectRef;

/** Where to draw one instance of an object. 28 bytes. */
typedef struct AVSKDrawInfo {
    /** sizeof(AVSKDrawInfo). */
    int structSize;
    /** The place, in the host's local coordinates. */
    float x;
    /** The place, second coordinate. */
    float y;
    /** The place, third coordinate. */
    float z;
    /** An angle whose meaning is the host's. */
    float angle1;
    /** An angle whose meaning is the host's. */
    float angle2;
    /** An angle whose meaning is the host's. */
    float angle3;
} AVSKDrawInfo;

/**
 * Receives an object that was loaded asynchronously. The object belongs to the
 * plugin once the function has returned: AVSKUnloadObject() of it inside the
 * function is an error.
 *
 * @param object  the object; null if it could not be loaded.
 * @param refcon  the refcon given to AVSKLoadObjectAsync().
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKObjectLoaded_f)(AVSKObjectRef object, void *refcon);

/**
 * Receives a path that AVSKLookupObjects() found. The host calls it, inside that
 * call.
 *
 * @param path    the path of a file; owned by the host, valid during the call.
 * @param refcon  the refcon given to AVSKLookupObjects().
 *
 * [callback, any state]
 */
typedef void (*AVSKLibraryEnumerator_f)(const char *path, void *refcon);

/**
 * Loads an object through the host service loadObject. The object belongs to the
 * calling plugin. Each load needs one AVSKUnloadObject(); unloading the plugin
 * unloads the rest.
 *
 * @param path  the file, as the host names it; passed on unchanged.
 * @return the object; null if it could not be loaded, which is not reported.
 *
 * [main thread, initialized]
 */
AVSK_API AVSKObjectRef AVSKLoadObject(const char *path);

/**
 * Loads an object through the host service loadObjectAsync. The callback receives
 * it later or inside this call. If the plugin is disabled when the object
 * arrives, the callback is called when the plugin is enabled. If the plugin is
 * unloaded, the object is unloaded and the callback is not called.
 *
 * @param path      the file, as the host names it; passed on unchanged.
 * @param callback  receives the object, which then belongs to the plugin; may be null.
 * @param refcon    passed to the callback, may be null.
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKLoadObjectAsync(const char *path, AVSKObjectLoaded_f callback, void *refcon);

/**
 * Draws instances of an object. Calls the host service drawObject once for each.
 *
 * The arguments are checked only if the calling plugin has an error callback. It
 * receives "Illegal object, or object not owned by this plugin." or
 * "Struct size mismatch for AVSKDrawObjects", and nothing is drawn.
 *
 * @param object         the object.
 * @param count          the number of instances. With 0 or less nothing is drawn.
 * @param infos          count places; not changed. With null nothing is drawn.
 * @param lighting       a flag whose meaning is the host's.
 * @param earthRelative  a flag whose meaning is the host's.
 *
 * [main thread, drawing]
 */
AVSK_API void AVSKDrawObjects(AVSKObjectRef object, int count, AVSKDrawInfo *infos, int lighting, int earthRelative);

/**
 * Unloads an object of the calling plugin through the host service unloadObject.
 *
 * @param object  the object. If it is null or does not belong to the calling plugin, the error
 *                callback receives "Unknown object for AVSKUnloadObject".
 *
 * [main thread, initialized]
 */
AVSK_API void AVSKUnloadObject(AVSKObjectRef object);

/**
 * Searches the host's library of objects. Forwards to the host service
 * lookupObjects.
 *
 * @param path        a path in the library, as the host names it.
 * @param latitude    the place at which the object is to be drawn, in the host's unit.
 * @param longitude   the place at which the object is to be drawn, in the host's unit.
 * @param enumerator  called for each file found, inside this call.
 * @param refcon      passed to the enumerator, may be null.
 * @return the number of files found.
 *
 * [main thread, initialized]
 */
AVSK_API int AVSKLookupObjects(const char *path, float latitude, float longitude, AVSKLibraryEnumerator_f enumerator,
                               void *refcon);

#ifdef __cplusplus
}
#endif

#endif
