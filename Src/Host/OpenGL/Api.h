// Mesa's functions that the host itself calls, with their types. Another one is
// another word in the list.
#ifndef AVSK_HOST_OPENGL_API_H
#define AVSK_HOST_OPENGL_API_H

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

// clang-format off
#define AVSK_OPENGL_API(X) \
    X(ActiveTexture) X(AlphaFunc) X(Begin) X(BindBuffer) X(BindFramebuffer) X(BindProgramPipeline) X(BindSampler) \
    X(BindTexture) X(BindVertexArray) X(BlendEquation) X(BlendFunc) X(Clear) X(ClearColor) X(ClearDepth) \
    X(ClearStencil) X(ClientActiveTexture) X(Color3f) X(Color4f) X(ColorMask) X(CullFace) X(DeleteSync) \
    X(DeleteTextures) X(DepthFunc) X(DepthMask) X(DepthRange) X(Disable) X(DisableClientState) \
    X(DisableVertexAttribArray) X(DrawBuffer) X(Enable) X(EnableClientState) X(EnableVertexAttribArray) X(End) \
    X(EndList) X(FenceSync) X(Finish) X(Flush) X(Fogf) X(Fogfv) X(Fogi) X(FrontFace) X(GenTextures) X(GetBooleanv) \
    X(GetDoublev) X(GetError) X(GetFloatv) X(GetFramebufferAttachmentParameteriv) X(GetIntegerv) \
    X(GetNamedBufferParameteriv) X(GetNamedRenderbufferParameteriv) X(GetString) X(GetTexLevelParameteriv) \
    X(GetTextureLevelParameteriv) X(GetTextureParameteriv) X(GetVertexAttribiv) X(Hint) X(IsBuffer) X(IsEnabled) \
    X(IsRenderbuffer) X(IsTexture) X(Lightfv) X(LineWidth) X(LoadIdentity) X(LoadMatrixd) X(LoadMatrixf) X(MatrixMode) \
    X(MultMatrixd) X(MultMatrixf) X(Normal3f) X(Ortho) X(PauseTransformFeedback) X(PixelStorei) X(PixelTransferf) \
    X(PixelTransferi) X(PointSize) X(PolygonMode) X(PopAttrib) X(PopClientAttrib) X(PopMatrix) X(PushAttrib) \
    X(PushClientAttrib) X(PushMatrix) X(ReadBuffer) X(ReadPixels) X(ResumeTransformFeedback) X(Scissor) X(ShadeModel) \
    X(StencilMask) X(TexCoord2f) X(TexEnvi) X(TexImage2D) X(TexParameteri) X(TexSubImage2D) X(UseProgram) X(Vertex2f) \
    X(Vertex3f) X(Viewport)
// clang-format on

namespace opengl {

struct Api {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name
#define AVSK_OPENGL_MEMBER(name) decltype(&gl##name) name;
    AVSK_OPENGL_API(AVSK_OPENGL_MEMBER)
#undef AVSK_OPENGL_MEMBER
};

} // namespace opengl

#endif
