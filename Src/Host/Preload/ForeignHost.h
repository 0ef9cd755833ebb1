// A host of which nothing is known but its calls.
#ifndef AVSK_HOST_PRELOAD_FOREIGN_HOST_H
#define AVSK_HOST_PRELOAD_FOREIGN_HOST_H

#include "Crossings/Crossing.h"
#include "Observing/ObservedHost.h"

#include <map>
#include <string>

namespace host {

// Counts the frames by the events that the host reports, and learns names and paths
// from services that the library calls. It calls no service itself: the host would
// notice. To be made before the observers that use it.
class ForeignHost : public ObservedHost, public crossings::Observer {
  public:
    ForeignHost();
    ~ForeignHost() override;
    ForeignHost(const ForeignHost &) = delete;
    ForeignHost &operator=(const ForeignHost &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    const int &Frame() const override { return mFrame; }
    std::string CommandName(const void *command) const override;
    // The names that begin with "sim/" are the host's.
    bool HasCommand(const std::string &name) const override;
    std::string Root() const override { return mRoot; }
    std::string AircraftModel() const override { return mAircraftModel; }

  private:
    int mFrame = 0;
    std::string mRoot;
    std::string mAircraftModel;
    std::map<const void *, std::string> mCommands;
};

} // namespace host

#endif
