/**
 * AVSKDataAccess.h: datarefs, named values that one plugin publishes through
 * accessor functions and any other reads and writes.
 *
 * The library stores and converts nothing: each read and write calls the
 * owner's accessor for that very type. Look a dataref up once and keep the
 * handle; it stays the same for the life of the process, also while its owner
 * is away.
 */
#ifndef AVSK_DATA_ACCESS_H
#define AVSK_DATA_ACCESS_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Names a dataref. Null is the null handle, on which every call is harmless. */
typedef struct AVSKData_t *AVSKDataRef;

/** The types that a dataref serves: a sum of these bits. */
typedef enum AVSKDataTypeBits {
    /** 32-bit signed integer. */
    AVSKDataTypeInt = 1,
    /** 32-bit float. */
    AVSKDataTypeFloat = 2,
    /** 64-bit float. */
    AVSKDataTypeDouble = 4,
    /** Array of 32-bit floats. */
    AVSKDataTypeFloatArray = 8,
    /** Array of 32-bit signed integers. */
    AVSKDataTypeIntArray = 16,
    /** Array of bytes. */
    AVSKDataTypeData = 32
} AVSKDataTypeBits;

/*
 * Accessors. Each runs with the dataref's owner as the calling plugin and
 * receives the refcon given at registration. They may call anything, read
 * other datarefs and unregister their own included.
 */

/** Returns the value as an integer. */
typedef int (*AVSKGetDatai_f)(void *refcon);
/** Takes a new integer value. */
typedef void (*AVSKSetDatai_f)(void *refcon, int value);
/** Returns the value as a float. */
typedef float (*AVSKGetDataf_f)(void *refcon);
/** Takes a new float value. */
typedef void (*AVSKSetDataf_f)(void *refcon, float value);
/** Returns the value as a double. */
typedef double (*AVSKGetDatad_f)(void *refcon);
/** Takes a new double value. */
typedef void (*AVSKSetDatad_f)(void *refcon, double value);
/**
 * Copies integers out: up to max of them, from element offset on. By custom
 * null values ask for the length.
 *
 * @return the number of elements copied, or the length.
 */
typedef int (*AVSKGetDatavi_f)(void *refcon, int *values, int offset, int max);
/** Takes count integers from values, for the elements from offset on. */
typedef void (*AVSKSetDatavi_f)(void *refcon, int *values, int offset, int count);
/** As AVSKGetDatavi_f, of floats. */
typedef int (*AVSKGetDatavf_f)(void *refcon, float *values, int offset, int max);
/** As AVSKSetDatavi_f, of floats. */
typedef void (*AVSKSetDatavf_f)(void *refcon, float *values, int offset, int count);
/** As AVSKGetDatavi_f, of bytes. */
typedef int (*AVSKGetDatab_f)(void *refcon, void *bytes, int offset, int max);
/** As AVSKSetDatavi_f, of bytes. */
typedef void (*AVSKSetDatab_f)(void *refcon, void *bytes, int offset, int count);

/**
 * Finds a dataref that somebody publishes now.
 *
 * @param name  compared exactly. Null finds nothing.
 * @return its handle, or null if nobody publishes that name.
 */
AVSK_API AVSKDataRef AVSKFindDataRef(const char *name);

/**
 * Publishes a dataref of the calling plugin.
 *
 * A name that was published before, by anyone, and given up has its old
 * handle revived. A name that somebody publishes now (also the caller itself)
 * stays theirs: the error callback hears "Dataref is already registered by
 * someone else." and their handle is returned.
 *
 * @param name         the name, by custom "organisation/plugin/value"; copied. Null publishes nothing.
 * @param types        sum of AVSKDataTypeBits, reported to readers and not checked.
 * @param writable     0 refuses every write.
 * @param
 * readInt,writeInt,readFloat,writeFloat,readDouble,writeDouble,readIntArray,writeIntArray,readFloatArray,writeFloatArray,readData,writeData
 *                     accessors; null where the type is not served.
 * @param readRefcon   passed to every read accessor.
 * @param writeRefcon  passed to every write accessor.
 * @return the dataref's handle; null for a null name.
 */
AVSK_API AVSKDataRef AVSKRegisterDataAccessor(const char *name, int types, int writable, AVSKGetDatai_f readInt,
                                              AVSKSetDatai_f writeInt, AVSKGetDataf_f readFloat,
                                              AVSKSetDataf_f writeFloat, AVSKGetDatad_f readDouble,
                                              AVSKSetDatad_f writeDouble, AVSKGetDatavi_f readIntArray,
                                              AVSKSetDatavi_f writeIntArray, AVSKGetDatavf_f readFloatArray,
                                              AVSKSetDatavf_f writeFloatArray, AVSKGetDatab_f readData,
                                              AVSKSetDatab_f writeData, void *readRefcon, void *writeRefcon);

/**
 * Gives up a dataref of the calling plugin. Readers that hold its handle read
 * zero until the name is published again.
 *
 * @param ref  the handle. One that is not a dataref's is reported ("Dataref is illegal and
 *             cannot be unregistered."), as is another plugin's ("Dataref is not owned by
 *             you - you cannot unregsiter.").
 */
AVSK_API void AVSKUnregisterDataAccessor(AVSKDataRef ref);

/**
 * Tells whether a dataref takes writes.
 *
 * @param ref  a handle, may be null.
 * @return what was given at registration, also after the owner left; 0 for null.
 */
AVSK_API int AVSKCanWriteDataRef(AVSKDataRef ref);

/**
 * Tells whether a handle is a dataref's and somebody publishes it now.
 *
 * @param ref  any pointer.
 * @return 1 or 0.
 */
AVSK_API int AVSKIsDataRefGood(AVSKDataRef ref);

/**
 * Tells which types a dataref serves.
 *
 * @param ref  a handle, may be null.
 * @return the bits given at registration, also after the owner left; 0 for null.
 */
AVSK_API int AVSKGetDataRefTypes(AVSKDataRef ref);

/*
 * Typed access. Each call takes a handle from AVSKFindDataRef() or
 * AVSKRegisterDataAccessor(), or null, and calls the owner's accessor for
 * exactly that type. Without one, while the owner is not enabled, after it
 * was unloaded, and for a null handle a read is 0 and a write does nothing;
 * a write also when the dataref is not writable. Nothing is reported.
 */

/** Reads an integer. @return the value, else 0. */
AVSK_API int AVSKGetDatai(AVSKDataRef ref);
/** Writes an integer. */
AVSK_API void AVSKSetDatai(AVSKDataRef ref, int value);
/** Reads a float. @return the value, else 0. */
AVSK_API float AVSKGetDataf(AVSKDataRef ref);
/** Writes a float. */
AVSK_API void AVSKSetDataf(AVSKDataRef ref, float value);
/** Reads a double. @return the value, else 0. */
AVSK_API double AVSKGetDatad(AVSKDataRef ref);
/** Writes a double. */
AVSK_API void AVSKSetDatad(AVSKDataRef ref, double value);

/**
 * Reads integers.
 *
 * @param ref     the dataref.
 * @param values  room for max elements; by custom null asks for the length.
 * @param offset  the first element to read.
 * @param max     how many at the most.
 * @return what the owner's accessor returns, by custom the number of elements read; else 0.
 */
AVSK_API int AVSKGetDatavi(AVSKDataRef ref, int *values, int offset, int max);
/**
 * Writes integers.
 *
 * @param ref     the dataref.
 * @param values  count elements.
 * @param offset  the first element to write.
 * @param count   how many.
 */
AVSK_API void AVSKSetDatavi(AVSKDataRef ref, int *values, int offset, int count);
/** Reads floats, as AVSKGetDatavi() does integers. @return as there. */
AVSK_API int AVSKGetDatavf(AVSKDataRef ref, float *values, int offset, int max);
/** Writes floats, as AVSKSetDatavi() does integers. */
AVSK_API void AVSKSetDatavf(AVSKDataRef ref, float *values, int offset, int count);
/** Reads bytes, as AVSKGetDatavi() does integers. @return as there. */
AVSK_API int AVSKGetDatab(AVSKDataRef ref, void *bytes, int offset, int max);
/** Writes bytes, as AVSKSetDatavi() does integers. */
AVSK_API void AVSKSetDatab(AVSKDataRef ref, void *bytes, int offset, int count);

/* ---- Shared data: values that several plugins use and none owns */

/**
 * Hears of a write to a shared value, also one that did not change it. It may
 * read and write the value, share and unshare.
 *
 * @param refcon  what was given with the subscription.
 */
typedef void (*AVSKDataChanged_f)(void *refcon);

/**
 * Makes a shared value with a dataref of that name, unless there is one, and
 * subscribes the calling plugin to its changes. The value and its dataref
 * stay for good, whoever comes and goes.
 *
 * @param name      the name; copied.
 * @param type      exactly one of AVSKDataTypeBits.
 * @param callback  called after each write, the caller's own included; null shares without
 *                  subscribing. Given twice it is called twice. One given during a
 *                  notification hears the next write.
 * @param refcon    passed to it, may be null.
 * @return 1; 0 if the name is shared with another type, or null.
 */
AVSK_API int AVSKShareData(const char *name, int type, AVSKDataChanged_f callback, void *refcon);

/**
 * Ends one subscription of the calling plugin.
 *
 * @param name,type,callback,refcon  as shared.
 * @return 1 if there was one, else 0.
 */
AVSK_API int AVSKUnshareData(const char *name, int type, AVSKDataChanged_f callback, void *refcon);

#ifdef __cplusplus
}
#endif

#endif
