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

/** Names a probe. Valid until it is destroyed or the plugin that created it unloaded. */
typedef struct AVSKProbe_t *AVSKProbeRef;

/** The only type of probe that answers. */
#define AVSK_PROBE_Y 0

/** What a probe found. */
typedef enum AVSKProbeResult {
    /** Terrain. */
    AVSKProbeHit = 0,
    /** Nothing was asked: a bad probe, probe type or structure size. */
    AVSKProbeError = 1,
    /** No terrain. */
    AVSKProbeMissed = 2
} AVSKProbeResult;

/** Where a probe hit; filled by the simulator. 44 bytes. */
typedef struct AVSKProbeInfo {
    /** sizeof(AVSKProbeInfo), set by the caller. */
    int structSize;
    /** Three triples; their meaning is the simulator's. */
    float triple1[3];
    float triple2[3];
    float triple3[3];
    /** A flag of the simulator's. */
    int flag;
} AVSKProbeInfo;

/**
 * Creates a probe that belongs to the calling plugin. Probes are cheap to use and worth keeping.
 *
 * @param type  AVSK_PROBE_Y; a probe of another type answers AVSKProbeError.
 * @return the probe.
 */
AVSK_API AVSKProbeRef AVSKCreateProbe(int type);

/**
 * Destroys a probe.
 *
 * @param probe  the probe, any plugin's; an unknown one is ignored.
 */
AVSK_API void AVSKDestroyProbe(AVSKProbeRef probe);

/**
 * Looks for the terrain below or above a point.
 *
 * @param probe    the probe.
 * @param x,y,z    the point, in the simulator's local coordinates.
 * @param outInfo  receives what was found; its structSize must be set.
 * @return one of AVSKProbeResult.
 */
AVSK_API int AVSKProbeTerrainXYZ(AVSKProbeRef probe, float x, float y, float z, AVSKProbeInfo *outInfo);

/* ---- Objects */

/** Names a loaded object. The simulator's; null is no object. */
typedef void *AVSKObjectRef;

/** Where to draw an instance of an object. 28 bytes. */
typedef struct AVSKDrawInfo {
    /** sizeof(AVSKDrawInfo). */
    int structSize;
    /** The place, in the simulator's local coordinates. */
    float x;
    float y;
    float z;
    /** Three angles; their meaning is the simulator's. */
    float angle1;
    float angle2;
    float angle3;
} AVSKDrawInfo;

/**
 * Receives an object that was loaded asynchronously. The object belongs to
 * the plugin once the call has returned.
 *
 * @param object  the object; null if it could not be loaded.
 * @param refcon  what was given with the request.
 */
typedef void (*AVSKObjectLoaded_f)(AVSKObjectRef object, void *refcon);

/**
 * Receives a path found by AVSKLookupObjects().
 *
 * @param path    a file's path.
 * @param refcon  what was given with the search.
 */
typedef void (*AVSKLibraryEnumerator_f)(const char *path, void *refcon);

/**
 * Loads an object and makes it the calling plugin's. Each load is undone by one unload.
 *
 * @param path  its file, as the simulator understands it; passed on as it is.
 * @return the object; null if it could not be loaded, which is reported nowhere.
 */
AVSK_API AVSKObjectRef AVSKLoadObject(const char *path);

/**
 * Loads an object while the simulator goes on. While the plugin is disabled
 * the result waits; if the plugin is unloaded, the object is given back.
 *
 * @param path      its file, as the simulator understands it; passed on as it is.
 * @param callback  receives the object, later or within this call; may be null.
 * @param refcon    passed to it, may be null.
 */
AVSK_API void AVSKLoadObjectAsync(const char *path, AVSKObjectLoaded_f callback, void *refcon);

/**
 * Draws instances of an object of the calling plugin, from a draw callback.
 *
 * With an error callback set, another plugin's object ("Illegal object, or
 * object not owned by this plugin.") and a wrong size ("Struct size mismatch
 * for AVSKDrawObjects") are reported and nothing is drawn.
 *
 * @param object         the object.
 * @param count          how many instances; 0 and less draws nothing.
 * @param infos          count places.
 * @param lighting       an option of the simulator's.
 * @param earthRelative  another.
 */
AVSK_API void AVSKDrawObjects(AVSKObjectRef object, int count, AVSKDrawInfo *infos, int lighting, int earthRelative);

/**
 * Gives back an object of the calling plugin.
 *
 * @param object  the object. One that is not the caller's is reported to the error callback:
 *                "Unknown object for AVSKUnloadObject".
 */
AVSK_API void AVSKUnloadObject(AVSKObjectRef object);

/**
 * Searches the simulator's library of objects. The arguments reach it as they are.
 *
 * @param path                a path in the library.
 * @param latitude,longitude  where the object would stand.
 * @param enumerator          called for each file found, within the call.
 * @param refcon              passed to it, may be null.
 * @return how many were found.
 */
AVSK_API int AVSKLookupObjects(const char *path, float latitude, float longitude, AVSKLibraryEnumerator_f enumerator,
                               void *refcon);

#ifdef __cplusplus
}
#endif

#endif
