// Scenery objects.
#ifndef AVSK_HOST_SERVICES_OBJECTS_H
#define AVSK_HOST_SERVICES_OBJECTS_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A loaded object: this host keeps its file name and draws nothing.
struct Object {
    std::string path;
};

class Objects {
  public:
    using Completion = void (*)(void *object, void *argument);

    // Paths are relative to the root.
    explicit Objects(std::string root) : mRoot(std::move(root)) {}

    // Null if there is no such file. Each load creates a separate object.
    Object *Load(std::string_view path);
    // An unknown handle is ignored.
    void Unload(void *object);
    bool Known(const void *object) const;
    std::size_t Count() const { return mLoaded.size(); }

    long drawn = 0; // instances, in the whole run

    // Requests a load that completes some frames later.
    void LoadLater(int frame, std::string_view path, Completion completion, void *argument);
    // Completes the loads that are due by a frame.
    void CompleteLoads(int frame);
    // Completes every pending load.
    void CompleteAllLoads();
    // From now on loads stay pending until FinishLoads().
    void HoldLoads() { mHeld = true; }
    // Completes the pending loads of a file, or all if the path is empty, with
    // an object or as failed. Returns their number.
    int FinishLoads(std::string_view path, bool fail);
    std::size_t CountPending() const { return mPending.size(); }

    // The files that a virtual path stands for, relative to the root; see Objects.cpp.
    std::vector<std::string> Lookup(std::string_view path) const;

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
    bool mHeld = false;
};

} // namespace host

#endif
