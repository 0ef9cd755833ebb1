// The values that the simulator publishes as plugin 0.
#ifndef AVSK_HOST_SERVICES_DATAREFS_H
#define AVSK_HOST_SERVICES_DATAREFS_H

#include <array>
#include <string>

namespace host {

struct Simulator;

class Datarefs {
  public:
    // Registers all of them. Called before the library is started, so that it
    // and the first plugin find them. The simulator must stay where it is.
    void Publish(Simulator &simulator);

    // When the library was built, as it says itself; empty if it did not.
    std::string Build() const;

  private:
    std::array<char, 64> mBuild{};

    static int ReadBuild(void *refcon, void *bytes, int offset, int max);
    static void WriteBuild(void *refcon, void *bytes, int offset, int count);
};

} // namespace host

#endif
