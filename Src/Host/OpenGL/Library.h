/*
 * The border between libGL.so.1 and the program that serves it. Plugins call the
 * library's exported functions. Each jumps through its slot.
 */
#ifndef AVSK_HOST_OPENGL_LIBRARY_H
#define AVSK_HOST_OPENGL_LIBRARY_H

#ifdef __cplusplus
extern "C" {
#endif

enum {
    kAvskOpenGLThunkSize = 10
};

struct AvskOpenGL {
    unsigned count;              /* of slots; the functions' order is that of Functions.inc */
    void (*call)(void);          /* what the thunks jump to, with the function's number in eax; at first, returns 0 */
    const unsigned char *thunks; /* one for each slot */
    void **slots;                /* at first, each returns 0, or "" */

    /* The last call. It is still under way while the word at `stack` is the return address and nothing above it was
     * popped; the arguments are behind it. */
    unsigned last;
    const unsigned *stack;
    unsigned returnAddress;
};

/* The library's only export that is no function of OpenGL. */
__attribute__((visibility("default"))) struct AvskOpenGL *avskOpenGL(void);

#ifdef __cplusplus
}
#endif

#endif
