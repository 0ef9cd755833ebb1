/**
 * AVSKDataAccess.h: datarefs and shared data.
 *
 * A dataref is a named value that one plugin publishes through accessor
 * functions. Every plugin can read and write it. The library stores and
 * converts nothing: each read or write calls the owner's accessor for that
 * type. Find a dataref once and keep the handle. A handle stays valid for the
 * life of the process, also while no plugin publishes the name.
 */
#ifndef AVSK_DATA_ACCESS_H
#define AVSK_DATA_ACCESS_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Identifies a dataref. Owned by the library and never freed. Null is allowed in every call. */
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
 * ---- Accessors
 *
 * An accessor runs inside the reader's or writer's call, with the dataref's
 * owner as the calling plugin. It may read and write datarefs, its own
 * included, and may unregister its own dataref.
 */

/**
 * Reads the dataref as an integer.
 *
 * @param refcon  the readRefcon given at registration.
 * @return the value.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKGetDatai_f)(void *refcon);

/**
 * Writes the dataref as an integer.
 *
 * @param refcon  the writeRefcon given at registration.
 * @param value   the new value.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKSetDatai_f)(void *refcon, int value);

/**
 * Reads the dataref as a float.
 *
 * @param refcon  the readRefcon given at registration.
 * @return the value.
 *
 * [callback, plugin enabled]
 */
typedef float (*AVSKGetDataf_f)(void *refcon);

/**
 * Writes the dataref as a float.
 *
 * @param refcon  the writeRefcon given at registration.
 * @param value   the new value.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKSetDataf_f)(void *refcon, float value);

/**
 * Reads the dataref as a double.
 *
 * @param refcon  the readRefcon given at registration.
 * @return the value.
 *
 * [callback, plugin enabled]
 */
typedef double (*AVSKGetDatad_f)(void *refcon);

/**
 * Writes the dataref as a double.
 *
 * @param refcon  the writeRefcon given at registration.
 * @param value   the new value.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKSetDatad_f)(void *refcon, double value);

/**
 * Reads elements of an array of integers.
 *
 * @param refcon  the readRefcon given at registration.
 * @param values  receives up to max integers; owned by the reader, valid during the call. By
 *                convention null asks for the length of the array.
 * @param offset  the index of the first element to read, from 0.
 * @param max     the largest number of integers to read.
 * @return the number of integers read; by convention the length of the array if values is null.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKGetDatavi_f)(void *refcon, int *values, int offset, int max);

/**
 * Writes elements of an array of integers.
 *
 * @param refcon  the writeRefcon given at registration.
 * @param values  count integers to write; owned by the writer, valid during the call.
 * @param offset  the index of the first element to write, from 0.
 * @param count   the number of integers to write.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKSetDatavi_f)(void *refcon, int *values, int offset, int count);

/**
 * Reads elements of an array of floats.
 *
 * @param refcon  the readRefcon given at registration.
 * @param values  receives up to max floats; owned by the reader, valid during the call. By
 *                convention null asks for the length of the array.
 * @param offset  the index of the first element to read, from 0.
 * @param max     the largest number of floats to read.
 * @return the number of floats read; by convention the length of the array if values is null.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKGetDatavf_f)(void *refcon, float *values, int offset, int max);

/**
 * Writes elements of an array of floats.
 *
 * @param refcon  the writeRefcon given at registration.
 * @param values  count floats to write; owned by the writer, valid during the call.
 * @param offset  the index of the first element to write, from 0.
 * @param count   the number of floats to write.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKSetDatavf_f)(void *refcon, float *values, int offset, int count);

/**
 * Reads elements of an array of bytes.
 *
 * @param refcon  the readRefcon given at registration.
 * @param bytes   receives up to max bytes; owned by the reader, valid during the call. By
 *                convention null asks for the length of the array.
 * @param offset  the index of the first element to read, from 0.
 * @param max     the largest number of bytes to read.
 * @return the number of bytes read; by convention the length of the array if bytes is null.
 *
 * [callback, plugin enabled]
 */
typedef int (*AVSKGetDatab_f)(void *refcon, void *bytes, int offset, int max);

/**
 * Writes elements of an array of bytes.
 *
 * @param refcon  the writeRefcon given at registration.
 * @param bytes   count bytes to write; owned by the writer, valid during the call.
 * @param offset  the index of the first element to write, from 0.
 * @param count   the number of bytes to write.
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKSetDatab_f)(void *refcon, void *bytes, int offset, int count);

/* ---- Registration */

/**
 * Finds a dataref that a plugin publishes now.
 *
 * @param name  compared byte for byte. Null finds nothing.
 * @return the handle; null if no plugin publishes the name.
 *
 * [main thread, any time]
 */
AVSK_API AVSKDataRef AVSKFindDataRef(const char *name);

/**
 * Publishes a dataref that belongs to the calling plugin.
 *
 * A name that was published before and is not published now keeps its handle:
 * plugins that hold the handle reach the new accessors.
 *
 * If a plugin publishes the name now, the calling plugin included, that
 * registration stays, its handle is returned, and the error callback receives
 * "Dataref is already registered by someone else."
 *
 * @param name             the name, by convention "organisation/plugin/value"; copied. Null publishes
 *                         nothing.
 * @param types            a sum of AVSKDataTypeBits, reported to readers; not checked against the
 *                         accessors.
 * @param writable         non-zero if the dataref may be written; with 0 every write is ignored.
 * @param readInt          reads the integer; null if the type is not served.
 * @param writeInt         writes the integer; null if the type is not written.
 * @param readFloat        reads the float; null if the type is not served.
 * @param writeFloat       writes the float; null if the type is not written.
 * @param readDouble       reads the double; null if the type is not served.
 * @param writeDouble      writes the double; null if the type is not written.
 * @param readIntArray     reads the integer array; null if the type is not served.
 * @param writeIntArray    writes the integer array; null if the type is not written.
 * @param readFloatArray   reads the float array; null if the type is not served.
 * @param writeFloatArray  writes the float array; null if the type is not written.
 * @param readData         reads the byte array; null if the type is not served.
 * @param writeData        writes the byte array; null if the type is not written.
 * @param readRefcon       passed to the read accessors, may be null.
 * @param writeRefcon      passed to the write accessors, may be null.
 * @return the handle; null for a null name.
 *
 * [main thread, any time]
 */
AVSK_API AVSKDataRef AVSKRegisterDataAccessor(const char *name, int types, int writable, AVSKGetDatai_f readInt,
                                              AVSKSetDatai_f writeInt, AVSKGetDataf_f readFloat,
                                              AVSKSetDataf_f writeFloat, AVSKGetDatad_f readDouble,
                                              AVSKSetDatad_f writeDouble, AVSKGetDatavi_f readIntArray,
                                              AVSKSetDatavi_f writeIntArray, AVSKGetDatavf_f readFloatArray,
                                              AVSKSetDatavf_f writeFloatArray, AVSKGetDatab_f readData,
                                              AVSKSetDatab_f writeData, void *readRefcon, void *writeRefcon);

/**
 * Stops publishing a dataref of the calling plugin. The handle stays valid: it
 * reads as 0 until the name is published again.
 *
 * @param ref  the handle. If it is null or not a dataref, the error callback receives
 *             "Dataref is illegal and cannot be unregistered." If another plugin publishes the
 *             dataref, or no plugin does, it receives
 *             "Dataref is not owned by you - you cannot unregsiter."
 *
 * [main thread, any time]
 */
AVSK_API void AVSKUnregisterDataAccessor(AVSKDataRef ref);

/**
 * Tells whether a dataref may be written.
 *
 * @param ref  any pointer, may be null.
 * @return the writable value given at the last registration, also while no plugin publishes the
 *         dataref; 0 if ref is not a dataref.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKCanWriteDataRef(AVSKDataRef ref);

/**
 * Tells whether a pointer is the handle of a dataref that a plugin publishes now.
 *
 * @param ref  any pointer, may be null.
 * @return 1 if it is, else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKIsDataRefGood(AVSKDataRef ref);

/**
 * Tells which types a dataref serves.
 *
 * @param ref  any pointer, may be null.
 * @return the type bits given at the last registration, also while no plugin publishes the dataref;
 *         0 if ref is not a dataref.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKGetDataRefTypes(AVSKDataRef ref);

/*
 * ---- Reads and writes
 *
 * Each function takes null or a handle from AVSKFindDataRef() or
 * AVSKRegisterDataAccessor(); another pointer is not detected. It calls the
 * owner's accessor for exactly that type. A read returns 0 and a write does
 * nothing if the handle is null, if the owner gave no accessor for the type,
 * if the owner is disabled or unloaded, or, for a write, if the dataref is
 * not writable. None of this is an error.
 */

/**
 * Reads a dataref as an integer.
 *
 * @param ref  the dataref, may be null.
 * @return the value that the owner's accessor returns, else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKGetDatai(AVSKDataRef ref);

/**
 * Writes a dataref as an integer.
 *
 * @param ref    the dataref, may be null.
 * @param value  the new value.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetDatai(AVSKDataRef ref, int value);

/**
 * Reads a dataref as a float.
 *
 * @param ref  the dataref, may be null.
 * @return the value that the owner's accessor returns, else 0.
 *
 * [main thread, any time]
 */
AVSK_API float AVSKGetDataf(AVSKDataRef ref);

/**
 * Writes a dataref as a float.
 *
 * @param ref    the dataref, may be null.
 * @param value  the new value.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetDataf(AVSKDataRef ref, float value);

/**
 * Reads a dataref as a double.
 *
 * @param ref  the dataref, may be null.
 * @return the value that the owner's accessor returns, else 0.
 *
 * [main thread, any time]
 */
AVSK_API double AVSKGetDatad(AVSKDataRef ref);

/**
 * Writes a dataref as a double.
 *
 * @param ref    the dataref, may be null.
 * @param value  the new value.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetDatad(AVSKDataRef ref, double value);

/**
 * Reads elements of a dataref that is an array of integers.
 *
 * @param ref     the dataref, may be null.
 * @param values  receives up to max integers. By convention null asks for the length of the array.
 * @param offset  the index of the first element to read, from 0.
 * @param max     the largest number of integers to read.
 * @return the value that the owner's accessor returns, by convention the number of integers read or
 *         the length of the array; else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKGetDatavi(AVSKDataRef ref, int *values, int offset, int max);

/**
 * Writes elements of a dataref that is an array of integers.
 *
 * @param ref     the dataref, may be null.
 * @param values  count integers to write; the owner's accessor decides whether null is allowed.
 * @param offset  the index of the first element to write, from 0.
 * @param count   the number of integers to write.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetDatavi(AVSKDataRef ref, int *values, int offset, int count);

/**
 * Reads elements of a dataref that is an array of floats.
 *
 * @param ref     the dataref, may be null.
 * @param values  receives up to max floats. By convention null asks for the length of the array.
 * @param offset  the index of the first element to read, from 0.
 * @param max     the largest number of floats to read.
 * @return the value that the owner's accessor returns, by convention the number of floats read or
 *         the length of the array; else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKGetDatavf(AVSKDataRef ref, float *values, int offset, int max);

/**
 * Writes elements of a dataref that is an array of floats.
 *
 * @param ref     the dataref, may be null.
 * @param values  count floats to write; the owner's accessor decides whether null is allowed.
 * @param offset  the index of the first element to write, from 0.
 * @param count   the number of floats to write.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetDatavf(AVSKDataRef ref, float *values, int offset, int count);

/**
 * Reads elements of a dataref that is an array of bytes.
 *
 * @param ref     the dataref, may be null.
 * @param bytes   receives up to max bytes. By convention null asks for the length of the array.
 * @param offset  the index of the first element to read, from 0.
 * @param max     the largest number of bytes to read.
 * @return the value that the owner's accessor returns, by convention the number of bytes read or
 *         the length of the array; else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKGetDatab(AVSKDataRef ref, void *bytes, int offset, int max);

/**
 * Writes elements of a dataref that is an array of bytes.
 *
 * @param ref     the dataref, may be null.
 * @param bytes   count bytes to write; the owner's accessor decides whether null is allowed.
 * @param offset  the index of the first element to write, from 0.
 * @param count   the number of bytes to write.
 *
 * [main thread, any time]
 */
AVSK_API void AVSKSetDatab(AVSKDataRef ref, void *bytes, int offset, int count);

/*
 * ---- Shared data
 *
 * A shared value is stored by the library, which publishes a writable dataref
 * for it. It belongs to no plugin. An array grows when it is written past its
 * end and never shrinks. A read past the end copies nothing and returns the
 * length minus the offset, a negative number. A read at a negative offset
 * returns 0; a write there, or of null, is ignored.
 */

/**
 * Notifies a subscriber that a shared value was written, also if the value did
 * not change. It may read and write the value, share and unshare. A write
 * inside the notification notifies all subscribers again.
 *
 * @param refcon  the refcon given to AVSKShareData().
 *
 * [callback, plugin enabled]
 */
typedef void (*AVSKDataChanged_f)(void *refcon);

/**
 * Creates a shared value with a dataref of the same name, unless the name is
 * shared already, and subscribes the calling plugin to writes. The value, 0 at
 * first, and its dataref stay for the life of the process. Unloading a plugin
 * ends its subscriptions. If a plugin publishes a dataref of this name, that
 * dataref stays, the subscription is made, and the host's error callback, not
 * the calling plugin's, receives "Dataref is already registered by someone else."
 *
 * @param name      the name; copied. Null shares nothing.
 * @param type      exactly one of AVSKDataTypeBits.
 * @param callback  called after each write, also after the calling plugin's own. Null shares without
 *                  a subscription. A callback given twice is called twice. One given during a
 *                  notification is called from the next write on.
 * @param refcon    passed to the callback, may be null.
 * @return 1 if the value is shared; 0 if the name is null or is shared with another type.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKShareData(const char *name, int type, AVSKDataChanged_f callback, void *refcon);

/**
 * Ends one subscription of the calling plugin that has these four values. The
 * shared value stays.
 *
 * @param name      the name given to AVSKShareData(); with null nothing happens.
 * @param type      the type given to AVSKShareData().
 * @param callback  the callback given to AVSKShareData(); with null nothing happens.
 * @param refcon    the refcon given to AVSKShareData().
 * @return 1 if a subscription was ended, else 0.
 *
 * [main thread, any time]
 */
AVSK_API int AVSKUnshareData(const char *name, int type, AVSKDataChanged_f callback, void *refcon);

#ifdef __cplusplus
}
#endif

#endif
