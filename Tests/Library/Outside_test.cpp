// Faults from outside: old hosts, broken folders, and names of any bytes.
#include "World.h"

#include <climits>

#include <sys/mman.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

class Outside : public InWorld {};

// ---- Short tables

// Copies the fake host's table so that it ends just before an unreadable page. The copy is never freed.
const AVSKHostCallbacks *TableAtTheEdge(std::size_t size) {
    constexpr std::size_t page = 4096;
    auto *const start =
        static_cast<char *>(mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(start + page, page, PROT_NONE);
    return static_cast<AVSKHostCallbacks *>(std::memcpy(start + page - size, &Host().table, size));
}

// Slots 33 and 34 need a table of 288 bytes, slot 53 version 3, slot 54 version 4.
TEST_F(Outside, OldHostsAreSparedTheServicesTheyDoNotHave) {
    const Puppet &a = world.InstallAt("Resources/plugins/A.avp", "A");
    const std::function<void()> use = [] {
        AVSKDestroyMenu(AVSKCreateMenu("M", nullptr, 0, nullptr, nullptr));
        AVSKAcquirePlanes(nullptr, nullptr, nullptr);
        AVSKReinitUsersPlane();
        AVSKLoadObjectAsync("object", nullptr, nullptr);
        AVSKSendMessageToPlugin(AVSK_PLUGIN_AERIVO, 5, nullptr);
        AVSKReloadPlugins();
    };
    for (int version = 2; version <= 5; ++version)
        for (int size = 280; size <= 290; ++size) {
            SCOPED_TRACE(Line("version ", version, ", size ", size));
            host.table.version = version;
            host.table.sizeInBytes = size;
            AVSKInitializePlugins(world.Path("").c_str(), TableAtTheEdge(std::min(size / 4 * 4, 288)), 0);
            a.Run(use);
            World::Pass(1);
            AVSKShutdownPlugins();
            const std::string calls = TakeCalls();
            for (const auto &[service, is] : Table<std::string, bool>{{"destroyMenu(", size >= 288},
                                                                      {"reinitUsersPlane(208, 201)", size >= 288},
                                                                      {"loadObjectAsync(", size >= 284},
                                                                      {"loadObject(", size < 284}, // synchronous
                                                                      {"showMessage(", version >= 3},
                                                                      {"showProgress(", version >= 4}})
                EXPECT_EQ(calls.find(service) != std::string::npos, is) << service;
            EXPECT_NE(calls.find("start A", calls.find("stop A")), std::string::npos) << "reloaded: " << calls;
        }
}

// ---- Folders and files

TEST_F(Outside, BrokenEntriesOfThePluginsFolderArePassedOver) {
    const Puppet &good = world.Install("m");
    const auto openFiles = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = openFiles();
    const std::string cut = "dlerror:the file breaks off: copy it again\n", pipe = "dlerror:a pipe, not a library\n";
    for (const auto &[name, alike, said, failedSays, listingSays] : // said: log text; listingSays: errno
         Table<std::string, Lines, std::string, bool, int>{
             {"x", {"nowhere"}, "", false, 2},
             {"x", {"x"}, "", false, 40},
             {"x", {"../../Resources", ".", "file"}, "", false, 0},
             {"x.avp", {"nowhere"}, "", true, 2},
             {"x.avp", {"x.avp"}, "", true, 40},
             {"x.avp", {"file", "folder", "/dev/null", "/dev/zero", "/bin/sh"}, "dlerror:", true, 0},
             {"x.avp", {"pipe"}, pipe, true, 0},
             {"x.avp", {"cut", "cut short"}, cut, true, 0},
             {"x/lin.avp", {"lin.avp", "nowhere"}, "", false, 0},
             {"x/lin.avp", {"folder"}, "dlerror:", false, 0},
             {"x/32", {"32", "../m"}, "", false, 0}})
        for (const std::string &like : alike) {
            SCOPED_TRACE(Line(name, " like ", like));
            // Creates an empty file, a pipe, a truncated copy, a folder, or else a link to that path.
            const fs::path path = world.Path("Resources/plugins/") + name;
            fs::create_directories(path.parent_path());
            if (like == "file" || like == "pipe")
                mknod(path.c_str(), 0600 | (like == "pipe" ? S_IFIFO : S_IFREG), 0);
            else if (like.starts_with("cut")) {
                fs::copy_file(good.path, path);
                fs::resize_file(path, like == "cut" ? 5000 : 60); // truncated in a segment, or in the headers
            } else
                like == "folder" ? void(fs::create_directory(path)) : fs::create_symlink(like, path);
            testing::internal::CaptureStdout();
            world.Start();
            EXPECT_EQ(testing::internal::GetCapturedStdout(),
                      listingSays ? Line("name ", name, ", errno ", listingSays, "\n") : "");
            EXPECT_EQ(AVSKCountPlugins(), 2);
            EXPECT_TRUE(AVSKIsPluginEnabled(good.Id())) << "the good plugin beside it";
            EXPECT_EQ(host.log.find("dlerror:"), said.empty() ? std::string::npos : host.log.find(said)) << host.log;
            EXPECT_EQ(host.log.find("Failed: " + path.string()) != std::string::npos, failedSays) << host.log;
            host.TakeLog();
            world.Stop();
            for (const char *made : {"x", "x.avp"})
                fs::remove_all(world.Path("Resources/plugins/") + made);
        }
    EXPECT_EQ(openFiles(), before);
}

TEST_F(Outside, APluginsFolderThatCannotBeListedIsAnEmptyOne) {
    std::ofstream(world.Path("file"));
    fs::create_symlink("loop", world.Path("loop"));
    for (const std::string &root : {std::string(), world.Path("nowhere/"), world.Path("file/"), world.Path("loop/"),
                                    std::string(300, 'n') + "/", std::string(2 * PATH_MAX, '/')}) {
        EXPECT_EQ(AVSKInitializePlugins(root.c_str(), &host.table, 0), AVSK_HOST_INTERFACE);
        const std::string scenery = root + "Scenery/";
        AVSKEventHook(AVSKHostEventSceneryFolder, 0, 0, reinterpret_cast<AVSKWord>(scenery.c_str()));
        EXPECT_EQ(AVSKCountPlugins(), 1);
        int total = -1;
        AVSKGetDirectoryContents((root + "x").c_str(), 0, nullptr, 0, nullptr, 0, &total, nullptr);
        EXPECT_EQ(total, 0);
        AVSKShutdownPlugins();
    }
}

// ---- Names

TEST_F(Outside, NamesMayBeAnyBytes) {
    std::string all; // every byte; the separator is appended last
    std::vector<const Puppet *> puppets;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/') {
            all += static_cast<char>(byte);
            puppets.push_back(&world.Install(std::string("x") + all.back()));
        }
    all += '/';
    Puppet &named = world.Install("y");
    named.name = named.signature = named.description = all;
    world.Start();
    ASSERT_EQ(AVSKCountPlugins(), 256);
    for (int id = 1; id < 255; ++id) { // IDs follow byte order
        EXPECT_EQ(puppets.at(id - 1)->Id(), id);
        EXPECT_EQ(AVSKFindPluginByPath(puppets.at(id - 1)->path.c_str()), id);
    }
    char texts[3][AVSK_TEXT_SIZE];
    AVSKGetPluginInfo(named.Id(), texts[0], nullptr, texts[1], texts[2]);
    EXPECT_EQ((Lines{texts, texts + 3}), Lines(3, all));
    const AVSKDataRef ref = Publish(all.c_str());
    EXPECT_EQ(AVSKFindDataRef(all.c_str()), ref);
}

// ---- Folders that change

// The loader lists folders once, after it has loaded loose files.
TEST_F(Outside, APluginsStartMayAddAndRemoveItsNeighbours) {
    world.InstallAt("Resources/plugins/loose.avp", "loose").start = [&] { return world.Install("a"), 1; };
    Puppet &m = world.Install("m");
    world.Install("n");
    m.start = [&] {
        for (const char *name : {"m", "n", "loose.avp"})
            fs::remove_all(world.PluginsFolder() + "/" + name);
        std::ofstream(world.PluginsFolder() + "/n"); // a file replaces a folder
        return world.Install("o"), 1;
    };
    world.Start();
    EXPECT_TRUE(TakeCalls().ends_with("start loose; start a; start m; enable loose; enable a; enable m"));
    AVSKReloadPlugins();
    World::Pass(1);
    EXPECT_TRUE(TakeCalls().ends_with("start a; start o; enable a; enable o"));
}

} // namespace
