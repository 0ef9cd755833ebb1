// The names of all datarefs. The library cannot list them, so an observer
// records every registration.
#ifndef AVSK_HOST_OBSERVING_DATAREF_NAMES_H
#define AVSK_HOST_OBSERVING_DATAREF_NAMES_H

#include "Crossings/Crossing.h"

#include <set>
#include <string>
#include <vector>

namespace host {

class DatarefNames : public crossings::Observer {
  public:
    // Create it before the plugins start.
    DatarefNames();
    ~DatarefNames() override;
    DatarefNames(const DatarefNames &) = delete;
    DatarefNames &operator=(const DatarefNames &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing & /*crossing*/) override {}

    // Those that are published now, sorted.
    std::vector<std::string> Published() const;
    // Whether plugins share it, so that none of them owns it.
    bool IsShared(const std::string &name) const { return mShared.contains(name); }

  private:
    std::set<std::string> mNames; // ever registered or shared
    std::set<std::string> mShared;
};

} // namespace host

#endif
