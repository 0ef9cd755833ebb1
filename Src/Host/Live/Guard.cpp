// Checks of requests; see Guard.h. Called by the server for each request, and by
// its clients for each message.
#include "Guard.h"

#include "Common/UsageError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include <sys/random.h>

namespace host {

Guard::Guard(int port) {
    constexpr std::size_t kTokenBytes = 16;
    std::array<unsigned char, kTokenBytes> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw UsageError(std::string("live: the system gives no random numbers (") + std::strerror(errno) + ")");
    for (const unsigned char byte : bytes) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        mToken += kDigits[byte >> 4];
        mToken += kDigits[byte & 0xf];
    }
    constexpr int kPortThatBrowsersLeaveOut = 80;
    for (const std::string name : {"127.0.0.1", "localhost"}) {
        mHosts.push_back(name + ":" + std::to_string(port));
        if (port == kPortThatBrowsersLeaveOut)
            mHosts.push_back(name);
    }
}

bool Guard::IsToken(std::string_view text) const {
    unsigned difference = text.size() == mToken.size() ? 0 : 1;
    for (std::size_t i = 0; i < mToken.size(); ++i)
        difference |= static_cast<unsigned char>(mToken[i] ^ (i < text.size() ? text[i] : '\0'));
    return difference == 0;
}

bool Guard::IsHost(std::string_view host) const {
    return std::find(mHosts.begin(), mHosts.end(), host) != mHosts.end();
}

bool Guard::IsOrigin(std::string_view origin) const {
    constexpr std::string_view kScheme = "http://";
    return origin.starts_with(kScheme) && IsHost(origin.substr(kScheme.size()));
}

bool Rate::Allows(std::chrono::steady_clock::time_point now) {
    constexpr double kASecond = 400;
    constexpr double kSeconds = 2;
    const double passed = std::chrono::duration<double>(now - mLast).count();
    mLevel = std::max(0.0, mLevel - passed * kASecond) + 1;
    mLast = now;
    return mLevel <= kASecond * kSeconds;
}

} // namespace host
