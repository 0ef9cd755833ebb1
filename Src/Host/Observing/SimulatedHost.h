// The reference host's simulator, as observers see it.
#ifndef AVSK_HOST_OBSERVING_SIMULATED_HOST_H
#define AVSK_HOST_OBSERVING_SIMULATED_HOST_H

#include "ObservedHost.h"

namespace host {

struct Simulator;

class SimulatedHost : public ObservedHost {
  public:
    // The simulator must outlive it.
    explicit SimulatedHost(const Simulator &simulator);

    const int &Frame() const override;
    std::string CommandName(const void *command) const override;
    bool HasCommand(const std::string &name) const override;
    std::string Root() const override;
    std::string AircraftModel() const override;
    std::string Shown(std::string_view text) const override;
    std::string LogFault() const override;

  private:
    const Simulator &mSimulator;
};

} // namespace host

#endif
