/* Breaks the rules about state that a plugin must leave as it was. */
#define _GNU_SOURCE
#include "Zoo.h"

#include <locale.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

static void ChangeX87(void) {
    const unsigned short single = 0x007f;
    __asm__ volatile("fldcw %0" : : "m"(single));
}

static void ChangeMxcsr(void) {
    const unsigned flushToZero = 0x9fc0;
    __asm__ volatile("ldmxcsr %0" : : "m"(flushToZero));
}

static void TurnBack(void) { __asm__ volatile("std" : : : "cc"); }

static void Block(void) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &set, NULL);
}

static void ChangeFolder(void) {
    if (chdir("/") != 0)
        abort();
}

static void ChangeLocale(void) { setlocale(LC_ALL, "C.UTF-8"); }
static void ChangeUmask(void) { umask(0077); }
static void Handle(int signal) { (void)signal; }
static void ChangeHandler(void) { signal(SIGUSR2, Handle); }
static void ChangeEnvironment(void) { setenv("AVSK_ZOO_VARIABLE", "1", 1); }

const Inhabitant kState[] = {
    {.rule = "state-x87", .frame = ChangeX87},
    {.rule = "state-mxcsr", .enable = ChangeMxcsr},
    {.rule = "state-direction", .frame = TurnBack},
    {.rule = "state-signals", .frame = Block},
    {.rule = "state-folder", .start = ChangeFolder},
    {.rule = "state-locale", .enable = ChangeLocale},
    {.rule = "state-umask", .stop = ChangeUmask},
    {.rule = "state-handler", .start = ChangeHandler},
    {.rule = "state-environment", .start = ChangeEnvironment},
    {0},
};
