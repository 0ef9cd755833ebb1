// Shared by Ping and Pong: signatures, message numbers and the type of the
// parameter. Plugins that exchange messages share a header like this one.
#pragma once

namespace messenger {

inline constexpr const char *kPingSignature = "aerivo.samples.ping";
inline constexpr const char *kPongSignature = "aerivo.samples.pong";

// Sender and receiver choose the numbers; 101 to 108 belong to the simulator.
enum Message {
    kServe = 2001,
    kReturn = 2002
};

// Plain data only: the plugins may be built by different compilers.
struct Ball {
    int rally;
    float servedAt;
};

} // namespace messenger
