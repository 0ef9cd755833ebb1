// Small helpers for the texts and paths that cross the table of services.
#ifndef AVSK_HOST_COMMON_TEXT_H
#define AVSK_HOST_COMMON_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// Copies a text into a plugin's buffer, cut to its room and always ended. Null is left alone.
inline void CopyText(char *out, std::size_t room, std::string_view text) {
    if (!out)
        return;
    const std::size_t length = std::min(text.size(), room - 1);
    std::memcpy(out, text.data(), length);
    out[length] = '\0';
}

// Plugins name files absolutely or from the simulator's folder, whatever the current one is.
inline std::string ResolvePath(std::string_view root, std::string_view path) {
    std::string resolved(path.starts_with('/') ? std::string_view() : root);
    return resolved.append(path);
}

// The texts with a separator between them.
inline std::string Join(const std::vector<std::string> &texts, std::string_view separator = ", ") {
    std::string joined;
    for (const std::string &text : texts)
        joined.append(joined.empty() ? "" : separator).append(text);
    return joined;
}

} // namespace host

#endif
