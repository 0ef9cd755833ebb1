// Terrain probes, which look straight down and up from a point.
#ifndef AVSK_HOST_SERVICES_PROBES_H
#define AVSK_HOST_SERVICES_PROBES_H

#include <memory>
#include <vector>

namespace host {

struct Probe {};

class Probes {
  public:
    // A probe lives as long as the process: the interface has no call that frees
    // one, and the library uses it again, also after a restart with another simulator.
    static Probe *Create();
    static bool Known(const void *probe);
    static std::size_t Count() { return All().size(); }

  private:
    static std::vector<std::unique_ptr<Probe>> &All();
};

} // namespace host

#endif
