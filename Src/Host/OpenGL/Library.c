/*
 * libGL.so.1: what is not generated. Plugins find functions by name here, and
 * avsk finds the slots.
 */
#include "Library.h"

#include <stddef.h>
#include <string.h>

/* By name. Distances from the table's begin, so that loading relocates nothing. */
struct Export {
    int name;
    int function;
};
extern const struct Export avskExports[] __attribute__((visibility("hidden")));
extern const int avskExportCount __attribute__((visibility("hidden")));
extern struct AvskOpenGL avskOpenGLTable __attribute__((visibility("hidden")));

struct AvskOpenGL *avskOpenGL(void) {
    return &avskOpenGLTable;
}

typedef void (*Function)(void);

/* Null for a name that this library does not export. */
__attribute__((visibility("hidden"))) Function avskFind(const char *name) {
    const char *const begin = (const char *)avskExports;
    int low = 0;
    int high = avskExportCount;
    while (name && low < high) {
        const int middle = (low + high) / 2;
        const int order = strcmp(name, begin + avskExports[middle].name);
        if (order == 0)
            return (Function)(size_t)(begin + avskExports[middle].function);
        if (order < 0)
            high = middle;
        else
            low = middle + 1;
    }
    return NULL;
}

#define AVSK_ALIAS(name)                                                                                               \
    __attribute__((visibility("default"), alias("avskFind"))) Function name(const char *);                             \
    __attribute__((visibility("hidden"), alias("avskFind"))) Function avsk_##name(const char *);
AVSK_ALIAS(glXGetProcAddress)
AVSK_ALIAS(glXGetProcAddressARB)
