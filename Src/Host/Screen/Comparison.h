// Compares two pictures of one size.
#ifndef AVSK_HOST_SCREEN_COMPARISON_H
#define AVSK_HOST_SCREEN_COMPARISON_H

#include "Image.h"

namespace host {

struct Comparison {
    int different = 0; // pixels with a colour channel that differs by more than was allowed
    int greatest = 0;  // difference of a channel, of 255
    Image marked;      // the second picture, dark, with these pixels bright
};

Comparison Compare(const Image &wanted, const Image &seen, int allowed);

} // namespace host

#endif
