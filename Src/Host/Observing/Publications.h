// The names under which the simulator and the plugins published datarefs and
// commands. The library has no function that lists them.
#ifndef AVSK_HOST_OBSERVING_PUBLICATIONS_H
#define AVSK_HOST_OBSERVING_PUBLICATIONS_H

#include "Crossings/Crossing.h"

#include <map>
#include <string>

namespace host {

struct Publication {
    std::string owner;     // the plugin's name; "simulator" for plugin 0
    bool isShared = false; // a value of AVSKShareData(), which belongs to no plugin
};

class Publications : public crossings::Observer {
  public:
    Publications();
    ~Publications() override;
    Publications(const Publications &) = delete;
    Publications &operator=(const Publications &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing & /*crossing*/) override {}

    // The datarefs that exist now, by name.
    std::map<std::string, Publication> Datarefs() const;
    // The first plugin that created a command of this name; "simulator" if none did.
    std::string CreatorOf(const std::string &command) const;

  private:
    struct Entry {
        AVSKPluginID owner;
        bool isShared;
    };
    std::map<std::string, Entry> mDatarefs;
    std::map<std::string, AVSKPluginID> mCommands;
};

} // namespace host

#endif
