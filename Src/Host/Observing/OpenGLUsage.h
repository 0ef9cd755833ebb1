// What plugins ask of OpenGL, by plugin and callback: calls, vertices, and the
// memory that they keep. An observer for programs that serve OpenGL.
#ifndef AVSK_HOST_OBSERVING_OPENGL_USAGE_H
#define AVSK_HOST_OBSERVING_OPENGL_USAGE_H

#include "OpenGLObjects.h"

#include "Crossings/Crossing.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace host {

class OpenGLUsage : public crossings::Observer {
  public:
    OpenGLUsage();
    ~OpenGLUsage() override;
    OpenGLUsage(const OpenGLUsage &) = delete;
    OpenGLUsage &operator=(const OpenGLUsage &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    crossings::Interest InterestInOpenGL(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &call) override;
    void Ends(const crossings::Crossing &call) override;

    // A table; the callback with the most vertices comes first. To be called when the plugins are unloaded.
    void Print() const;

  private:
    struct Row {
        long calls = 0;
        std::int64_t vertices = 0;
        // Made and not deleted:
        int textures = 0;
        std::int64_t bytes = 0;
    };

    void Rename(AVSKPluginID plugin);
    Row &RowOf(const crossings::Crossing &call);
    std::int64_t VerticesOf(const crossings::Crossing &call);
    std::int64_t CountLists(const crossings::Crossing &call) const;
    void AddObjects();

    std::map<std::string, std::map<std::string, Row>> mRows; // plugin, callback
    struct Known {
        AVSKPluginID plugin;
        Row *row; // null if it is not known yet
    };
    std::vector<Known> mKnown;          // by the callback's number
    std::vector<std::string> mStarting; // the labels of the plugins whose starts are under way, which have no name yet
    OpenGLObjects mObjects;
    std::map<unsigned, std::int64_t> mLists; // their vertices, by number
    std::optional<unsigned> mList;           // that is compiled; without Mesa all have the number 0
    bool mIsListDrawn = false;               // while it is compiled
    unsigned mListBase = 0;
};

} // namespace host

#endif
