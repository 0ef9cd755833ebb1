// The files of the page.
#ifndef AVSK_HOST_LIVE_PAGES_H
#define AVSK_HOST_LIVE_PAGES_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct PageFile {
    std::string content;
    std::string_view type; // as in the header Content-Type
};

class Pages {
  public:
    // Throws UsageError if the files are not installed.
    Pages();

    // The file for a request's target, such as "/" or "/main.js".
    std::optional<PageFile> Find(std::string_view target) const;

  private:
    std::vector<std::string> mFolders;
};

} // namespace host

#endif
