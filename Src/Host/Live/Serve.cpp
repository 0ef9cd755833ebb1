// `avsk live`: starts the server and the simulator's process; see LiveOptions.h.
#include "LiveOptions.h"

#include "Browser.h"
#include "Hub.h"
#include "Rebuilds.h"
#include "Server.h"

#include "Common/Text.h"
#include "Common/UsageError.h"
#include "Watching/Plan.h"
#include "Watching/Watch.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <utility>

namespace host {
namespace {

// Finds what is wrong before anything is started. Throws UsageError.
void CheckRequest(const WatchRequest &request) {
    if (request.options.file.empty() && request.options.plugins.empty()) {
        SimulatorOptions folders = request.options.simulator;
        CheckFolders(folders, request.aircraft);
    }
    if (const Plan plan = MakePlan(request); !plan.faults.empty())
        throw UsageError(Join(plan.faults, "\n"));
}

} // namespace

int LiveServe(const SessionOptions &options, const LiveOptions &live) {
    constexpr std::chrono::seconds kPatience(3);
    const WatchRequest request{options, live.aircraft, {}};
    CheckRequest(request);
    std::signal(SIGPIPE, SIG_IGN); // the page works if nobody reads the output
    int status = 0;
    RoundFolders folders;
    Events events;
    std::optional<Server> server;
    bool isAnnounced = false;
    const auto announce = [&] {
        if (std::exchange(isAnnounced, true))
            return;
        PrintAddress(server->Address(), server->Port());
        if (live.opensBrowser)
            OpenBrowser(server->Address(), folders.Path());
    };
    const auto giveUp = [&](const SimulatorEnd &end) {
        constexpr int kWrongRequest = 2;
        if (end.status != kWrongRequest)
            return announce();
        status = kWrongRequest; // the simulator has printed the reason
        events.Stop();
    };
    Hub hub(events, live, folders, {announce, giveUp, [&] { events.Stop(); }});
    server.emplace(events, live.port,
                   Server::Calls{[&] { return hub.HasRoom(); }, [&](Upgrade &upgrade) { hub.Add(upgrade); }});
    std::optional<Rebuilds> rebuilds;
    if (live.watch)
        rebuilds.emplace(events, request, [&](const std::string &why) { hub.Restart(why); });
    events.OnEndSignal([&] { hub.End(); });
    hub.Start();
    Timer patience(events); // a plugin may not return from its first call
    patience.Start(kPatience, announce);
    events.Run();
    return status;
}

} // namespace host
