// Shared by the two plugins: the name, type and meaning of the value.
#pragma once

namespace shared {

// A float array: the time of the first write in seconds, then one value per later write.
inline constexpr const char *kName = "aerivo/samples/shared";

} // namespace shared
