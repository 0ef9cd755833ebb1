// Scenery objects and terrain probes.
#ifndef AVSK_HOST_OBJECTS_H
#define AVSK_HOST_OBJECTS_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A loaded object: this host keeps its file's name and shows nothing.
struct Object {
    std::string path;
};

struct Probe {};

class Objects {
  public:
    using Completion = void (*)(void *object, void *argument);

    // Paths are relative to the root.
    explicit Objects(std::string root) : mRoot(std::move(root)) {}

    // Null if there is no such file. Each load makes an object of its own.
    Object *Load(std::string_view path);
    // An unknown handle is ignored.
    void Unload(void *object);
    std::size_t Count() const { return mLoaded.size(); }

    // Asks for a load that is completed some frames later.
    void LoadLater(int frame, std::string_view path, Completion completion, void *argument);
    // Completes the loads that are due by a frame.
    void CompleteLoads(int frame);
    // Completes every load that is asked for.
    void CompleteAllLoads();

    // A probe lives as long as the host: there is no way to give one back.
    Probe *CreateProbe();

  private:
    struct Pending {
        int due;
        std::string path;
        Completion completion;
        void *argument;
    };

    std::string mRoot;
    std::vector<std::unique_ptr<Object>> mLoaded;
    std::vector<Pending> mPending;
    std::vector<std::unique_ptr<Probe>> mProbes;
};

} // namespace host

#endif
