// The aircraft: the user's, index 0, and nineteen others, indices 1 to 19. The
// host flies the others in wide circles around the start until a plugin takes over.
#ifndef AVSK_HOST_SERVICES_AIRCRAFT_H
#define AVSK_HOST_SERVICES_AIRCRAFT_H

#include <array>
#include <string>
#include <string_view>

namespace host {

class Aeroplane;
struct Simulator;

class Fleet {
  public:
    static constexpr int kCount = 20; // the user's included
    using Numbers = std::array<float, kCount>;

    explicit Fleet(const std::string &usersModel);

    // Positions in local metres. Published as datarefs.
    Numbers x{}, y{}, z{};
    std::array<int, kCount> otherPilot{}; // non-zero: the host does not fly that aircraft

    // Path of an aircraft's model; empty without one and for an index out of range.
    const std::string &Model(int index) const;

    // Loads a model at the next frame. An index out of range is ignored.
    void Request(int index, std::string_view path);

    // Once a frame: asks plugins how many aircraft to simulate, loads requested
    // models, and has plugins choose those of the others when the number or
    // the plugin in control has changed.
    void Update(Simulator &simulator);
    // Moves the simulated aircraft that the host flies.
    void Step(double elapsed, const Aeroplane &users);

    // Tells the library that the user's aircraft was loaded or will be unloaded. Does nothing without one.
    void ReportUsersAircraft(const Simulator &simulator, int event);
    bool IsUsersReported() const { return mIsUsersReported; }

  private:
    void ChooseModels(Simulator &simulator);
    void Load(Simulator &simulator, int index, const std::string &path);
    void Replace(Simulator &simulator, int index, const std::string &file);

    std::array<std::string, kCount> mModels;
    std::array<std::string, kCount> mRequested;
    int mActive = 0; // how many are simulated, the user's included
    bool mIsUsersReported = false;
    int mController = -1; // the plugin that had control when models were chosen
};

} // namespace host

#endif
