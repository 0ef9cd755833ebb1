// The parts of the screen that changed since the last picture, as PNG files.
#ifndef AVSK_HOST_LIVE_SCREEN_CHANGES_H
#define AVSK_HOST_LIVE_SCREEN_CHANGES_H

#include "Screen/Image.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host {

class ScreenChanges {
  public:
    // The payloads of messages with the tiles that differ from those of the last
    // picture; after the start all of them. The pictures have one size.
    std::vector<std::string> Update(const Image &image, int frame);

  private:
    Image mSent;
    std::uint32_t mVersion = 0; // of the last message
};

} // namespace host

#endif
