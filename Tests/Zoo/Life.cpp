// Breaks the rules about a plugin's life: its start, its end, its threads and what it leaves.
#include "Zoo.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace {

bool IsChosen(const char *rule) {
    const char *chosen = std::getenv("AVSK_ZOO");
    return chosen && std::string_view(chosen) == rule;
}

struct Early {
    Early() {
        if (IsChosen("call-constructor"))
            AVSKDebugString("early\n");
    }
    ~Early() {
        if (IsChosen("call-destructor"))
            AVSKDebugString("late\n");
    }
} early;

void ClearSignature(char * /*name*/, char *signature) { *signature = '\0'; }
void TakeSignature(char * /*name*/, char *signature) { std::strcpy(signature, "aerivo.samples.template"); }

void CallOnThread() {
    pthread_t thread;
    const auto call = [](void *) -> void * {
        AVSKDebugString("from a thread\n");
        return nullptr;
    };
    if (pthread_create(&thread, nullptr, call, nullptr) == 0)
        pthread_join(thread, nullptr);
}

void LeaveThread() {
    pthread_t thread;
    const auto wait = [](void *) -> void * {
        for (;;)
            pause();
    };
    if (pthread_create(&thread, nullptr, wait, nullptr) == 0)
        pthread_detach(thread);
}

float Nothing(float /*sinceCall*/, float /*sinceLoop*/, int /*counter*/, void * /*refcon*/) { return 0; }
void LeaveLoop() { AVSKRegisterFlightLoopCallback(Nothing, 0, nullptr); }
void LeaveDescriptor() { static_cast<void>(open("/dev/null", O_RDONLY)); }
void LeaveButton() { AVSKCommandButtonPress(7); }

void OpenItself() {
    Dl_info info;
    if (dladdr(&early, &info) != 0)
        dlopen(info.dli_fname, RTLD_NOW);
}

void Throw() { throw std::runtime_error("of the zoo"); }

} // namespace

extern "C" const Inhabitant kLife[] = {
    {.rule = "start-signature", .answer = ClearSignature},
    {.rule = "start-duplicate", .answer = TakeSignature},
    {.rule = "call-constructor"}, // the object above breaks these two
    {.rule = "call-destructor"},
    {.rule = "call-thread", .frame = CallOnThread},
    {.rule = "left-behind", .start = LeaveLoop},
    {.rule = "left-pressed", .frame = LeaveButton},
    {.rule = "left-descriptor", .start = LeaveDescriptor},
    {.rule = "left-thread", .start = LeaveThread},
    {.rule = "left-mapped", .enable = OpenItself},
    {.rule = "exception-left", .frame = Throw},
    {},
};
