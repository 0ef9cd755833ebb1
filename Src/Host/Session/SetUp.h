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

struct Step;

class SetUp {
  public:
    explicit SetUp(SessionOptions requested);

    SessionOptions options;
    const std::string name;                // of the session, for messages
    std::string aircraft;                  // its folder
    std::map<std::string, double> budgets; // milliseconds, by plugin; "" is all others

    // "FILE:LINE:COLUMN" of a line's first parameter.
    std::string PlaceOf(const Step &step) const;

    // The path of an existing folder or file. A relative path begins at the
    // session's file, else at the root.
    std::optional<std::string> FindFolder(const std::string &path) const;
    std::optional<std::string> FindFile(const std::string &path) const;
    // A path that begins at the session's file, existing or not.
    std::string Beside(const std::string &path) const;

    // Chooses a plugin to load. The place is that of its line, for messages.
    void Choose(const std::string &plugin, const std::string &place);
    // Applies a set-up line. Throws UsageError.
    void Apply(const Step &step);
    // Makes the root if plugins were chosen, and checks the folders. Throws UsageError.
    void Finish();
    // Puts the plugins of a watch's round into its root, which has none until then.
    void PlacePlugins() { mRoot.PlacePlugins(); }
    // What became of files that plugins wrote into the root, if it is not the real one; else empty.
    std::string FilesNote() const;

  private:
    std::string mFolder;                        // of the session's file
    std::map<std::string, std::string> mPlaces; // of chosen plugins
    TemporaryRoot mRoot;
};

} // namespace host

#endif
