// Looks at the plugin files of a folder without loading them: which of them the
// library tries to load, and what is wrong with a file.
#ifndef AVSK_HOST_ELF_PLUGIN_FILES_H
#define AVSK_HOST_ELF_PLUGIN_FILES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class PluginFolder {
    Simulators, // Resources/plugins: NAME/lin.avp and NAME.avp are loaded
    Extra,      // the folder "plugins" of an aircraft or a scenery: NAME/lin.avp only
};

struct PluginFile {
    std::string path;   // as the library opens it
    std::string advice; // where it belongs; empty if the library tries to load it
};

// The plugins of a folder, by path. Of a folder NAME without lin.avp it finds
// misplaced files: every .avp file, and shared libraries with an entry point.
std::vector<PluginFile> FindPluginFiles(const std::string &folder, PluginFolder kind);

struct PluginFault {
    enum class Kind : std::uint8_t {
        Unreadable, // it is no ELF file, or breaks off
        Machine,    // it is no library for this machine
        Mangled,    // these concern entry points
        Hidden,
        Misspelt,
        Missing,
    };
    Kind kind;
    std::string text; // "is built for x86-64: compile it with -m32"
};

// Why the library cannot load a file or does not find an entry point. Empty if nothing is found.
std::vector<PluginFault> FaultsOfPluginFile(const std::string &path);

// The five names that the library looks up in a plugin.
bool IsEntryPoint(std::string_view name);

// Where a plugin of this path belongs: "is not loaded from this place: ...". Empty
// if the library finds it there, as far as the path shows.
std::string PlaceAdvice(const std::string &path);

// Whether a file is empty or breaks off, as while a linker writes it.
bool IsHalfWritten(const std::string &path);

} // namespace host

#endif
