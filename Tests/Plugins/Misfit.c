/*
 * Faults that a plugin author makes, one per switch. Compiled without headers and
 * libraries, as the headers would prevent some of them.
 *
 *     MISSPELT MANGLED HIDDEN    how it exports AVPluginStart, or not: STARTLESS
 *     UNKNOWN                    it exports a sixth entry point
 *     EXPORTS SHARES UNIQUE      it exports a name of its own; the first two the same one
 *     UNSIGNED NAMELESS          which text it leaves empty; ODD: a name that no file format likes
 *     DISABLED REFUSES           its AVPluginEnable returns 0, at once or the second time
 *     UNDEFINED                  it calls a function that nobody exports
 *     CRASHES HANGS GROWS        what it does when it is enabled, or each time that it is started
 *     FAR                        it crashes at message 103, 104 or 105 after 107 or 108
 *
 * The switches WIDE, BARE, RELOCATED, STACK, STAYS and LIBRARY are options of the compiler.
 */
#define EXPORT __attribute__((visibility("default")))

#if defined(MISSPELT)
#define START AVPluginstart
#elif defined(STARTLESS)
#define START Begin
#else
#define START AVPluginStart
#endif

#if defined(HIDDEN) || defined(STARTLESS)
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
void *malloc(__SIZE_TYPE__ size);

static int enabled;
static void *volatile memory;

#if defined(EXPORTS) || defined(SHARES)
EXPORT int Helper(void);

int Helper(void) { return enabled; }
#elif defined(UNIQUE)
EXPORT int helper = 1;
__asm__(".type helper, @gnu_unique_object");
#elif defined(UNKNOWN)
EXPORT void AVPluginUpdateEverything(void);

void AVPluginUpdateEverything(void) {}
#endif

int START(char *outName, char *outSignature, char *outDescription) {
    (void)outDescription;
#if defined(ODD)
    outName[0] = '<', outName[1] = 1, outName[2] = (char)255, outName[3] = '"', outName[4] = 0;
    outSignature[0] = 'o', outSignature[1] = 0;
#elif !defined(NAMELESS)
    outName[0] = 'M', outName[1] = 0;
#endif
#if !defined(UNSIGNED) && !defined(ODD)
    outSignature[0] = 'm', outSignature[1] = 0;
#endif
#if defined(GROWS)
    memory = malloc(100000);
#endif
#if defined(UNDEFINED)
    return AVSKDebugStrin("") + 1;
#else
    return outName && outSignature;
#endif
}

EXPORT int AVPluginEnable(void);

int AVPluginEnable(void) {
    ++enabled;
#if defined(CRASHES)
    *(int *volatile)memory = 1;
#elif defined(HANGS)
    while (!memory) {
    }
#endif
#if defined(DISABLED) || defined(ODD)
    return 0;
#elif defined(REFUSES)
    return enabled == 1;
#else
    return 1;
#endif
}

#if defined(FAR)
EXPORT void AVPluginReceiveMessage(int sender, int message, void *parameter);

void AVPluginReceiveMessage(int sender, int message, void *parameter) {
    static int late;
    (void)sender, (void)parameter;
    if (message == 107 || message == 108)
        late = 1;
    if (late && message >= 103 && message <= 105)
        *(int *volatile)memory = 1;
}
#endif
