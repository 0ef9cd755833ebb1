// The report of a run. Called by SimpleRun.cpp.
#ifndef AVSK_HOST_OBSERVING_REPORT_H
#define AVSK_HOST_OBSERVING_REPORT_H

namespace host {

class Profile;
struct Simulator;

// Prints two lines about the run and the table of plugins, which must still be
// loaded. Without the real time the text is the same in each run.
void PrintReport(const Simulator &simulator, const Profile &times, bool hasRealTime = true);

} // namespace host

#endif
