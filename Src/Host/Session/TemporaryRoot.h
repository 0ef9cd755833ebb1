// A temporary root that holds only chosen plugins, as links. The library loads
// every plugin that it finds in a root, so a choice needs a root of its own.
#ifndef AVSK_HOST_SESSION_TEMPORARY_ROOT_H
#define AVSK_HOST_SESSION_TEMPORARY_ROOT_H

#include <string>
#include <vector>

namespace host {

class TemporaryRoot {
  public:
    TemporaryRoot() = default;
    ~TemporaryRoot();
    TemporaryRoot(const TemporaryRoot &) = delete;
    TemporaryRoot &operator=(const TemporaryRoot &) = delete;

    // Plugins are entries of the root's Resources/plugins, or paths. An empty
    // root is none. Returns the new root. Throws UsageError.
    std::string Make(const std::string &root, const std::vector<std::string> &plugins);

  private:
    std::string mFolder;
};

} // namespace host

#endif
