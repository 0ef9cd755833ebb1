// Makes folders of plugins and starts the library on them. Called by the comparisons.
#include "Simulator.h"

#include "FakeHost.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

std::string MakeTemporaryFolder() {
    const char *parent = std::getenv("TMPDIR");
    std::string path = std::string(parent && *parent ? parent : "/tmp") + "/avsk_bench.XXXXXX";
    if (!mkdtemp(path.data()))
        throw std::runtime_error("cannot make the temporary folder " + path + " (" + std::strerror(errno) +
                                 "): set TMPDIR to a folder that can be written");
    return path + "/";
}

} // namespace

PluginFolder::PluginFolder(int plugins) : root(MakeTemporaryFolder()) {
    try {
        for (int i = 0; i < plugins; ++i) {
            char name[16];
            std::snprintf(name, sizeof name, "Bench%03d", i);
            const fs::path folder = fs::path(root) / "Resources/plugins" / name;
            fs::create_directories(folder);
            // A copy: the dynamic linker treats two links to one file as the same library.
            fs::copy_file(BENCH_PLUGIN_FILE, folder / "lin.avp");
            files.push_back(folder / "lin.avp");
        }
    } catch (...) {
        std::error_code ignored;
        fs::remove_all(root, ignored);
        throw;
    }
}

void PluginFolder::AddAircraft() {
    const fs::path aircraft = fs::path(root) / "Aircraft";
    fs::create_directories(aircraft / "plugins/Bench");
    fs::copy_file(BENCH_PLUGIN_FILE, aircraft / "plugins/Bench/lin.avp");
    SetFakeHostAircraft(aircraft / "model.acf");
}

PluginFolder::~PluginFolder() {
    SetFakeHostAircraft("");
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

Simulator::Simulator(int plugins) : folder(plugins) {
    AVSKInitializePlugins(folder.Root().c_str(), &FakeHostTable(), 0);
    if (AVSKCountPlugins() != plugins + 1) {
        const int started = AVSKCountPlugins() - 1;
        AVSKShutdownPlugins();
        throw std::runtime_error("the library started " + std::to_string(started) + " of " + std::to_string(plugins) +
                                 " plugins: check that " BENCH_PLUGIN_FILE " can be loaded");
    }
}

Simulator::~Simulator() { AVSKShutdownPlugins(); }
