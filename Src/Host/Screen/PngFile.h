// Pictures as PNG files.
#ifndef AVSK_HOST_SCREEN_PNG_FILE_H
#define AVSK_HOST_SCREEN_PNG_FILE_H

#include "Image.h"

#include <string>

namespace host {

// Writes the colours without alpha. The file is replaced when all is written. Throws std::runtime_error.
void WritePng(const Image &image, const std::string &file);

// Throws std::runtime_error if the file cannot be read or is no PNG file.
Image ReadPng(const std::string &file);

} // namespace host

#endif
