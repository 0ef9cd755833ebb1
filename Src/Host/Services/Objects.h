// Scenery objects.
#ifndef AVSK_HOST_SERVICES_OBJECTS_H
#define AVSK_HOST_SERVICES_OBJECTS_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A loaded object: this host keeps its file's name and shows nothing.
struct Object {
    std::string path;
};

class Objects {
  public:
    using Completion = void (*)(void *object, void *argument);

    // Paths are relative to the root.
    explicit Objects(std::string root) : mRoot(std::move(root)) {}

    // Null if there is no such file. Each load makes an object of its own.
    Object *Load(std::string_view path);
    // An unknown handle is ignored.
    void Unload(void *object);
    bool Known(const void *object) const;
    std::size_t Count() const { return mLoaded.size(); }

    long drawn = 0; // instances, in the whole run

    // Asks for a load that is completed some frames later.
    void LoadLater(int frame, std::string_view path, Completion completion, void *argument);
    // Completes the loads that are due by a frame.
    void CompleteLoads(int frame);
    // Completes every load that is asked for.
    void CompleteAllLoads();
    // From now on loads wait until they are finished by hand.
    void HoldLoads() { mHeld = true; }
    // Finishes by hand the loads of a file, or all if the path is empty: with
    // the object, or without if they are to fail. Answers how many.
    int FinishLoads(std::string_view path, bool fail);
    std::size_t CountPending() const { return mPending.size(); }

    // The files that a virtual path stands for, from the root; see HostObjects.cpp.
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
