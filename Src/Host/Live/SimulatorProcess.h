// The process of the simulator, seen from the server.
#ifndef AVSK_HOST_LIVE_SIMULATOR_PROCESS_H
#define AVSK_HOST_LIVE_SIMULATOR_PROCESS_H

#include "Channel.h"
#include "Events.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace host {

struct SimulatorEnd {
    int status = 0;     // of exit()
    std::string signal; // "SIGSEGV"; empty if it exited
    std::string report; // the last part of what it wrote to standard error
};

class SimulatorProcess {
  public:
    struct Calls {
        // Throws std::runtime_error if the message is not valid: the process is killed.
        std::function<void(const ChannelMessage &)> message;
        // The process is gone; it may be started again.
        std::function<void(const SimulatorEnd &)> end;
    };

    SimulatorProcess(Events &events, Calls calls);
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess &) = delete;
    SimulatorProcess &operator=(const SimulatorProcess &) = delete;

    // Starts this program with the arguments and the option --simulator, with a folder for temporary files.
    // Throws UsageError.
    void Start(const std::vector<std::string> &arguments, const std::string &temporary);
    bool IsRunning() const { return mChild > 0; }
    // False if the process has ended, or does not read.
    bool Send(std::string_view json);
    // Closes the channel, and kills the process if that does not end it soon.
    void Stop();
    void Kill();

  private:
    void AwaitMessages();
    void AwaitText(Descriptor &from, int to);
    bool ReadMessages();
    void ReadRest();
    ssize_t PassOn(Descriptor &from, int to);
    void Write();
    void OnExit();

    Events &mEvents;
    const Calls mCalls;
    pid_t mChild = -1;
    std::unique_ptr<Descriptor> mProcess;
    std::unique_ptr<Descriptor> mChannel;
    std::unique_ptr<Descriptor> mOutput;
    std::unique_ptr<Descriptor> mErrors;
    Timer mPatience;
    MessageReader mReader;
    std::string mUnsent;
    bool mIsWriting = false;
    std::string mReport;
};

} // namespace host

#endif
