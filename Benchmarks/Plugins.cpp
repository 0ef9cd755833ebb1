// Plugins: broadcasting a message to all of them, and starting them.
#include "FakeHost.h"
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKHost.h"

#include <dlfcn.h>

namespace {

// ---- Messages

constexpr int kMessage = 2000; // the plugins only count it

using Receiver = void (*)(AVSKPluginID sender, int message, void *parameter);

// The entry points of the plugins that the library has loaded.
std::vector<Receiver> Receivers(const Simulator &simulator) {
    std::vector<Receiver> receivers = {FakeHostTable().receiveMessage};
    for (const std::string &file : simulator.Files()) {
        void *handle = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (!handle)
            throw std::runtime_error(file + " is not loaded, though the library started it");
        receivers.push_back(reinterpret_cast<Receiver>(dlsym(handle, "AVPluginReceiveMessage")));
        dlclose(handle); // the library's own handle keeps it loaded
    }
    return receivers;
}

void CompareBroadcast(Report &report) {
    constexpr int kPlugins = 100;
    constexpr unsigned kReceivers = kPlugins + 1; // plugin 0 receives it too
    const Simulator simulator(kPlugins);
    const std::vector<Receiver> receivers = Receivers(simulator);
    const auto heard = [&receivers] {
        unsigned byPlugins = 0;
        for (unsigned id = 1; id < kReceivers; ++id)
            receivers[id](AVSK_PLUGIN_AERIVO, kBenchTell, &byPlugins);
        return byPlugins + FakeHostMessages();
    };

    const Side ours = Side::Here(
        kReceivers, [] { AVSKSendMessageToPlugin(NO_PLUGIN_ID, kMessage, nullptr); }, heard);
    const Side bare = Side::Here(
        kReceivers,
        [&receivers] {
            for (const Receiver receive : receivers)
                receive(AVSK_PLUGIN_AERIVO, kMessage, nullptr);
        },
        heard);
    report.Compare("broadcast to 100 plugins / indirect calls", Report::kNoGoal, ours, bare);
}

// ---- Starting

void CheckUnloaded(const std::vector<std::string> &files) {
    for (const std::string &file : files)
        if (dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD))
            throw WrongCount(file + " stayed loaded: the next start would find it ready");
}

Side StartsByLibrary(const PluginFolder &folder, std::uint64_t &started) {
    return Side::Here(
        static_cast<unsigned>(folder.Files().size()),
        [&folder] { AVSKInitializePlugins(folder.Root().c_str(), &FakeHostTable(), 0); },
        [&started] { return started; },
        [&folder, &started] {
            for (AVSKPluginID id = 1; id < AVSKCountPlugins(); ++id)
                started += static_cast<unsigned>(AVSKIsPluginEnabled(id));
            AVSKShutdownPlugins();
            CheckUnloaded(folder.Files());
        });
}

// The least work that a loader of such plugins needs.
bool StartBare(const std::string &file, std::vector<void *> &handles) {
    void *handle = dlopen(file.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!handle)
        return false;
    handles.push_back(handle);
    const auto start = reinterpret_cast<int (*)(char *, char *, char *)>(dlsym(handle, "AVPluginStart"));
    for (const char *name : {"AVPluginStop", "AVPluginEnable", "AVPluginDisable", "AVPluginReceiveMessage"})
        if (!dlsym(handle, name))
            return false;
    char text[3][AVSK_TEXT_SIZE];
    return start && start(text[0], text[1], text[2]) != 0;
}

Side StartsByHand(const PluginFolder &folder, std::vector<void *> &handles, std::uint64_t &started) {
    return Side::Here(
        static_cast<unsigned>(folder.Files().size()),
        [&folder, &handles, &started] {
            for (const std::string &file : folder.Files())
                started += StartBare(file, handles);
        },
        [&started] { return started; },
        [&folder, &handles] {
            for (void *handle : handles)
                dlclose(handle);
            handles.clear();
            CheckUnloaded(folder.Files());
        });
}

void CompareStart(Report &report) {
    const PluginFolder folder(200);
    std::uint64_t startedByLibrary = 0;
    std::uint64_t startedByHand = 0;
    std::vector<void *> handles;
    report.Compare("start of 200 plugins, each / dlopen, 5 dlsym, call", 1.3, StartsByLibrary(folder, startedByLibrary),
                   StartsByHand(folder, handles, startedByHand));
}

} // namespace

std::vector<Comparison> PluginComparisons() {
    return {{"broadcast to plugins", CompareBroadcast}, {"start plugins", CompareStart}};
}
