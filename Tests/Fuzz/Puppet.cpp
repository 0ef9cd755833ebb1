// The puppet's file. The loader maps copies of it; each tells the program when
// it comes and when it goes.
#include "Puppet.h"

#include <dlfcn.h>

namespace {

volatile unsigned returns = 0;

// Something to do in the plugin after each call, so that the call returns here.
struct Return {
    ~Return() { returns = returns + 1; }
};

template <auto Target, class Pointer = decltype(Target)>
struct Here;
template <auto Target, class Result, class... Arguments>
struct Here<Target, Result (*)(Arguments...)> {
    static Result Call(Arguments... arguments) {
        const Return back;
        return Target(arguments...);
    }
};

struct Own {
    explicit Own(int v) : value(new int(v)) {}
    Own(const Own &other) : value(new int(*other.value)) {}
    Own &operator=(const Own &) = delete;
    virtual ~Own() { delete value; }
    int *value;
};

void ThrowOwn() { throw Own(1); }
void OnError(const char *message);

#define FUZZ_HERE(member, type, function) Here<&function>::Call,
FuzzCode code = {-1, FUZZ_CALLBACKS(FUZZ_HERE) OnError, ThrowOwn};

void OnError(const char *message) {
    const Return back;
    FuzzError(code.index, message);
}

__attribute__((constructor)) void Mapped() {
    Dl_info info = {};
    dladdr(&code, &info);
    FuzzMapped(info.dli_fname, &code);
}

__attribute__((destructor)) void Unmapped() { FuzzUnmapped(code.index); }

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    const Return back;
    return FuzzStart(&code, outName, outSignature, outDescription);
}

void AVPluginStop() {
    const Return back;
    FuzzStop(code.index);
}

int AVPluginEnable() {
    const Return back;
    return FuzzEnable(code.index);
}

void AVPluginDisable() {
    const Return back;
    FuzzDisable(code.index);
}

void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    const Return back;
    FuzzMessage(code.index, sender, message, parameter);
}
