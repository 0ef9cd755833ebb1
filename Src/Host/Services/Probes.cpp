// The services for terrain probes. A hit writes three triples and a flag: the
// point on the ground below or above the given one, in local metres; the normal
// of the ground, of length 1; its velocity, which is zero; and 0 for dry ground.
// A point outside the terrain is a miss and writes nothing.
#include "Probes.h"

#include "ServiceTable.h"
#include "Simulator.h"
#include "World/Terrain.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

void *CreateProbe() { return Enter().probes.Create(); }

void StoreTriple(float *out, double x, double y, double z) {
    if (!out)
        return;
    out[0] = static_cast<float>(x);
    out[1] = static_cast<float>(y);
    out[2] = static_cast<float>(z);
}

int ProbeTerrain(void *probe, const float *xyz, float *location, float *normal, float *velocity, int *wet) {
    const Simulator &simulator = Enter();
    if (!simulator.probes.Known(probe) || !xyz || !std::isfinite(xyz[1]) || !IsOverTerrain(xyz[0], xyz[2]))
        return 0;
    const Ground ground = GroundAt(xyz[0], xyz[2]);
    const double length = std::hypot(ground.slopeX, 1, ground.slopeZ);
    StoreTriple(location, xyz[0], ground.height, xyz[2]);
    StoreTriple(normal, -ground.slopeX / length, 1 / length, -ground.slopeZ / length);
    StoreTriple(velocity, 0, 0, 0);
    Store(wet, 0);
    return 1;
}

} // namespace

Probe *Probes::Create() {
    All().push_back(std::make_unique<Probe>());
    return All().back().get();
}

std::vector<std::unique_ptr<Probe>> &Probes::All() {
    static auto &probes = *new std::vector<std::unique_ptr<Probe>>;
    return probes;
}

bool Probes::Known(const void *probe) {
    return std::any_of(All().begin(), All().end(), [probe](const auto &known) { return known.get() == probe; });
}

void FillProbeSlots(AVSKHostCallbacks &table) {
    table.createProbe = CreateProbe;
    table.probeTerrain = ProbeTerrain;
}

} // namespace host
