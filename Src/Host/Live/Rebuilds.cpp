// Watches the files of plugins; see Rebuilds.h. Called by `avsk live --watch`.
#include "Rebuilds.h"

#include "Elf/PluginFiles.h"
#include "Watching/Plan.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <utility>

#include <fcntl.h>

namespace host {

namespace fs = std::filesystem;

Rebuilds::Rebuilds(Events &events, const WatchRequest &request, std::function<void(const std::string &)> call)
    : mRequest(request), mCall(std::move(call)), mChanges(events, fcntl(mFiles.Descriptor(), F_DUPFD_CLOEXEC, 0)),
      mQuiet(events) {
    mFiles.Watch(MakePlan(mRequest).paths);
    mFiles.Take();
    Await();
}

void Rebuilds::Await() {
    mChanges.AwaitReadable([this] {
        if (mFiles.Read()) {
            mWaits = 0;
            AwaitQuiet();
        }
        Await();
    });
}

// A build writes several files, and a linker one file several times.
void Rebuilds::AwaitQuiet() {
    constexpr std::chrono::milliseconds kQuiet(50);
    constexpr int kMostWaits = 200;
    mQuiet.Start(kQuiet, [this] {
        if (mFiles.IsBeingWritten() && ++mWaits < kMostWaits)
            AwaitQuiet();
        else
            Look();
    });
}

void Rebuilds::TellFaults(const std::vector<std::string> &faults) {
    if (std::exchange(mToldFaults, faults) == faults)
        return;
    for (const std::string &fault : faults)
        std::fprintf(stderr, "avsk: %s\n", fault.c_str());
}

// Changed data files do not count: a plugin may have written them.
void Rebuilds::Look() {
    for (const std::string &path : mFiles.Take()) {
        if (IsCode(path) || path == mRequest.options.file)
            mChanged.push_back(path);
    }
    if (mChanged.empty())
        return;
    Plan plan = MakePlan(mRequest);
    mFiles.Watch(plan.paths);
    mFiles.Take();
    for (const std::string &path : mChanged) {
        if (IsCode(path) && fs::exists(path) && IsHalfWritten(path))
            plan.faults.push_back("'" + path + "' is not complete: it is loaded when the build has written it");
    }
    if (!plan.faults.empty())
        return TellFaults(plan.faults);
    mToldFaults.clear();
    const bool isCode = std::all_of(mChanged.begin(), mChanged.end(), IsCode);
    mCall(NamesOf(std::exchange(mChanged, {})) + (isCode ? " was rebuilt" : " was changed"));
}

} // namespace host
