// A simulator's folder with chosen plugins only: a temporary one whose entries
// are links to the real ones, for the library loads all that it finds.
#ifndef AVSK_HOST_SESSION_CHOSEN_ROOT_H
#define AVSK_HOST_SESSION_CHOSEN_ROOT_H

#include <string>
#include <vector>

namespace host {

class ChosenRoot {
  public:
    ChosenRoot() = default;
    ~ChosenRoot();
    ChosenRoot(const ChosenRoot &) = delete;
    ChosenRoot &operator=(const ChosenRoot &) = delete;

    // Plugins are entries of a root's Resources/plugins, or paths. The root
    // may be empty. Answers the new one. Throws UsageError.
    std::string Make(const std::string &root, const std::vector<std::string> &plugins);

  private:
    std::string mFolder;
};

} // namespace host

#endif
