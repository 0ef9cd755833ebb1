// Who may use the server: the token, and the checks of requests. A page of another
// site can make the browser send requests to this server, also under a name of that
// site's own that resolves to 127.0.0.1. So the names in Host and Origin are checked.
#ifndef AVSK_HOST_LIVE_GUARD_H
#define AVSK_HOST_LIVE_GUARD_H

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class Guard {
  public:
    // Makes a new token.
    explicit Guard(int port);

    const std::string &Token() const { return mToken; }
    // In a time that does not depend on where the texts differ.
    bool IsToken(std::string_view text) const;
    // Whether a header names this server.
    bool IsHost(std::string_view host) const;
    bool IsOrigin(std::string_view origin) const;

  private:
    std::string mToken; // hexadecimal
    std::vector<std::string> mHosts;
};

// Limits the messages of one client, over some seconds.
class Rate {
  public:
    // Counts a message. False if there are too many.
    bool Allows(std::chrono::steady_clock::time_point now);

  private:
    double mLevel = 0; // messages above the steady rate
    std::chrono::steady_clock::time_point mLast{};
};

} // namespace host

#endif
