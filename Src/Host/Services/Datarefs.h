// The values that the simulator publishes as plugin 0.
#ifndef AVSK_HOST_SERVICES_DATAREFS_H
#define AVSK_HOST_SERVICES_DATAREFS_H

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace host {

struct Simulator;

struct DatarefDescription {
    const char *unit;
    const char *meaning;
};

class Datarefs {
  public:
    // Registers all of them, before the library is started, so that the library
    // and the first plugin find them. The simulator must not move.
    void Publish(Simulator &simulator);
    // Unregisters those of an earlier simulator of this process, if there was one.
    static void Withdraw();

    // Describes a dataref of the simulator; null for any other name.
    static const DatarefDescription *Describe(std::string_view name);

    // The build date that the library writes; empty if it wrote none.
    std::string Build() const;

  private:
    struct Row;
    static std::span<const Row> Rows();

    std::array<char, 64> mBuild{};

    static int ReadBuild(void *refcon, void *bytes, int offset, int max);
    static void WriteBuild(void *refcon, void *bytes, int offset, int count);
};

} // namespace host

#endif
