/**
 * AVSKThreadLocal.h: one value per thread behind a key, for plugins that
 * start threads of their own. These three calls, alone in the interface, may
 * be made on any thread.
 */
#ifndef AVSK_THREAD_LOCAL_H
#define AVSK_THREAD_LOCAL_H

#include "AVSKTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Creates a key under which every thread keeps a value of its own, at first null.
 *
 * Keys are never given back, not even when the plugin is unloaded: make one
 * and keep it. A process has a limited number (1,024 on Linux); a failure to
 * make one is not reported.
 *
 * @return the new key.
 */
AVSK_API unsigned int AVSKAllocTLS(void);

/**
 * Reads the calling thread's value.
 *
 * @param key  from AVSKAllocTLS().
 * @return the value last stored by this thread; null if there was none or the key is unknown.
 */
AVSK_API void *AVSKGetTLS(unsigned int key);

/**
 * Stores the calling thread's value. The library never frees what it points
 * to: no destructor runs when the thread ends.
 *
 * @param key    from AVSKAllocTLS().
 * @param value  any pointer, may be null.
 * @return 0 on success, else the error number of the platform (EINVAL for an unknown key).
 */
AVSK_API int AVSKSetTLS(unsigned int key, void *value);

#ifdef __cplusplus
}
#endif

#endif
