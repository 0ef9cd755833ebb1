// Notices that a plugin or the session has changed, and can be loaded.
#ifndef AVSK_HOST_LIVE_REBUILDS_H
#define AVSK_HOST_LIVE_REBUILDS_H

#include "Events.h"

#include "Watching/FileWatch.h"
#include "Watching/Watch.h"

#include <functional>
#include <string>
#include <vector>

namespace host {

class Rebuilds {
  public:
    // Calls with a line such as "Menu/lin.avp was rebuilt". Throws UsageError.
    Rebuilds(Events &events, const WatchRequest &request, std::function<void(const std::string &)> call);

  private:
    void Await();
    void AwaitQuiet();
    void Look();
    void TellFaults(const std::vector<std::string> &faults);

    const WatchRequest &mRequest;
    const std::function<void(const std::string &)> mCall;
    FileWatch mFiles;
    Descriptor mChanges;
    Timer mQuiet;
    int mWaits = 0;                       // for a writer, since the last change
    std::vector<std::string> mChanged;    // since the last call
    std::vector<std::string> mToldFaults; // why it cannot be loaded yet
};

} // namespace host

#endif
