// The simulator's process of `avsk live`; see LiveOptions.h.
#include "LiveOptions.h"

#include "Channel.h"

#include "Services/Simulator.h"
#include "Session/RunSession.h"
#include "Session/Runner.h"

#include <chrono>
#include <string>
#include <utility>

#include <poll.h>

namespace host {

int LiveSimulate(SessionOptions options, const LiveOptions &live, int channel) {
    Channel server(channel);
    SessionRunner run(std::move(options));
    run.ForSetUp().aircraft = live.aircraft;
    run.Start();
    server.Send(MessageKind::Json, R"({"topic":"hello","protocol":1})");
    for (int frame = 0; server.IsOpen(); ++frame) {
        pollfd wait{server.Descriptor(), POLLIN, 0};
        poll(&wait, 1, 16);
        server.Receive();
        run.RunFrames(1);
        if (frame % 6 == 0)
            server.Send(MessageKind::Json, R"({"topic":"simulator","frame":)" + std::to_string(frame) + "}");
    }
    return run.Finish();
}

} // namespace host
