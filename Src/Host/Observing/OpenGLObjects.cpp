// Notes what plugins make and delete; see OpenGLObjects.h. Called by OpenGLUsage and
// by the checks of OpenGL.
#include "OpenGLObjects.h"

#include "Crossings/Format.h"
#include "Crossings/ValueText.h"
#include "Crossings/Words.h"
#include "OpenGL/Context.h"
#include "OpenGL/Prototypes.h"

#include <vector>

namespace host {
namespace {

using crossings::Crossing;
using Kind = OpenGLObjects::Kind;

// Empty if the memory cannot be read.
std::vector<unsigned> ReadNumbers(int count, const void *numbers) {
    std::vector<unsigned> read(static_cast<std::size_t>(count > 0 ? count : 0));
    if (!crossings::ReadMemory(numbers, read.data(), read.size() * sizeof(unsigned)))
        read.clear();
    return read;
}

std::int64_t BytesOfTexture(unsigned number) {
    const opengl::Api &gl = opengl::Gl();
    if (!gl.GetTextureParameteriv || !gl.GetTextureLevelParameteriv)
        return 0;
    GLint target = 0;
    gl.GetTextureParameteriv(number, GL_TEXTURE_TARGET, &target);
    constexpr int kLevels = 16;
    constexpr int kFaces = 6;
    std::int64_t bytes = 0;
    for (int level = 0; level < kLevels; ++level) {
        const auto get = [&](GLenum name) {
            GLint value = 0;
            gl.GetTextureLevelParameteriv(number, level, name, &value);
            return std::int64_t{value};
        };
        if (get(GL_TEXTURE_WIDTH) == 0)
            continue;
        if (get(GL_TEXTURE_COMPRESSED) != 0) {
            bytes += get(GL_TEXTURE_COMPRESSED_IMAGE_SIZE);
            continue;
        }
        std::int64_t bits = 0;
        for (const GLenum size :
             {GL_TEXTURE_RED_SIZE, GL_TEXTURE_GREEN_SIZE, GL_TEXTURE_BLUE_SIZE, GL_TEXTURE_ALPHA_SIZE,
              GL_TEXTURE_LUMINANCE_SIZE, GL_TEXTURE_INTENSITY_SIZE, GL_TEXTURE_DEPTH_SIZE, GL_TEXTURE_STENCIL_SIZE})
            bits += get(size);
        bytes += get(GL_TEXTURE_WIDTH) * get(GL_TEXTURE_HEIGHT) * get(GL_TEXTURE_DEPTH) * bits / 8;
    }
    return target == GL_TEXTURE_CUBE_MAP ? bytes * kFaces : bytes;
}

std::int64_t BytesOfBuffer(unsigned number) {
    GLint bytes = 0;
    if (opengl::Gl().GetNamedBufferParameteriv)
        opengl::Gl().GetNamedBufferParameteriv(number, GL_BUFFER_SIZE, &bytes);
    return bytes;
}

std::int64_t BytesOfRenderbuffer(unsigned number) {
    const opengl::Api &gl = opengl::Gl();
    if (!gl.GetNamedRenderbufferParameteriv)
        return 0;
    const auto get = [&](GLenum name) {
        GLint value = 0;
        gl.GetNamedRenderbufferParameteriv(number, name, &value);
        return std::int64_t{value};
    };
    std::int64_t bits = 0;
    for (const GLenum size : {GL_RENDERBUFFER_RED_SIZE, GL_RENDERBUFFER_GREEN_SIZE, GL_RENDERBUFFER_BLUE_SIZE,
                              GL_RENDERBUFFER_ALPHA_SIZE, GL_RENDERBUFFER_DEPTH_SIZE, GL_RENDERBUFFER_STENCIL_SIZE})
        bits += get(size);
    return get(GL_RENDERBUFFER_WIDTH) * get(GL_RENDERBUFFER_HEIGHT) * bits / 8;
}

} // namespace

const Crossing *CallbackOf(const Crossing &call) {
    const Crossing *callback = &call;
    while (callback && callback->to != crossings::Side::Plugin)
        callback = callback->outer;
    return callback;
}

std::string TitleOfCallback(const Crossing *callback) {
    return callback ? crossings::TitleOf(*callback) : "constructors and destructors";
}

bool OpenGLObjects::Concerns(const crossings::Prototype &function) {
    return crossings::IsOneOf(function.name, {"AVSKGenerateTextureNumbers", "AVSKGetTexture"});
}

void OpenGLObjects::Note(const Crossing &call) {
    if (call.what.form != crossings::Prototype::Form::OpenGL) {
        if (call.what.name == std::string_view("AVSKGetTexture"))
            mHostsTextures.insert(static_cast<unsigned>(call.result.integer));
        else
            MakeAll(call, Kind::Texture, call["count"].integer, call["outTextures"].pointer);
        return;
    }
    if (!opengl::HasContext() || opengl::IsBetweenBeginAndEnd())
        return;
    const auto count = [&call] { return call.arguments[0].integer; };
    const auto numbers = [&call](std::size_t index) { return call.arguments[index].pointer; };
    switch (opengl::NumberOf(call.what)) {
    case opengl::kNumber_glGenTextures:
    case opengl::kNumber_glGenTexturesEXT:
        return MakeAll(call, Kind::Texture, count(), numbers(1));
    case opengl::kNumber_glCreateTextures: // of a target
        return MakeAll(call, Kind::Texture, call.arguments[1].integer, numbers(2));
    case opengl::kNumber_glBindTexture:
    case opengl::kNumber_glBindTextureEXT: // makes one of any number
        return Make(call, Kind::Texture, call.arguments[1].word);
    case opengl::kNumber_glDeleteTextures:
    case opengl::kNumber_glDeleteTexturesEXT:
        return DeleteAll(Kind::Texture, count(), numbers(1));
    case opengl::kNumber_glGenBuffers:
    case opengl::kNumber_glGenBuffersARB:
    case opengl::kNumber_glCreateBuffers:
        return MakeAll(call, Kind::Buffer, count(), numbers(1));
    case opengl::kNumber_glDeleteBuffers:
    case opengl::kNumber_glDeleteBuffersARB:
        return DeleteAll(Kind::Buffer, count(), numbers(1));
    case opengl::kNumber_glGenRenderbuffers:
    case opengl::kNumber_glGenRenderbuffersEXT:
    case opengl::kNumber_glCreateRenderbuffers:
        return MakeAll(call, Kind::Renderbuffer, count(), numbers(1));
    case opengl::kNumber_glDeleteRenderbuffers:
    case opengl::kNumber_glDeleteRenderbuffersEXT:
        return DeleteAll(Kind::Renderbuffer, count(), numbers(1));
    default:
        return;
    }
}

void OpenGLObjects::Make(const Crossing &call, Kind kind, unsigned number) {
    if (number == 0 || (kind == Kind::Texture && IsTexture(number)))
        return;
    mObjects.try_emplace({kind, number},
                         Maker{call.plugin, crossings::LabelOf(call.plugin), TitleOfCallback(CallbackOf(call))});
}

void OpenGLObjects::MakeAll(const Crossing &call, Kind kind, int count, const void *numbers) {
    for (const unsigned number : ReadNumbers(count, numbers))
        Make(call, kind, number);
}

void OpenGLObjects::DeleteAll(Kind kind, int count, const void *numbers) {
    for (const unsigned number : ReadNumbers(count, numbers))
        mObjects.erase({kind, number});
}

bool OpenGLObjects::IsTexture(unsigned number) const {
    return mObjects.contains({Kind::Texture, number}) || mHostsTextures.contains(number);
}

void OpenGLObjects::Rename(AVSKPluginID plugin) {
    for (auto &[object, maker] : mObjects) {
        if (maker.plugin == plugin)
            maker.label = crossings::LabelOf(plugin);
    }
}

void OpenGLObjects::Forget(AVSKPluginID plugin) {
    std::erase_if(mObjects, [plugin](const auto &object) { return object.second.plugin == plugin; });
}

bool OpenGLObjects::Exists(const Object &object) {
    const auto [kind, number] = object;
    const opengl::Api &gl = opengl::Gl();
    return (kind == Kind::Texture  ? gl.IsTexture(number)
            : kind == Kind::Buffer ? gl.IsBuffer(number)
                                   : gl.IsRenderbuffer(number)) != 0;
}

std::int64_t OpenGLObjects::BytesOf(const Object &object) {
    const auto [kind, number] = object;
    return kind == Kind::Texture  ? BytesOfTexture(number)
           : kind == Kind::Buffer ? BytesOfBuffer(number)
                                  : BytesOfRenderbuffer(number);
}

} // namespace host
