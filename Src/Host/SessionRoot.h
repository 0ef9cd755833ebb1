// A simulator's folder with chosen plugins only: a temporary one whose entries
// are links to the real ones, for the library loads all that it finds.
#ifndef AVSK_HOST_SESSION_ROOT_H
#define AVSK_HOST_SESSION_ROOT_H

#include <string>
#include <vector>

namespace host {

class SessionRoot {
  public:
    SessionRoot() = default;
    ~SessionRoot();
    SessionRoot(const SessionRoot &) = delete;
    SessionRoot &operator=(const SessionRoot &) = delete;

    // Plugins are entries of a root's Resources/plugins, or paths. The root
    // may be empty. Answers the new one. Throws UsageError.
    std::string Make(const std::string &root, const std::vector<std::string> &plugins);

  private:
    std::string mFolder;
};

} // namespace host

#endif
