// The report of a run. Called by SimpleRun.cpp.
#ifndef AVSK_HOST_OBSERVING_REPORT_H
#define AVSK_HOST_OBSERVING_REPORT_H

namespace host {

class Profile;
struct Simulator;

// Prints two lines about the run and the table of plugins, which must still be loaded.
void PrintReport(const Simulator &simulator, const Profile &times);

} // namespace host

#endif
