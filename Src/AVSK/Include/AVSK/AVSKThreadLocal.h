/**
 * AVSKThreadLocal.h: thread-local values, for plugins that start threads of
 * their own. These are the only functions of the interface that may be called
 * on any thread.
 */
#ifndef AVSK_THREAD_LOCAL_H
#define AVSK_THREAD_LOCAL_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Creates a key under which each thread stores one value, null at first.
 *
 * A key is never freed, not even when the plugin is unloaded: create it once
 * and keep it. A process has a limited number of keys (1,024 on Linux).
 *
 * @return the new key. If the system has no key left, a number that is not a key; this is not
 *         reported.
 *
 * [any thread]
 */
AVSK_API unsigned int AVSKAllocTLS(void);

/**
 * Reads the calling thread's value.
 *
 * @param key  a key from AVSKAllocTLS().
 * @return the value that this thread stored last; null if it stored none or the key is unknown.
 *
 * [any thread]
 */
AVSK_API void *AVSKGetTLS(unsigned int key);

/**
 * Stores the calling thread's value. The plugin owns what the value points
 * to: the library never frees it, and no destructor runs when the thread ends.
 *
 * @param key    a key from AVSKAllocTLS().
 * @param value  any pointer, may be null.
 * @return 0 on success, else the system's error number (EINVAL for an unknown key).
 *
 * [any thread]
 */
AVSK_API int AVSKSetTLS(unsigned int key, void *value);

#ifdef __cplusplus
}
#endif

#endif
