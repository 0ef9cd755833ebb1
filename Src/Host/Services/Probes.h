// Terrain probes, which look straight down and up from a point.
#ifndef AVSK_HOST_SERVICES_PROBES_H
#define AVSK_HOST_SERVICES_PROBES_H

#include <memory>
#include <vector>

namespace host {

struct Probe {};

class Probes {
  public:
    // A probe lives as long as the host: the interface has no call that frees one.
    Probe *Create();
    bool Known(const void *probe) const;
    std::size_t Count() const { return mProbes.size(); }

  private:
    std::vector<std::unique_ptr<Probe>> mProbes;
};

} // namespace host

#endif
