// Finds what violates the rules about OpenGL, by asking the context around each
// callback that uses it. For programs that serve OpenGL.
#ifndef AVSK_HOST_RULES_OPENGL_CHECKS_H
#define AVSK_HOST_RULES_OPENGL_CHECKS_H

#include "Checker.h"
#include "Findings.h"

#include "Crossings/Crossing.h"
#include "Observing/OpenGLObjects.h"
#include "OpenGL/State.h"

#include <optional>
#include <vector>

namespace host {

class OpenGLChecks : public MoreChecks {
  public:
    explicit OpenGLChecks(Findings &findings);
    ~OpenGLChecks() override;
    OpenGLChecks(const OpenGLChecks &) = delete;
    OpenGLChecks &operator=(const OpenGLChecks &) = delete;

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    crossings::Interest InterestInOpenGL(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;
    std::string Note() const override;

  private:
    // A callback under way.
    struct Frame {
        bool isRead = false; // it has called OpenGL
        opengl::State expected{};
    };
    // The first error that nobody has asked for yet.
    struct Error {
        GLenum error;
        const crossings::Crossing *callback; // that made it; null: none
        Finding finding;
    };

    static std::uint32_t AnswerError(std::uint32_t error);

    void BeforeOpenGL(const crossings::Crossing &call);
    void AfterOpenGL(const crossings::Crossing &call);
    void NoteError(const crossings::Crossing &call);
    void CheckPlace(const crossings::Crossing &call);
    void CheckTextureNumber(const crossings::Crossing &call);
    void ExpectPresent(std::initializer_list<opengl::StateKind> kinds);
    void AfterCallback(const crossings::Crossing &callback);
    void CheckBegun(const crossings::Crossing &callback);
    void CheckState(const crossings::Crossing &callback, const opengl::State &expected);
    void CheckTextures(const crossings::Crossing &stop);

    Findings &mFindings;
    std::vector<Frame> mFrames;
    std::optional<Error> mError;
    bool mWasBetween = false; // glBegin and glEnd, when the present call began
    OpenGLObjects mObjects;
};

} // namespace host

#endif
