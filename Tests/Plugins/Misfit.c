/*
 * Faults that a plugin author makes, one per switch. Compiled without headers and
 * libraries, as the headers would prevent some of them.
 *
 *     MISSPELT MANGLED HIDDEN    how it exports AVPluginStart; WIDE is compiled for 64 bits
 *     UNSIGNED NAMELESS          which text it leaves empty
 *     DISABLED                   its AVPluginEnable returns 0
 *     UNDEFINED                  it calls a function that nobody exports
 */
#define EXPORT __attribute__((visibility("default")))

#if defined(MISSPELT)
#define START AVPluginstart
#else
#define START AVPluginStart
#endif

#if defined(HIDDEN)
__attribute__((visibility("hidden")))
#else
EXPORT
#endif
int START(char *outName, char *outSignature, char *outDescription)
#if defined(MANGLED)
    __asm__("_Z13AVPluginStartPcS_S_")
#endif
        ;

int AVSKDebugStrin(const char *text);

int START(char *outName, char *outSignature, char *outDescription) {
    (void)outDescription;
#if !defined(NAMELESS)
    outName[0] = 'M', outName[1] = 0;
#endif
#if !defined(UNSIGNED)
    outSignature[0] = 'm', outSignature[1] = 0;
#endif
#if defined(UNDEFINED)
    return AVSKDebugStrin("") + 1;
#else
    return outName && outSignature;
#endif
}

EXPORT int AVPluginEnable(void);

int AVPluginEnable(void) {
#if defined(DISABLED)
    return 0;
#else
    return 1;
#endif
}
