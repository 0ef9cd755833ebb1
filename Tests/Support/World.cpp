// The temporary folder, and the functions that the puppets call in the test program.
#include "World.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

std::map<std::string, Puppet> gPuppets; // by path

Puppet &PuppetAt(const char *path) {
    const auto found = gPuppets.find(path);
    if (found == gPuppets.end()) {
        ADD_FAILURE() << "a puppet file that no test installed: " << path;
        std::abort();
    }
    return found->second;
}

void Play(Puppet &puppet, const char *entry, std::function<void()> Puppet::*player) {
    Note(entry + puppet.label);
    if (puppet.*player)
        (puppet.*player)();
}

void Copy(const std::string &from, const std::string &to) {
    fs::create_directories(fs::path(to).parent_path());
    fs::copy_file(from, to);
}

} // namespace

World::World() {
    std::string pattern = (fs::temp_directory_path() / "avsk-test-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder: " + pattern);
    root = pattern + "/";
    fs::create_directories(PluginsFolder());
    Host().systemPath = root;
    Host().aircraftModel = Path("Aircraft/model.acf");
}

World::~World() {
    Stop();
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

Puppet &World::InstallAt(const std::string &relative, const std::string &label) {
    const std::string path = Path(relative);
    Copy(AVSK_TEST_PUPPET, path);
    Puppet &puppet = gPuppets[path];
    puppet.label = label;
    puppet.path = path;
    puppet.name = "Name of " + label;
    puppet.signature = "test." + label;
    puppet.description = "Description of " + label;
    return puppet;
}

std::string World::InstallDefective(const std::string &relative, const std::string &fault) {
    Copy(std::string(AVSK_TEST_ZOO) + "/" + fault + ".avp", Path(relative));
    return Path(relative);
}

int World::Start() {
    running = true;
    return AVSKInitializePlugins(root.c_str(), &Host().table, 0);
}

void World::Stop() {
    if (std::exchange(running, false))
        AVSKShutdownPlugins();
}

void World::StartQuietly() {
    Start();
    Take();
    Host().TakeLog();
}

void World::LoadScenery() const {
    const std::string folder = Path("Scenery/");
    AVSKEventHook(AVSKHostEventSceneryFolder, 0, 0, reinterpret_cast<AVSKWord>(folder.c_str()));
}

void ThreePlugins::SetUp() {
    world.Start();
    World::LoadAircraft();
    Take();
    host.TakeLog();
}

void ThreePlugins::Restart() {
    world.Stop();
    SetUp();
}

std::string TakeCalls() {
    std::string calls;
    for (const std::string &line : Take())
        if (!line.starts_with("message ") && !line.starts_with("receiveMessage("))
            calls += (calls.empty() ? "" : "; ") + line;
    return calls;
}

AVSKDataRef Publish(const char *name, AVSKGetDatai_f readInt, void *refcon) {
    return AVSKRegisterDataAccessor(name, AVSKDataTypeInt, 0, readInt, nullptr, nullptr, nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, refcon, nullptr);
}

void JournalErrors() {
    AVSKSetErrorCallback([](const char *message) { Note(std::string("error: ") + message); });
}

bool Puppet::IsMapped() const {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(path) != std::string::npos)
            return true;
    return false;
}

void Puppet::Call(const std::function<void()> &f) const {
    bool ran = false;
    std::function<void()> marked = [&] {
        ran = true;
        f();
    };
    AVSKSendMessageToPlugin(Id(), kRunMessage, &marked);
    EXPECT_TRUE(ran) << label << " is not enabled";
}

int AvskTestStart(const char *path, const PuppetCode *code, char *name, char *signature, char *description) {
    Puppet &puppet = PuppetAt(path);
    puppet.code = *code;
    Note("start " + puppet.label);
    std::strcpy(name, puppet.name.c_str());
    std::strcpy(signature, puppet.signature.c_str());
    std::strcpy(description, puppet.description.c_str());
    return puppet.start ? puppet.start() : 1;
}

void AvskTestStop(const char *path) { Play(PuppetAt(path), "stop ", &Puppet::stop); }

int AvskTestEnable(const char *path) {
    Puppet &puppet = PuppetAt(path);
    Note("enable " + puppet.label);
    return puppet.enable ? puppet.enable() : 1;
}

void AvskTestDisable(const char *path) { Play(PuppetAt(path), "disable ", &Puppet::disable); }

void AvskTestMessage(const char *path, int sender, int message, void *parameter) {
    Puppet &puppet = PuppetAt(path);
    if (message == kRunMessage) {
        (*static_cast<const std::function<void()> *>(parameter))();
        return;
    }
    Note(Line("message ", puppet.label, " ", sender, " ", message, " ", reinterpret_cast<std::uintptr_t>(parameter)));
    if (puppet.message)
        puppet.message(sender, message, parameter);
}

void AvskTestReturned(const char *path) { ++PuppetAt(path).returned; }
