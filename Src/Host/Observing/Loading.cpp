// Compares the plugin files that lie in a folder with those that started; see
// Loading.h. A member of Observers, so that runs and sessions have it.
#include "Loading.h"

#include "ObservedHost.h"

#include "Common/NearestName.h"
#include "Crossings/Callback.h"
#include "Crossings/Words.h"
#include "Elf/ElfFile.h"
#include "Reference/Reference.h"

#include "AVSK/AVSKHost.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include <dlfcn.h>

namespace host {
namespace {

namespace fs = std::filesystem;

using crossings::Crossing;

// The file that holds the function behind a callback, as it was opened.
std::string FileOf(const Crossing &crossing) {
    Dl_info info = {};
    if (!crossing.callback || dladdr(reinterpret_cast<const void *>(crossing.callback->function), &info) == 0)
        return "";
    return info.dli_fname;
}

std::string TextIn(const crossings::Value &buffer) {
    const auto *text = static_cast<const char *>(buffer.pointer);
    return {text, strnlen(text, AVSK_TEXT_SIZE - 1)};
}

} // namespace

std::string SymbolFault(const std::string &symbol) {
    std::string text = "needs " + symbol + ", which nothing exports";
    if (symbol.starts_with("_Z")) {
        const std::vector<std::string> names = ReferenceNames();
        const bool isOurs = std::any_of(names.begin(), names.end(), [&symbol](const std::string &name) {
            return symbol.find(std::to_string(name.size()) + name) != std::string::npos;
        });
        return isOurs ? text + ": declare it extern \"C\", or include AVSK/AVSK.h" : text;
    }
    const std::string nearest = DidYouMean(symbol, ReferenceNames(), 1);
    return text + (nearest.empty() ? ": link the library that defines it" : nearest);
}

std::string LibraryFault(const std::string &library) {
    return "needs the library " + library + ", which is not there for 32 bits: install it or link it statically";
}

Loading::Loading(const ObservedHost &host) : mHost(host) { crossings::AddObserver(*this); }
Loading::~Loading() { crossings::RemoveObserver(*this); }

crossings::Interest Loading::InterestIn(const crossings::Prototype &function) const {
    return crossings::IsOneOf(function.name, {"AVPluginStart", "AVPluginEnable", "AVSKEventHook",
                                              "AVSKInitializePlugins", "debugString", "showMessage"})
               ? crossings::Interest::Work
               : crossings::Interest::None;
}

void Loading::Begins(const Crossing &crossing) {
    if (crossing.from != crossings::Side::Library)
        return;
    if (std::strcmp(crossing.what.name, "showMessage") == 0) { // all plugins were unloaded
        mReloads = true;
        mStarted.clear();
        mReasons.clear();
    }
    if (std::strcmp(crossing.what.name, "debugString") != 0)
        return;
    const char *text = crossing.arguments.front().text;
    if (!text)
        return;
    if (mReasonFollows)
        mReasons.emplace_back(text);
    mReasonFollows = std::strcmp(text, "dlerror:") == 0;
}

void Loading::Ends(const Crossing &crossing) {
    const std::string_view name = crossing.what.name;
    if (crossing.IsStart()) {
        NoteStart(crossing);
    } else if (name == "AVPluginEnable") {
        if (crossing.returned && crossing.result.integer == 0)
            Say(FileOf(crossing),
                "stays disabled, since its AVPluginEnable returned 0: none of its callbacks is called");
    } else if (name == "AVSKInitializePlugins" || (name == "AVSKEventHook" && mReloads)) {
        mReloads = false;
        Report(mHost.Root() + "Resources/plugins", PluginFolder::Simulators);
    } else if (name == "AVSKEventHook") {
        const int event = crossing.arguments.front().integer;
        const AVSKWord parameter = crossing.arguments.back().word;
        const std::string model = mHost.AircraftModel();
        if (event == AVSKHostEventPlaneLoaded && parameter == 0 && !model.empty())
            Report((fs::path(model).parent_path() / "plugins").string(), PluginFolder::Extra);
        else if (event == AVSKHostEventSceneryFolder && parameter != 0)
            Report(reinterpret_cast<const char *>(parameter) + std::string("plugins"), PluginFolder::Extra);
    }
}

void Loading::NoteStart(const Crossing &crossing) {
    const std::string path = FileOf(crossing);
    std::erase_if(mStarted, [&path](const Started &known) { return known.path == path; });
    if (crossing.returned)
        mStarted.push_back(
            {path, crossing.result.integer != 0, TextIn(crossing["outName"]), TextIn(crossing["outSignature"])});
}

void Loading::Report(const std::string &folder, PluginFolder kind) {
    const auto isStarted = [this](const std::string &path) {
        return std::any_of(mStarted.begin(), mStarted.end(),
                           [&path](const Started &known) { return known.path == path; });
    };
    for (const PluginFile &file : FindPluginFiles(folder, kind)) {
        std::vector<std::string> faults;
        for (PluginFault &fault : FaultsOfPluginFile(file.path))
            faults.push_back(std::move(fault.text));
        // Of NAME/32/lin.avp and NAME/lin.avp the second is tried if the first fails.
        const fs::path first = fs::path(file.path).parent_path() / "32/lin.avp";
        if (isStarted(first.string()))
            continue;
        if (!file.advice.empty())
            faults.insert(faults.begin(), file.advice);
        else if (faults.empty() && !isStarted(file.path))
            faults.push_back(ReasonOf(file.path));
        for (const std::string &fault : faults)
            Say(file.path, fault);
    }
    for (const Started &started : mStarted)
        ReportStart(started);
}

void Loading::ReportStart(const Started &started) {
    if (!started.accepted)
        return Say(started.path, "refused to start: its AVPluginStart returned 0");
    if (started.signature.empty())
        return Say(started.path,
                   "was unloaded, since its AVPluginStart left the signature empty: fill in all three texts");
    if (started.name.empty())
        Say(started.path, "has no name: fill in all three texts in AVPluginStart");
    const auto first = std::find_if(mStarted.begin(), mStarted.end(), [&started](const Started &other) {
        return other.accepted && other.signature == started.signature;
    });
    if (first->path != started.path)
        Say(started.path, "was unloaded, since its signature '" + started.signature + "' is that of '" +
                              mHost.Shown(first->path) + "': give it one of its own");
}

std::string Loading::ReasonOf(const std::string &path) const {
    for (const std::string &reason : mReasons) {
        if (!reason.starts_with(path + ": "))
            continue;
        const std::string text = reason.substr(path.size() + 2);
        constexpr std::string_view kUndefined = "undefined symbol: ";
        if (!text.starts_with(kUndefined))
            return "was not loaded: " + text;
        return SymbolFault(
            text.substr(kUndefined.size(), text.find_first_of(" ,(", kUndefined.size()) - kUndefined.size()));
    }
    for (const std::string &library : ReadElf(path, ElfSymbols::Skip).file.needed) {
        const auto names = [&library](const std::string &reason) { return reason.starts_with(library + ": "); };
        if (std::any_of(mReasons.begin(), mReasons.end(), names))
            return LibraryFault(library);
    }
    return "was not loaded: the log says more";
}

void Loading::Say(const std::string &path, const std::string &fault) {
    // A link of a temporary root stands for the file that was named.
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    const std::string line = mHost.Shown((error ? path : real.string()) + ": " + fault);
    if (!mSaid.insert(line).second)
        return;
    if (mNotify)
        mNotify(error ? path : real.string(), fault);
    std::fflush(stdout);
    std::fprintf(stderr, "avsk: %s\n", line.c_str());
}

} // namespace host
