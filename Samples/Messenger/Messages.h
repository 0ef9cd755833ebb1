// What Ping and Pong agree on: signatures, message numbers and what the
// parameter points to. Two plugins that talk share a header like this one.
#pragma once

namespace messenger {

inline constexpr const char *kPingSignature = "aerivo.samples.ping";
inline constexpr const char *kPongSignature = "aerivo.samples.pong";

// Numbers are a matter between sender and receiver; 101 to 108 are the simulator's.
enum Message {
    kServe = 2001,
    kReturn = 2002
};

// Plain data only: the two plugins may come from different compilers.
struct Ball {
    int rally;
    float servedAt;
};

} // namespace messenger
