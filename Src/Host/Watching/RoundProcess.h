// The process in which a watch runs its rounds: it owns the library and the
// simulator, and lives until a plugin ends it.
#ifndef AVSK_HOST_WATCHING_ROUND_PROCESS_H
#define AVSK_HOST_WATCHING_ROUND_PROCESS_H

#include "Session/Round.h"

#include <csignal>
#include <string>
#include <vector>

namespace host {

struct WatchRequest;

// What is known of a round.
struct RoundResult {
    bool isComplete = false; // else the run could not begin, or its process has ended
    int status = 0;          // as `avsk run` exits; 128 and the signal's number if the process died of one
    std::vector<Check> checks;
    std::vector<std::string> staying; // see DescribeStayingFiles()
    std::string output;
};

class RoundProcess {
  public:
    // The signals are those that the process is to receive.
    RoundProcess(const WatchRequest &request, const sigset_t &signals) : mRequest(request), mSignals(signals) {}
    ~RoundProcess() { Stop(); }
    RoundProcess(const RoundProcess &) = delete;
    RoundProcess &operator=(const RoundProcess &) = delete;

    // Begins a round, in a new process if there is none. The folder must exist and
    // ends in a separator.
    void Begin(const std::string &folder);
    // Each is readable if there is something for Continue(); -1 without a process.
    std::vector<int> Descriptors() const { return {mOutput, mResults, mProcess}; }
    // Reads what the process has written. True if the round is complete or the process has ended.
    bool Continue();
    // The result so far.
    RoundResult &Result() { return mResult; }
    bool IsRunning() const { return mChild > 0; }
    // Ends the process: after its round's end by itself, else at once.
    void Stop();

  private:
    void Start();
    [[noreturn]] void Serve(int commands, int results);
    void ReadOutput();
    void TakeResults();
    void CloseAll();

    const WatchRequest &mRequest;
    const sigset_t mSignals;
    RoundResult mResult;
    std::string mReceived; // of the results
    pid_t mChild = -1;
    int mProcess = -1; // its descriptor
    int mCommands = -1;
    int mOutput = -1;
    int mResults = -1;
};

} // namespace host

#endif
