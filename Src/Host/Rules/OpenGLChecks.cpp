// The checks of OpenGL; see OpenGLChecks.h. The context is read at the first call of
// OpenGL in a callback and at its end, so other callbacks cost nothing. Owns the
// pointer to the present checks.
#include "OpenGLChecks.h"

#include "OpenGLRules.h"

#include "Crossings/Format.h"
#include "Crossings/Line.h"
#include "Crossings/Words.h"
#include "OpenGL/Calls.h"
#include "OpenGL/Context.h"
#include "OpenGL/Enumerants.h"
#include "OpenGL/Prototypes.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Interest;
using crossings::Prototype;
using crossings::Side;
using opengl::StateKind;

OpenGLChecks *gChecks = nullptr;

// Whether the context can be asked.
bool CanAsk() { return opengl::HasContext() && !opengl::IsBetweenBeginAndEnd() && !opengl::IsCompilingList(); }

bool IsOpenGL(const Crossing &crossing) { return crossing.what.form == Prototype::Form::OpenGL; }

void ForgetErrors() {
    constexpr int kMost = 100; // a lost context reports errors for ever
    for (int i = 0; i < kMost && opengl::Gl().GetError() != GL_NO_ERROR; ++i) {
    }
}

bool IsInDrawing(const Crossing &call) {
    for (const Crossing *outer = call.outer; outer; outer = outer->outer) {
        if (crossings::IsOneOf(outer->what.name, {"AVSKDrawWindow_f", "AVSKDrawCallback_f", "AVSKDoDrawingHook"}))
            return true;
    }
    return false;
}

const Rule &RuleOf(StateKind kind) {
    switch (kind) {
    case StateKind::Attributes:
        return Named(kOpenGLRules, "gl-attributes");
    case StateKind::Mode:
        return Named(kOpenGLRules, "gl-matrix-mode");
    case StateKind::Matrices:
        return Named(kOpenGLRules, "gl-matrix-depth");
    case StateKind::Arrays:
        return Named(kOpenGLRules, "gl-client-arrays");
    case StateKind::Program:
        return Named(kOpenGLRules, "gl-program");
    case StateKind::Framebuffer:
        return Named(kOpenGLRules, "gl-framebuffer");
    case StateKind::Scissor:
        return Named(kOpenGLRules, "gl-scissor");
    case StateKind::Graphics:
        return Named(kOpenGLRules, "gl-graphics-state");
    case StateKind::Unit:
    case StateKind::Texture:
        break;
    }
    return Named(kOpenGLRules, "gl-texture-binding");
}

std::string CallText(const Crossing &call) {
    crossings::Line line;
    crossings::AddCall(line, call);
    return std::string(line.Text());
}

std::string Size(std::int64_t bytes) {
    constexpr std::int64_t kKilo = 1024;
    return std::to_string((bytes + kKilo - 1) / kKilo) + " kB";
}

} // namespace

OpenGLChecks::OpenGLChecks(Findings &findings) : mFindings(findings) {
    gChecks = this;
    opengl::gHandlers.error = AnswerError;
    crossings::AddObserver(*this);
}

OpenGLChecks::~OpenGLChecks() {
    crossings::RemoveObserver(*this);
    opengl::gHandlers.error = nullptr;
    gChecks = nullptr;
}

Interest OpenGLChecks::InterestIn(const Prototype &function) const {
    const bool isCallback = function.form != Prototype::Form::Function && function.form != Prototype::Form::Service;
    const bool isService = crossings::IsOneOf(function.name, {"AVSKSetGraphicsState", "AVSKBindTexture2d"});
    return isCallback || isService || OpenGLObjects::Concerns(function) ? Interest::Work : Interest::None;
}

Interest OpenGLChecks::InterestInOpenGL(const Prototype & /*function*/) const { return Interest::Work; }

void OpenGLChecks::Begins(const Crossing &crossing) {
    if (crossing.to == Side::Plugin)
        mFrames.emplace_back();
    else if (IsOpenGL(crossing))
        BeforeOpenGL(crossing);
}

void OpenGLChecks::Ends(const Crossing &crossing) {
    if (crossing.to == Side::Plugin)
        return AfterCallback(crossing);
    if (IsOpenGL(crossing))
        return AfterOpenGL(crossing);
    if (crossing.to != Side::Library)
        return;
    const std::string_view name = crossing.what.name;
    if (OpenGLObjects::Concerns(crossing.what))
        mObjects.Note(crossing);
    else if (name == "AVSKSetGraphicsState")
        ExpectPresent({StateKind::Graphics, StateKind::Unit});
    else if (name == "AVSKBindTexture2d")
        ExpectPresent({StateKind::Texture, StateKind::Unit});
}

// ---- Calls

void OpenGLChecks::BeforeOpenGL(const Crossing &call) {
    mWasBetween = opengl::IsBetweenBeginAndEnd();
    CheckPlace(call);
    if (mFrames.empty() || mFrames.back().isRead || !CanAsk())
        return;
    if (!mError)
        ForgetErrors(); // those of the host
    mFrames.back().expected = opengl::ReadState();
    mFrames.back().isRead = true;
}

void OpenGLChecks::AfterOpenGL(const Crossing &call) {
    NoteError(call);
    CheckTextureNumber(call);
    mObjects.Note(call);
}

std::uint32_t OpenGLChecks::AnswerError(std::uint32_t error) {
    if (!gChecks->mError || opengl::IsBetweenBeginAndEnd())
        return error;
    const GLenum kept = gChecks->mError->error;
    gChecks->mError.reset();
    return kept;
}

void OpenGLChecks::NoteError(const Crossing &call) {
    if (!opengl::HasContext() || opengl::IsBetweenBeginAndEnd())
        return;
    const GLenum error = opengl::Gl().GetError();
    if (error == GL_NO_ERROR || mError)
        return;
    std::string name(opengl::NameOf(error));
    const std::string made = mWasBetween ? "a call after glBegin()" : CallText(call);
    mError = Error{error, CallbackOf(call),
                   mFindings.Make(Named(kOpenGLRules, "gl-error"), call, {{"error", name}, {"call", made}})};
}

void OpenGLChecks::CheckPlace(const Crossing &call) {
    const opengl::Function &function = opengl::kFunctions[opengl::NumberOf(call.what)];
    if ((function.flags & opengl::kDraws) == 0 || IsInDrawing(call) || !CanAsk())
        return;
    GLint framebuffer = 0;
    opengl::Gl().GetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
    if (framebuffer == 0)
        mFindings.Add(Named(kOpenGLRules, "gl-place"), call);
}

void OpenGLChecks::CheckTextureNumber(const Crossing &call) {
    if (!CanAsk())
        return;
    const auto add = [&](unsigned number) {
        mFindings.Add(Named(kOpenGLRules, "gl-texture-number"), call, {{"", ""}, {"number", std::to_string(number)}});
    };
    switch (opengl::NumberOf(call.what)) {
    case opengl::kNumber_glGenTextures:
    case opengl::kNumber_glGenTexturesEXT:
        if (call.arguments[0].integer > 0)
            add(*static_cast<const unsigned *>(call.arguments[1].pointer)); // OpenGL has written it
        return;
    case opengl::kNumber_glCreateTextures:
        if (call.arguments[1].integer > 0)
            add(*static_cast<const unsigned *>(call.arguments[2].pointer));
        return;
    case opengl::kNumber_glBindTexture:
    case opengl::kNumber_glBindTextureEXT:
        if (const unsigned number = call.arguments[1].word; number != 0 && !mObjects.IsTexture(number))
            add(number);
        return;
    default:
        return;
    }
}

// ---- State

// The host knows these parts as they are now.
void OpenGLChecks::ExpectPresent(std::initializer_list<StateKind> kinds) {
    if (!CanAsk())
        return;
    for (std::size_t i = 0; i < opengl::kStateParts; ++i) {
        const opengl::StatePart &part = opengl::kState[i];
        if (std::find(kinds.begin(), kinds.end(), part.kind) == kinds.end())
            continue;
        const int value = part.read(part);
        for (Frame &frame : mFrames)
            frame.expected[i] = value;
    }
}

void OpenGLChecks::AfterCallback(const Crossing &callback) {
    const Frame frame = mFrames.back();
    mFrames.pop_back();
    if (frame.isRead && opengl::HasContext()) {
        CheckBegun(callback);
        CheckState(callback, frame.expected);
    }
    if (mError && mError->callback == &callback) {
        mFindings.Add(std::move(mError->finding));
        mError.reset();
    }
    if (callback.what.name == std::string_view("AVPluginStop"))
        CheckTextures(callback);
}

void OpenGLChecks::CheckBegun(const Crossing &callback) {
    const auto add = [&](const char *begin) {
        mFindings.Add(Named(kOpenGLRules, "gl-begin-end"), callback, {{"begin", begin}});
    };
    if (opengl::IsBetweenBeginAndEnd()) {
        add("glBegin()");
        glEnd(); // of libGL.so.1, so that the calls' own note of glBegin() ends too
    }
    if (opengl::IsCompilingList()) {
        add("glNewList()");
        opengl::Gl().EndList();
    }
}

void OpenGLChecks::CheckState(const Crossing &callback, const opengl::State &expected) {
    bool hasChanged = false;
    for (std::size_t i = 0; i < opengl::kStateParts; ++i) {
        const opengl::StatePart &part = opengl::kState[i];
        const int is = part.read(part);
        const int was = expected[i];
        if (is == was)
            continue;
        // Deleting a texture ends its binding.
        if (part.kind == StateKind::Texture && is == 0 && !opengl::Gl().IsTexture(static_cast<GLuint>(was)))
            continue;
        const char *const subject =
            part.kind == StateKind::Attributes || part.kind == StateKind::Matrices ? "stack" : "what";
        mFindings.Add(RuleOf(part.kind), callback,
                      {{subject, part.what}, {"after", part.text(is)}, {"before", part.text(was)}});
        part.restore(part, was);
        hasChanged = true;
    }
    if (hasChanged)
        ForgetErrors();
}

// ---- The end of a plugin

void OpenGLChecks::CheckTextures(const Crossing &stop) {
    struct Sum {
        int count = 0;
        std::int64_t bytes = 0;
    };
    std::map<std::string, Sum> left; // by the callback that made them
    for (const auto &[object, maker] : mObjects.All()) {
        if (maker.plugin != stop.plugin || object.first != OpenGLObjects::Kind::Texture || !CanAsk() ||
            !OpenGLObjects::Exists(object))
            continue;
        Sum &sum = left[maker.callback];
        ++sum.count;
        sum.bytes += OpenGLObjects::BytesOf(object);
    }
    for (const auto &[callback, sum] : left)
        mFindings.Add(Named(kOpenGLRules, "gl-textures-left"), stop,
                      {{"callback", callback}, {"count", std::to_string(sum.count)}, {"size", Size(sum.bytes)}});
    mObjects.Forget(stop.plugin);
}

std::string OpenGLChecks::Note() const {
    if (!opengl::IsUsed() || opengl::Missing().empty())
        return "";
    return "The rules about OpenGL were not judged. " + opengl::Missing() + ".";
}

} // namespace host
