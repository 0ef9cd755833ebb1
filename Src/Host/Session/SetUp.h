// What the set-up lines of a session ask for, added to what the command line
// asked for.
#ifndef AVSK_HOST_SESSION_SET_UP_H
#define AVSK_HOST_SESSION_SET_UP_H

#include "SessionOptions.h"
#include "TemporaryRoot.h"

#include <map>
#include <optional>
#include <string>

namespace host {

class SetUp {
  public:
    explicit SetUp(SessionOptions requested);

    SessionOptions options;
    std::string aircraft;                  // its folder
    std::map<std::string, double> budgets; // milliseconds, by plugin; "" is all others

    // The path of an existing folder or file. A relative path begins at the
    // session's file, else at the root.
    std::optional<std::string> FindFolder(const std::string &path) const;
    std::optional<std::string> FindFile(const std::string &path) const;

    // Makes the root if plugins were chosen, and checks the folders. Throws UsageError.
    void Finish();

  private:
    std::string mFolder; // of the session's file
    TemporaryRoot mRoot;
};

} // namespace host

#endif
