// The functions of OpenGL for observers, and the values of a call.
#ifndef AVSK_HOST_OPENGL_PROTOTYPES_H
#define AVSK_HOST_OPENGL_PROTOTYPES_H

#include "Functions.h"

#include "Crossings/Crossing.h"

#include <array>
#include <span>

namespace opengl {

// In the order of the functions' numbers. Made at the first call.
std::span<crossings::Prototype> Prototypes();
// The function of a prototype in this table.
Number NumberOf(const crossings::Prototype &prototype);

// Room for the arguments of a call. Only those that there are get a value.
union Values {
    static constexpr std::size_t kMost = 24;
    Values() {} // NOLINT(modernize-use-equals-default): it would be deleted
    std::array<crossings::Value, kMost> all;
};

// The arguments of a call, which lie in these words.
std::span<crossings::Value> ReadArguments(Values &values, const Function &function, const std::uint32_t *words);
crossings::Value ReadResult(const Function &function, std::uint64_t result);

} // namespace opengl

#endif
