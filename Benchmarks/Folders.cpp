// Folders: a large folder listed page by page.
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKUtilities.h"

#include <cstring>
#include <filesystem>
#include <fstream>

#include <dirent.h>

namespace {

constexpr int kNames = 5000;
constexpr int kPage = 100; // names

std::string MakeLongFolder(const PluginFolder &inside) {
    const std::filesystem::path folder = inside.Root() + "names";
    std::filesystem::create_directory(folder);
    for (int i = 0; i < kNames; ++i)
        if (!std::ofstream(folder / ("object_" + std::to_string(i) + ".obj")))
            throw std::runtime_error("cannot make " + std::to_string(kNames) + " files in " + folder.string() +
                                     ": make room there, or set TMPDIR to another folder");
    return folder;
}

int ListByPages(const std::string &folder) {
    char names[kPage * 64];
    char *indices[kPage + 1]; // one more for the terminating null
    int listed = 0;
    int total = 0;
    do {
        int returned = 0;
        AVSKGetDirectoryContents(folder.c_str(), listed, names, sizeof names, indices, kPage, &total, &returned);
        if (returned == 0)
            break;
        listed += returned;
    } while (listed < total);
    return listed;
}

int ListAtOnce(const std::string &folder) {
    DIR *opened = opendir(folder.c_str());
    if (!opened)
        return 0;
    int listed = 0;
    while (const dirent *entry = readdir(opened))
        listed += std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0;
    closedir(opened);
    return listed;
}

// One complete listing.
template <class List>
Side Listings(const std::string &folder, std::uint64_t &listings, List list) {
    return Side::Here(
        1,
        [&folder, &listings, list] {
            const int listed = list(folder);
            if (listed != kNames)
                throw WrongCount(std::to_string(listed) + " names were listed, not " + std::to_string(kNames));
            ++listings;
        },
        [&listings] { return listings; });
}

void CompareListing(Report &report) {
    const Simulator simulator(1);
    const PluginFolder parent(0);
    const std::string folder = MakeLongFolder(parent);
    std::uint64_t ours = 0;
    std::uint64_t bare = 0;
    report.Compare("folder of 5000 names, pages of 100 / one readdir pass", Report::kNoGoal,
                   Listings(folder, ours, ListByPages), Listings(folder, bare, ListAtOnce));
}

} // namespace

std::vector<Comparison> FolderComparisons() { return {{"list a folder by pages", CompareListing}}; }
