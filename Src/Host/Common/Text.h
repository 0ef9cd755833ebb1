// Helpers for texts and paths that the host's services receive and return.
#ifndef AVSK_HOST_COMMON_TEXT_H
#define AVSK_HOST_COMMON_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

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

// The texts with a separator between them.
inline std::string Join(const std::vector<std::string> &texts, std::string_view separator = ", ") {
    std::string joined;
    for (const std::string &text : texts)
        joined.append(joined.empty() ? "" : separator).append(text);
    return joined;
}

// The texts between commas; of many only the first ones and the number of the others.
inline std::string Shortened(std::vector<std::string> texts, std::size_t most = 12) {
    if (texts.size() > most) {
        const std::string others = std::to_string(texts.size() - most) + " others";
        texts.resize(most);
        texts.push_back(others);
    }
    return Join(texts);
}

} // namespace host

#endif
