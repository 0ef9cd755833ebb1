// What the two plugins agree on: the name, type and meaning of the shared value.
#pragma once

namespace shared {

// A float array: seconds at which it was written, then what became of it since.
inline constexpr const char *kName = "aerivo/samples/shared";

} // namespace shared
