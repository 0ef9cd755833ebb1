// Pictures as PNG files.
#ifndef AVSK_HOST_SCREEN_PNG_FILE_H
#define AVSK_HOST_SCREEN_PNG_FILE_H

#include "Image.h"

#include <string>

namespace host {

// Writes the colours without alpha. Throws std::runtime_error.
void WritePng(const Image &image, const std::string &file);

} // namespace host

#endif
