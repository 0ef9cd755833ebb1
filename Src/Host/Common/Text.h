// Helpers for texts and paths that the host's services receive and return.
#ifndef AVSK_HOST_COMMON_TEXT_H
#define AVSK_HOST_COMMON_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace host {

// Copies a text into a buffer of a plugin: truncated to fit, always terminated. A null buffer is ignored.
inline void CopyText(char *out, std::size_t room, std::string_view text) {
    if (!out)
        return;
    const std::size_t length = std::min(text.size(), room - 1);
    std::memcpy(out, text.data(), length);
    out[length] = '\0';
}

// Plugins name files by an absolute path or relative to the simulator's folder, never to the working folder.
inline std::string ResolvePath(std::string_view root, std::string_view path) {
    std::string resolved(path.starts_with('/') ? std::string_view() : root);
    return resolved.append(path);
}

} // namespace host

#endif
