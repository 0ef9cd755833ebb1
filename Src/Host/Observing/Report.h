// What is printed when the frames are done. Called by Main.cpp.
#ifndef AVSK_HOST_OBSERVING_REPORT_H
#define AVSK_HOST_OBSERVING_REPORT_H

namespace host {

class Profile;
struct Simulator;

// Two lines about the run, and the table of plugins. While they are still loaded.
void PrintReport(const Simulator &simulator, const Profile &times);

} // namespace host

#endif
