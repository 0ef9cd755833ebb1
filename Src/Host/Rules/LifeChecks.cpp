// The checks of a plugin's life; see LifeChecks.h. Owns the queue of calls on other
// threads, which are found while the main thread may do anything.
#include "LifeChecks.h"

#include "HostOrderChecks.h"
#include "LifeRules.h"

#include "Crossings/Callback.h"
#include "Elf/StayingFiles.h"
#include "Observing/Backtrace.h"
#include "Observing/Ledger.h"
#include "Observing/Thrown.h"

#include "AVSK/AVSKPlugins.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace host {
namespace {

namespace fs = std::filesystem;

using crossings::Crossing;
using crossings::Side;
using Descriptors = LifeChecks::Descriptors;

// ---- Calls on other threads

struct ForeignCall {
    std::string file;
    std::string source;
    bool isReady = false; // the source line is known
    long count = 0;       // since it was taken last
};
using ForeignKey = std::pair<const crossings::Prototype *, const void *>; // and the caller's address

std::mutex gForeignMutex;
std::map<ForeignKey, ForeignCall> &gForeign = *new std::map<ForeignKey, ForeignCall>;
std::atomic<bool> gHasForeign = false;

// The lines of a file that lead to the present call, the innermost first:
// "Radio.cpp:12, called from Radio.cpp:40". Empty without debug information.
std::string StackIn(const std::string &file) {
    constexpr int kMost = 5;
    std::string stack;
    int lines = 0;
    for (void *address : ReturnAddressesIn(file)) {
        const std::string line = lines < kMost ? SourceLineOf(address) : "";
        if (line.empty())
            continue;
        ++lines;
        stack += (stack.empty() ? "" : ", called from ") + line;
    }
    return stack;
}

// The source lines are looked up without the lock, for which the main thread may wait.
void NoteForeignCall(const crossings::Prototype &function) {
    const std::string_view name = function.name;
    if (name == "AVSKAllocTLS" || name == "AVSKGetTLS" || name == "AVSKSetTLS" || NoteHookOnThread(function))
        return;
    const Caller caller = CallerOfProgram();
    if (!caller.file)
        return;
    const std::string file = caller.file;
    const ForeignKey key{&function, caller.address};
    {
        const std::lock_guard lock(gForeignMutex);
        const auto [call, isNew] = gForeign.try_emplace(key);
        ++call->second.count;
        if (!isNew) {
            gHasForeign = gHasForeign || call->second.isReady;
            return;
        }
        call->second.file = file;
    }
    const std::string source = StackIn(file);
    const std::lock_guard lock(gForeignMutex);
    ForeignCall &call = gForeign[key];
    call.source = source;
    call.isReady = true;
    gHasForeign = true;
}

// ---- The process

Descriptors OpenDescriptors() {
    Descriptors open;
    std::error_code error;
    for (fs::directory_iterator entry("/proc/self/fd", error), end; !error && entry != end; entry.increment(error)) {
        std::error_code gone; // the iterator's own
        const std::string target = fs::read_symlink(entry->path(), gone).string();
        if (!gone && !target.starts_with("/proc/"))
            open[std::atoi(entry->path().filename().c_str())] = target;
    }
    return open;
}

bool Contains(const Descriptors &descriptors, const Descriptors::value_type &one) {
    const auto found = descriptors.find(one.first);
    return found != descriptors.end() && found->second == one.second;
}

std::set<std::string> Threads() {
    std::set<std::string> threads;
    std::error_code error;
    for (fs::directory_iterator task("/proc/self/task", error), end; !error && task != end; task.increment(error))
        threads.insert(task->path().filename());
    return threads;
}

// Why a file is mapped although nothing should need it; empty if it is not mapped.
std::string ReasonToStay(const std::string &path) {
    const fs::path file = path;
    const std::string begin = file.filename().string() + " is still mapped";
    for (const std::string &line : DescribeStayingFiles((file.parent_path() / "").string())) {
        if (line.starts_with(begin))
            return line.substr(line.find(": ") + 2);
    }
    return "";
}

std::string Resolved(const std::string &path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? path : real.string();
}

std::string FileOf(const Crossing &entryPoint) {
    const char *file = FileAt(reinterpret_cast<const void *>(entryPoint.callback->function));
    return file ? file : "";
}

std::string PathOf(AVSKPluginID plugin) {
    std::array<char, AVSK_TEXT_SIZE> path{};
    AVSKGetPluginInfo(plugin, nullptr, path.data(), nullptr, nullptr);
    return path.data();
}

} // namespace

LifeChecks::LifeChecks(Findings &findings, const Ledger &owners) : mFindings(findings), mOwners(owners) {
    crossings::AddObserver(*this);
    crossings::AddForeignHandler(NoteForeignCall);
}

LifeChecks::~LifeChecks() {
    crossings::RemoveForeignHandler(NoteForeignCall);
    crossings::RemoveObserver(*this);
}

void LifeChecks::Begins(const Crossing &crossing) {
    mPasses = false;
    TakeForeign();
    // The library does not call its own exported names, so it is loading or unloading a file.
    if (crossing.from == Side::Library && crossing.to == Side::Library)
        CheckStray(crossing);
    if (crossing.IsEntryPoint())
        BeginEntryPoint(crossing);
}

void LifeChecks::Ends(const Crossing &crossing) {
    TakeForeign();
    if (crossing.IsEntryPoint())
        EndEntryPoint(crossing);
    if (!crossing.returned && !mPasses && crossing.to == Side::Plugin)
        CheckException(crossing);
    mPasses = !crossing.returned;
    mHasThrown = mHasThrown || mPasses;
}

void LifeChecks::CheckStray(const Crossing &crossing) {
    if (std::string_view(crossing.what.name).ends_with("TLS"))
        return;
    const Caller caller = CallerOfProgram();
    if (!caller.file)
        return;
    std::array<char, AVSK_TEXT_SIZE> signature{};
    AVSKGetPluginInfo(crossing.dispatched, nullptr, nullptr, signature.data(), nullptr);
    // While it is being loaded, its record has no signature yet.
    const std::string path = PathOf(crossing.dispatched);
    const bool isLoading = crossing.dispatched > AVSK_PLUGIN_AERIVO && !signature.front() && path != mRefused;
    const auto label = mLabels.find(caller.file);
    Finding finding = mFindings.Make(
        isLoading ? Named(kLifeRules, "call-constructor") : Named(kLifeRules, "call-destructor"), crossing);
    finding.plugin = !isLoading && label != mLabels.end() ? label->second
                     : path.empty()                       ? caller.file
                                                          : crossings::LabelOf(crossing.dispatched);
    finding.callback.clear();
    finding.source = SourceLineOf(caller.address);
    mFindings.Add(std::move(finding));
}

void LifeChecks::TakeForeign() {
    if (!gHasForeign.exchange(false))
        return;
    const std::lock_guard lock(gForeignMutex);
    for (auto &[key, call] : gForeign) {
        if (!call.isReady || call.count == 0)
            continue;
        const AVSKPluginID plugin = AVSKFindPluginByPath(call.file.c_str());
        const auto known = mLabels.find(call.file);
        Finding finding;
        finding.plugin = known != mLabels.end() ? known->second : plugin > 0 ? crossings::LabelOf(plugin) : call.file;
        finding.function = key.first->name;
        finding.Become(Named(kLifeRules, "call-thread"), {});
        finding.source = call.source;
        finding.frame = mFindings.Frame();
        finding.count = std::exchange(call.count, 0);
        mFindings.Add(std::move(finding));
    }
}

void LifeChecks::Finish() {
    gHasForeign = true;
    TakeForeign();
    if (mHasThrown) // the library keeps files to which exceptions may belong
        return;
    for (const auto &[path, label] : mUnloaded) {
        if (const std::string reason = ReasonToStay(path); !reason.empty())
            mFindings.Add(Named(kLifeRules, "left-mapped"), label, {{"reason", reason}});
    }
}

// ---- Entry points

void LifeChecks::BeginEntryPoint(const Crossing &crossing) {
    mOpen.push_back(OpenDescriptors());
    if (!crossing.IsStart())
        return;
    Plugin &plugin = mPlugins[crossing.plugin] = {};
    plugin.label = crossings::LabelOf(crossing.plugin);
    plugin.file = FileOf(crossing);
    plugin.before = mOpen.back();
    plugin.threads = Threads();
}

void LifeChecks::EndEntryPoint(const Crossing &crossing) {
    const Descriptors before = std::move(mOpen.back());
    mOpen.pop_back();
    const Descriptors now = OpenDescriptors();
    Plugin &plugin = mPlugins[crossing.plugin];
    for (const auto &one : now) {
        if (Contains(before, one))
            continue;
        plugin.own.insert(one);
        // Not of the entry points around this one.
        for (Descriptors &open : mOpen)
            open.insert(one);
    }
    if (crossing.IsStart())
        EndStart(crossing);
    if (std::string_view(crossing.what.name) == "AVPluginStop") {
        CheckLeft(crossing);
        CheckDescriptors(crossing, plugin);
        CheckThreads(crossing, plugin);
    }
}

void LifeChecks::EndStart(const Crossing &crossing) {
    const Plugin &plugin = mPlugins[crossing.plugin];
    const std::string &label = crossings::LabelOf(crossing.plugin);
    mFindings.Rename(plugin.label, label);
    mLabels[plugin.file] = label;
    mRefused = crossing.returned && crossing.result.integer == 0 ? plugin.file : "";
    if (!crossing.returned || crossing.result.integer == 0)
        return;
    mUnloaded[Resolved(plugin.file)] = label;
    const auto *given = static_cast<const char *>(crossing["outSignature"].pointer);
    const std::string signature(given, strnlen(given, AVSK_TEXT_SIZE - 1));
    if (signature.empty())
        return mFindings.Add(Named(kLifeRules, "start-signature"), crossing);
    const AVSKPluginID owner = AVSKFindPluginBySignature(signature.c_str());
    if (owner != NO_PLUGIN_ID)
        mFindings.Add(Named(kLifeRules, "start-duplicate"), crossing,
                      {{"signature", Quoted(signature)}, {"owner", crossings::LabelOf(owner)}});
}

// ---- What is left

void LifeChecks::CheckLeft(const Crossing &stop) {
    std::map<std::string, int> counts;
    for (const Possession &left : mOwners.LeftByLast()) {
        if (left.kind == Kind::Button)
            mFindings.Add(Named(kLifeRules, "left-pressed"), stop, {{"button", left.what}});
        else
            ++counts[TraitsOf(left.kind).word];
    }
    std::string things;
    for (const auto &[word, count] : counts)
        things += (things.empty() ? "" : ", ") + std::to_string(count) + " " + word + (count == 1 ? "" : "s");
    if (!things.empty())
        mFindings.Add(Named(kLifeRules, "left-behind"), stop, {{"things", things}});
}

void LifeChecks::CheckDescriptors(const Crossing &stop, const Plugin &plugin) {
    // Only if no other plugin was there, a descriptor that appeared outside of entry points is its own.
    const bool isAlone = mLabels.size() == 1;
    for (const auto &one : OpenDescriptors()) {
        if (!Contains(plugin.before, one) && (isAlone || Contains(plugin.own, one)))
            mFindings.Add(Named(kLifeRules, "left-descriptor"), stop, {{"target", Quoted(one.second)}});
    }
}

void LifeChecks::CheckThreads(const Crossing &stop, const Plugin &plugin) {
    // A thread that was joined is listed a little longer.
    constexpr int kTries = 20;
    for (int i = 0; i < kTries; ++i) {
        std::set<std::string> threads = Threads();
        std::erase_if(threads, [&plugin](const std::string &thread) { return plugin.threads.contains(thread); });
        if (threads.empty())
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    // The threads may be the host's own, such as those of OpenGL.
    const std::string file = Resolved(plugin.file);
    const std::string number = ThreadInFile(file);
    // A file that stays mapped for another reason does no harm to its threads.
    if (number.empty() || plugin.threads.contains(number) || !ReasonToStay(file).starts_with("thread "))
        return;
    std::string name;
    std::getline(std::ifstream("/proc/self/task/" + number + "/comm"), name);
    mFindings.Add(Named(kLifeRules, "left-thread"), stop, {{"name", Quoted(name)}});
}

// ---- Exceptions

void LifeChecks::CheckException(const Crossing &crossing) {
    Finding finding =
        mFindings.Make(Named(kLifeRules, "exception-left"), crossing,
                       {{"type", crossing.thrownType ? TypeName(*crossing.thrownType) : "another language"}});
    const void *address =
        ThrowingAddress(crossing.thrown, FileAt(reinterpret_cast<const void *>(crossing.callback->function)));
    if (address)
        finding.source = SourceLineOf(address);
    mFindings.Add(std::move(finding));
}

} // namespace host
