// The textures, buffers and renderbuffers that plugins have made and not deleted.
// Learned from their calls.
#ifndef AVSK_HOST_OBSERVING_OPENGL_OBJECTS_H
#define AVSK_HOST_OBSERVING_OPENGL_OBJECTS_H

#include "Crossings/Crossing.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace host {

// The innermost callback under way that runs a plugin's code, the given call included; null if there is none.
const crossings::Crossing *CallbackOf(const crossings::Crossing &call);

// Its title, or that of the place where plugins have code but no callback.
std::string TitleOfCallback(const crossings::Crossing *callback);

class OpenGLObjects {
  public:
    enum class Kind : std::uint8_t {
        Texture,
        Buffer,
        Renderbuffer,
    };
    struct Maker {
        AVSKPluginID plugin;
        std::string label; // the plugin's
        std::string callback;
    };
    using Object = std::pair<Kind, unsigned>; // its number

    // Whether calls of a function of the library are to be noted.
    static bool Concerns(const crossings::Prototype &function);
    // To be called at the end of each call of OpenGL, and of each that Concerns().
    void Note(const crossings::Crossing &call);

    // Whether a number belongs to a texture that was made, or was reserved for one, or that is the host's.
    bool IsTexture(unsigned number) const;
    const std::map<Object, Maker> &All() const { return mObjects; }
    // The plugin has another label now.
    void Rename(AVSKPluginID plugin);
    // Forgets the objects of a plugin.
    void Forget(AVSKPluginID plugin);

    // Only with a context. A number that was reserved may not be used for an object.
    static bool Exists(const Object &object);
    // The memory of an object that exists. An OpenGL before 4.5 does not tell it: then 0.
    static std::int64_t BytesOf(const Object &object);

  private:
    void Make(const crossings::Crossing &call, Kind kind, unsigned number);
    void MakeAll(const crossings::Crossing &call, Kind kind, int count, const void *numbers);
    void DeleteAll(Kind kind, int count, const void *numbers);

    std::map<Object, Maker> mObjects;
    std::set<unsigned> mHostsTextures;
};

} // namespace host

#endif
