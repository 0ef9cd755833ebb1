// The aircraft: the user's, index 0, and a few others with nobody aboard.
#ifndef AVSK_HOST_AIRCRAFT_H
#define AVSK_HOST_AIRCRAFT_H

#include <array>
#include <string>
#include <string_view>

namespace host {

struct Simulator;

class Fleet {
  public:
    static constexpr int kCount = 4;

    explicit Fleet(const std::string &usersModel);

    int active = kCount; // how many plugins want simulated

    // Path of an aircraft's model; empty without one and for an index out of range.
    const std::string &Model(int index) const;

    // Loads a model at the next frame.
    void Request(int index, std::string_view path);
    void LoadRequested(Simulator &simulator);

    // Tells the library that the user's aircraft is there, or about to go. Without one nothing happens.
    void ReportUsersAircraft(const Simulator &simulator, int event) const;
    // Asks plugins for models of the other aircraft.
    void AskForModels();

  private:
    std::array<std::string, kCount> mModels;
    std::array<std::string, kCount> mRequested;
};

} // namespace host

#endif
