// What the observers must know of the host whose calls they see. Calls alone do
// not show it.
#ifndef AVSK_HOST_OBSERVING_OBSERVED_HOST_H
#define AVSK_HOST_OBSERVING_OBSERVED_HOST_H

#include <string>
#include <string_view>

namespace host {

class ObservedHost {
  public:
    virtual ~ObservedHost() = default;

    // The number of the frame that runs; 0 before the first one. Observers and
    // handlers of signals read it through the reference, which stays valid as long as the host.
    virtual const int &Frame() const = 0;

    // The name of a command by its handle; empty if it is unknown.
    virtual std::string CommandName(const void *command) const = 0;
    // Whether a command is the host's own and not one that plugins created.
    virtual bool HasCommand(const std::string &name) const = 0;

    // The folder that contains Resources, with its separator, and the model of the user's aircraft; empty if unknown.
    virtual std::string Root() const = 0;
    virtual std::string AircraftModel() const = 0;

    // A text as reports show it: paths in it may be shortened.
    virtual std::string Shown(std::string_view text) const { return std::string(text); }
    // Why the host's log is not complete; empty if it is complete or there is none.
    virtual std::string LogFault() const { return ""; }
};

} // namespace host

#endif
