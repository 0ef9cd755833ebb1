// Executes the lines that pages send, and records them.
#ifndef AVSK_HOST_LIVE_LIVE_LINES_H
#define AVSK_HOST_LIVE_LIVE_LINES_H

#include <string>

namespace host {

class Recording;
class SessionRunner;
struct Step;

struct Answer {
    bool isOk;
    std::string text; // what was printed, or why not
};

class LiveLines {
  public:
    // Both must outlive it.
    LiveLines(SessionRunner &run, Recording &recording) : mRun(run), mRecording(recording) {}

    // Executes a step of the session with which the simulator starts.
    void DoFirst(const Step &step);
    // Executes a line. It is recorded if it succeeds and if it does something.
    Answer Do(const std::string &line);
    // Runs a frame, writes its picture into the folder and records that it is expected. Throws UsageError.
    Answer Expect(const std::string &picture, bool replaces);

  private:
    void Record(const Step &step, bool hasSucceeded, int framesBefore);

    SessionRunner &mRun;
    Recording &mRecording;
};

} // namespace host

#endif
