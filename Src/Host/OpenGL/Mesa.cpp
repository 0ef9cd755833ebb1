// Opens OSMesa; see Mesa.h. It is taken from the folder that AVSK_OPENGL_FOLDER
// names; without this variable from the system, or else from the folder that
// setup-opengl fills.
#include "Mesa.h"

#include "Crossings/RealSymbols.h"
#include "Elf/ElfFile.h"

#include <cstdlib>
#include <filesystem>
#include <set>

#include <dlfcn.h>

#ifdef __SANITIZE_ADDRESS__
// Mesa does not free everything of a destroyed context.
#define AVSK_FOR_SANITIZER extern "C" __attribute__((visibility("default"))) const char *
// NOLINTBEGIN(bugprone-reserved-identifier)
AVSK_FOR_SANITIZER __lsan_default_suppressions() { return "leak:libOSMesa.so\n"; }
AVSK_FOR_SANITIZER __lsan_default_options() { return "print_suppressions=0"; }
// NOLINTEND(bugprone-reserved-identifier)
#endif

namespace opengl {
namespace {

namespace fs = std::filesystem;

constexpr const char *kLibrary = "libOSMesa.so.8";

// Plugins are loaded globally, and most export instances of standard templates. Mesa must not use these: it would
// keep the plugins mapped. The runtime of the sanitizers refuses libraries with a scope of their own.
#ifdef __SANITIZE_ADDRESS__
constexpr int kOpenMode = RTLD_NOW | RTLD_LOCAL;
#else
constexpr int kOpenMode = RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND;
#endif

// A folder with libraries, or the root folder of unpacked packages.
class Folder {
  public:
    explicit Folder(fs::path root) : mRoot(std::move(root)) {}

    // Opens a library of the folder after those that it needs, so that no search path is needed. Null if it fails.
    void *Open(const std::string &name) {
        const fs::path path = Find(name);
        if (path.empty() || !mSeen.insert(name).second)
            return nullptr;
        for (const std::string &need : host::ReadElf(path, host::ElfSymbols::Skip).file.needed) {
            if (void *const loaded = dlopen(need.c_str(), RTLD_LAZY | RTLD_NOLOAD))
                dlclose(loaded);
            else
                Open(need);
        }
        return dlopen(path.c_str(), kOpenMode);
    }

  private:
    fs::path Find(const std::string &name) const {
        for (const char *below : {"", "usr/lib/i386-linux-gnu", "lib/i386-linux-gnu"}) {
            std::error_code error;
            if (fs::path path = mRoot / below / name; fs::exists(path, error))
                return path;
        }
        return {};
    }

    fs::path mRoot;
    std::set<std::string> mSeen;
};

// What setup-opengl fills; empty without a home folder.
fs::path SetUpFolder() {
    const char *const data = std::getenv("XDG_DATA_HOME");
    if (data && *data)
        return fs::path(data) / "avsk/opengl";
    const char *const home = std::getenv("HOME");
    return home && *home ? fs::path(home) / ".local/share/avsk/opengl" : fs::path();
}

void *OpenLibrary() {
    if (const char *const folder = std::getenv("AVSK_OPENGL_FOLDER"))
        return Folder(folder).Open(kLibrary);
    if (void *const library = dlopen(kLibrary, kOpenMode))
        return library;
    const fs::path folder = SetUpFolder();
    return folder.empty() ? nullptr : Folder(folder).Open(kLibrary);
}

Mesa Open() {
    Mesa mesa;
    void *const library = OpenLibrary();
    if (!library) {
        const char *const folder = std::getenv("AVSK_OPENGL_FOLDER");
        mesa.fault = folder ? "AVSK_OPENGL_FOLDER, '" + std::string(folder) + "', has no OSMesa that can be opened"
                            : "there is no 32-bit OSMesa";
        return mesa;
    }
    const auto find = [library](const char *name) { return crossings::RealLookup()(library, name); };
    mesa.create = reinterpret_cast<decltype(mesa.create)>(find("OSMesaCreateContextExt"));
    mesa.destroy = reinterpret_cast<decltype(mesa.destroy)>(find("OSMesaDestroyContext"));
    mesa.pixelStore = reinterpret_cast<decltype(mesa.pixelStore)>(find("OSMesaPixelStore"));
    mesa.makeCurrent = reinterpret_cast<decltype(mesa.makeCurrent)>(find("OSMesaMakeCurrent"));
    mesa.find = reinterpret_cast<decltype(mesa.find)>(find("OSMesaGetProcAddress"));
    if (!mesa.create || !mesa.destroy || !mesa.pixelStore || !mesa.makeCurrent || !mesa.find)
        mesa.fault = "the installed OSMesa lacks functions";
    return mesa;
}

} // namespace

const Mesa &OpenMesa() {
    static const Mesa mesa = Open();
    return mesa;
}

} // namespace opengl
