// What it costs to observe a call, with the observers of each option of avsk. The
// other side makes the same calls past the layer, in a process of its own.
#include "Counters.h"
#include "FakeHost.h"
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKProcessing.h"
#include "Crossings/RealSymbols.h"
#include "Observing/Blame.h"
#include "Observing/HandleBook.h"
#include "Observing/Ledger.h"
#include "Observing/Loading.h"
#include "Observing/ObservedHost.h"
#include "Observing/Profile.h"
#include "Observing/Trace.h"
#include "Rules/Checker.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>

namespace {

constexpr AVSKPluginID kPlugin = 1;
constexpr unsigned kCalls = 1000;
constexpr int kPhase = 5;
constexpr int kDrawCode = 2; // before that phase
constexpr const char *kName = "sim/flightmodel/position/elevation";

// ---- The library, through the layer or past it

struct Interface {
    decltype(&AVSKInitializePlugins) initialise;
    decltype(&AVSKSendMessageToPlugin) send;
    decltype(&AVSKRegisterDataAccessor) registerDataref;
    decltype(&AVSKGetDatai) read;
    decltype(&AVSKFindDataRef) find;
    decltype(&AVSKRegisterDrawCallback) registerDraw;
    decltype(&AVSKDoDrawingHook) draw;
    decltype(&AVSKGetElapsedTime) serve;
};

const Interface kObserved = {AVSKInitializePlugins, AVSKSendMessageToPlugin, AVSKRegisterDataAccessor,
                             AVSKGetDatai,          AVSKFindDataRef,         AVSKRegisterDrawCallback,
                             AVSKDoDrawingHook,     AVSKGetElapsedTime};

template <class F>
void MakeBare(F &function, const char *name) {
    function = reinterpret_cast<F>(crossings::NextSymbol(name));
}

Interface Bare() {
    Interface bare{};
    MakeBare(bare.initialise, "AVSKInitializePlugins");
    MakeBare(bare.send, "AVSKSendMessageToPlugin");
    MakeBare(bare.registerDataref, "AVSKRegisterDataAccessor");
    MakeBare(bare.read, "AVSKGetDatai");
    MakeBare(bare.find, "AVSKFindDataRef");
    MakeBare(bare.registerDraw, "AVSKRegisterDrawCallback");
    MakeBare(bare.draw, "AVSKDoDrawingHook");
    MakeBare(bare.serve, "AVSKGetElapsedTime");
    return bare;
}

int ReadOne(void *refcon) { return *static_cast<int *>(refcon); }

int CountDraw(int /*phase*/, int /*isBefore*/, void *refcon) {
    Count(refcon);
    return 1;
}

// One plugin with a dataref and draw callbacks. Never destroyed: the process ends with _exit().
class Library {
  public:
    explicit Library(const Interface &used) : calls(used), mFolder(1) {
        mTable.getElapsedTime = [] { return 1.0F; };
        calls.initialise(mFolder.Root().c_str(), &mTable, 0);
        AsPlugin([this] {
            dataref =
                calls.registerDataref(kName, AVSKDataTypeInt, 0, ReadOne, nullptr, nullptr, nullptr, nullptr, nullptr,
                                      nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &mOne, nullptr);
            for (unsigned i = 0; i < kCalls; ++i)
                calls.registerDraw(CountDraw, kPhase, 1, &mDraws[i]);
        });
    }

    template <class Function>
    void AsPlugin(Function function) const {
        BenchTask task = {[](void *argument) { (*static_cast<Function *>(argument))(); }, &function};
        calls.send(kPlugin, kBenchRun, &task);
    }

    std::uint64_t Counted() const { return count + Sum(mDraws); }

    const Interface calls;
    AVSKDataRef dataref = nullptr;
    std::uint64_t count = 0; // of the calls that the plugin made

  private:
    PluginFolder mFolder;
    AVSKHostCallbacks mTable = FakeHostTable();
    int mOne = 1;
    Counters mDraws = Counters(kCalls);
};

// ---- The calls

struct Work {
    const char *name;
    int calls; // that are observed each time
    void (*batch)(Library &library);
};

// A thousand times the same call in the plugin's code.
template <class Call>
void Repeat(Library &library, Call call) {
    library.AsPlugin([&library, call] {
        for (unsigned i = 0; i < kCalls; ++i)
            library.count += static_cast<unsigned>(call(library));
    });
}

constexpr Work kWork[] = {
    {"AVSKGetDatai", 2, [](Library &l) { Repeat(l, [](Library &k) { return k.calls.read(k.dataref); }); }},
    {"AVSKFindDataRef", 1, [](Library &l) { Repeat(l, [](Library &k) { return k.calls.find(kName) ? 1 : 0; }); }},
    {"draw callback", 1, [](Library &l) { l.calls.draw(kDrawCode, 0); }},
    {"AVSKGetElapsedTime", 2, [](Library &l) { Repeat(l, [](Library &k) { return k.calls.serve(); }); }},
};

Side MakeSide(const Interface &used, const Work &work) {
    auto &library = *new Library(used);
    return Side::Here(
        kCalls, [&library, &work] { work.batch(library); }, [&library] { return library.Counted(); });
}

// ---- The observers

struct Host : host::ObservedHost {
    const int &Frame() const override {
        static const int frame = 1;
        return frame;
    }
    std::string CommandName(const void * /*command*/) const override { return ""; }
    bool HasCommand(const std::string & /*name*/) const override { return false; }
    std::string Root() const override { return "/"; }
    std::string AircraftModel() const override { return ""; }
};

enum Option : unsigned {
    kBlame = 1,
    kOwners = 2,
    kProfile = 4,
    kBudget = 8,
    kTimeout = 16,
    kCheck = 32,
    kTrace = 64,
    kJson = 128,
};

constexpr unsigned kAll = kBlame | kOwners | kProfile | kBudget | kTimeout;

constexpr const char *NameOf(unsigned options) {
    switch (options) {
    case 0:
        return "unobserved";
    case kBlame:
        return "blame";
    case kBlame | kOwners:
        return "--ps";
    case kBlame | kProfile:
        return "--profile";
    case kBlame | kBudget:
        return "--budget";
    case kBlame | kTimeout:
        return "--timeout";
    case kAll:
        return "all of these";
    case kBlame | kCheck:
        return "--check";
    case kBlame | kTrace:
        return "--trace";
    case kBlame | kJson:
        return "--trace, JSON";
    default:
        return "--trace and all of these";
    }
}

struct Observing {
    explicit Observing(unsigned options) {
        if (options == 0)
            return;
        handles.emplace();
        blame.emplace(bench.Frame(), (options & kTimeout) != 0 ? 60 : 0);
        loading.emplace(bench);
        if ((options & (kOwners | kCheck)) != 0)
            owners.emplace(bench);
        if ((options & (kProfile | kBudget)) != 0)
            profile.emplace(bench, false);
        if ((options & kBudget) != 0)
            profile->SetBudget("", 1e6);
        if ((options & kCheck) != 0)
            checker.emplace(bench.Frame(), *owners, std::map<std::string, std::string>());
        if ((options & (kTrace | kJson)) == 0)
            return;
        const char *folder = std::getenv("TMPDIR");
        const std::string file = std::string(folder && *folder ? folder : "/tmp") + "/avsk_observed_bench." +
                                 std::to_string(getpid()) + ((options & kJson) != 0 ? ".json" : ".txt");
        trace.emplace(host::TraceOptions{.file = file, .plugins = {}, .functions = {}});
        std::filesystem::remove(file);
    }

    Host bench;
    std::optional<host::HandleBook> handles;
    std::optional<host::Blame> blame;
    std::optional<host::Loading> loading;
    std::optional<host::Ledger> owners;
    std::optional<host::Profile> profile;
    std::optional<host::Checker> checker;
    std::optional<host::Trace> trace;
};

constexpr double kCallGoal = 150;
constexpr double kTraceGoal = 1000;

template <unsigned kOptions>
void Compare(Report &report) {
    constexpr double kGoal = (kOptions & kCheck) != 0             ? Report::kNoGoal
                             : (kOptions & (kTrace | kJson)) != 0 ? kTraceGoal
                                                                  : kCallGoal;
    for (const Work &work : kWork) {
        const Side bare = Side::Elsewhere(kCalls, [&work] { return MakeSide(Bare(), work); });
        const Side observed = Side::Elsewhere(kCalls, [&work] {
            new Observing(kOptions);
            return MakeSide(kObserved, work);
        });
        const std::string calls = std::string(work.name) + (work.calls > 1 ? " (two calls)" : "");
        report.Limit(calls + ", " + NameOf(kOptions) + " / past the layer", kGoal * work.calls, observed, bare);
    }
}

} // namespace

std::vector<Comparison> Comparisons() {
    return {{NameOf(0), Compare<0>},
            {NameOf(kBlame), Compare<kBlame>},
            {NameOf(kBlame | kOwners), Compare<kBlame | kOwners>},
            {NameOf(kBlame | kProfile), Compare<kBlame | kProfile>},
            {NameOf(kBlame | kBudget), Compare<kBlame | kBudget>},
            {NameOf(kBlame | kTimeout), Compare<kBlame | kTimeout>},
            {NameOf(kAll), Compare<kAll>},
            {NameOf(kBlame | kCheck), Compare<kBlame | kCheck>},
            {NameOf(kBlame | kTrace), Compare<kBlame | kTrace>},
            {NameOf(kBlame | kJson), Compare<kBlame | kJson>},
            {NameOf(kAll | kTrace), Compare<kAll | kTrace>}};
}
