// Lays out what observers count for each plugin and callback, the largest first.
#ifndef AVSK_HOST_OBSERVING_CALLBACK_TABLE_H
#define AVSK_HOST_OBSERVING_CALLBACK_TABLE_H

#include "Common/Utf8.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace host {

template <class Row>
struct CallbackTable {
    struct Entry {
        std::string plugin;
        std::string callback;
        Row row;
    };

    // Rows by plugin and callback. The value of a row decides the order.
    CallbackTable(const std::map<std::string, std::map<std::string, Row>> &rows, auto value) {
        for (const auto &[name, callbacks] : rows) {
            const std::string plugin = OneLine(name, kWidestName);
            width = std::max(width, static_cast<int>(plugin.size()));
            for (const auto &[callback, row] : callbacks)
                entries.push_back({plugin, callback, row});
        }
        std::stable_sort(entries.begin(), entries.end(),
                         [value](const Entry &a, const Entry &b) { return value(a.row) > value(b.row); });
    }

    std::vector<Entry> entries;
    int width = static_cast<int>(sizeof "plugin" - 1); // of the column of plugins, whose head this is
};

// A text by printf(), up to 255 bytes.
std::string Formatted(const char *format, auto... values) {
    char text[256];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

} // namespace host

#endif
