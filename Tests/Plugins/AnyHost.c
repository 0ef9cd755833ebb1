/* A host that loads the library in an unusual way, for Exec_test.cpp:
 *   anyhost LIBRARY ROOT WORD...
 * Words: deepbind, global (how the library is loaded; without them in a scope of its
 * own), thread (another thread than the main one is the host), foreign (a third thread
 * calls the library), handler (handles SIGSEGV itself), signal (asks for a report after
 * 5 frames), forks (a child ends by exit()), stays (no shutdown), leaves (_exit(0)).
 * Each thing that works is said on standard output. */
#define _GNU_SOURCE
#include <AVSK/AVSKHost.h>
#include <AVSK/AVSKPlugins.h>

#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

static char **words;
static const char *root;
static int frame;
static char handlersStack[64 * 1024];

static int Has(const char *word) {
    for (char **at = words; *at; ++at)
        if (strcmp(*at, word) == 0)
            return 1;
    return 0;
}

static int Nothing(void) { return 0; }
static void *Menu(void *parent, int item, const char *name) {
    (void)parent, (void)item, (void)name;
    return words;
}
static float Elapsed(void) { return (float)frame / 60; }
static void SystemPath(char *out) { strcpy(out, root); }

static void OnFault(int number) {
    static const char said[] = "the host's own handler ran\n";
    (void)!write(STDOUT_FILENO, said, sizeof said - 1);
    _exit(number == SIGSEGV ? 7 : 8);
}

static void *library;
static void *Find(const char *name) { return dlsym(library, name); }

static void *CallFromOtherThread(void *unused) {
    ((int (*)(void))Find("AVSKCountPlugins"))();
    return unused;
}

static void *Host(void *unused) {
    static AVSKHostCallbacks table;
    void **slots = (void **)&table;
    for (size_t i = 0; i < sizeof table / sizeof *slots; ++i)
        slots[i] = (void *)Nothing;
    table.version = AVSK_HOST_INTERFACE;
    table.sizeInBytes = sizeof table;
    table.createMenu = Menu;
    table.getElapsedTime = Elapsed;
    table.getSystemPath = SystemPath;
    int (*event)(int, float, int, AVSKWord) = (int (*)(int, float, int, AVSKWord))Find("AVSKEventHook");
    ((int (*)(const char *, const AVSKHostCallbacks *, AVSKWord))Find("AVSKInitializePlugins"))(root, &table, 0);
    printf("%d plugins\n", ((int (*)(void))Find("AVSKCountPlugins"))() - 1);
    if (Has("foreign")) {
        pthread_t other;
        pthread_create(&other, NULL, CallFromOtherThread, NULL);
        pthread_join(other, NULL);
    }
    for (frame = 1; frame <= 10; ++frame) {
        event(AVSKHostEventFrame, Elapsed(), 0, 0);
        event(AVSKHostEventCommands, Elapsed(), 0, 0);
        event(AVSKHostEventFrameEnd, Elapsed(), 0, 0);
        if (frame == 5 && Has("signal"))
            raise(SIGUSR1);
    }
    if (!Has("stays") && !Has("leaves"))
        ((void (*)(void))Find("AVSKShutdownPlugins"))();
    return unused;
}

int main(int argc, char **argv) {
    if (argc < 3)
        return 2;
    setvbuf(stdout, NULL, _IOLBF, BUFSIZ);
    root = argv[2];
    words = argv + 3;
    if (Has("handler")) {
        struct sigaction action = {.sa_flags = SA_ONSTACK | SA_RESETHAND}, old;
        stack_t stack = {.ss_sp = handlersStack, .ss_size = sizeof handlersStack};
        sigaltstack(&stack, NULL);
        action.sa_handler = OnFault;
        sigaction(SIGSEGV, &action, NULL);
        signal(SIGABRT, OnFault);
        sigaction(SIGABRT, NULL, &old);
        printf("its handler is %s\n", old.sa_handler == OnFault ? "kept" : "lost");
    }
    library = dlopen(argv[1], RTLD_NOW | (Has("global") ? RTLD_GLOBAL : 0) | (Has("deepbind") ? RTLD_DEEPBIND : 0));
    if (!library) {
        fprintf(stderr, "%s\n", dlerror());
        return 2;
    }
    if (Has("thread")) {
        pthread_t thread;
        pthread_create(&thread, NULL, Host, NULL);
        pthread_join(thread, NULL);
    } else {
        Host(NULL);
    }
    if (Has("forks")) {
        fflush(stdout);
        const pid_t child = fork();
        if (child == 0)
            exit(0);
        waitpid(child, NULL, 0);
    }
    puts("the end");
    fflush(stdout);
    if (Has("leaves"))
        _exit(0);
    return 0;
}
