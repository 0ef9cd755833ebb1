// Keeps the state of plugins while the host draws; see Context.h.
#include "Context.h"

namespace opengl {
namespace {

GLint Get(GLenum name) {
    GLint value = 0;
    Gl().GetIntegerv(name, &value);
    return value;
}

bool CanDraw() {
    return HasContext() && !IsBetweenBeginAndEnd() && !IsCompilingList() && Get(GL_RENDER_MODE) == GL_RENDER &&
           Get(GL_ATTRIB_STACK_DEPTH) < Get(GL_MAX_ATTRIB_STACK_DEPTH) &&
           Get(GL_CLIENT_ATTRIB_STACK_DEPTH) < Get(GL_MAX_CLIENT_ATTRIB_STACK_DEPTH);
}

constexpr GLenum kOff[] = {GL_ALPHA_TEST,
                           GL_COLOR_LOGIC_OP,
                           GL_COLOR_SUM,
                           GL_CULL_FACE,
                           GL_DEPTH_TEST,
                           GL_DITHER,
                           GL_FOG,
                           GL_FRAGMENT_PROGRAM_ARB,
                           GL_LIGHTING,
                           GL_LINE_SMOOTH,
                           GL_LINE_STIPPLE,
                           GL_POINT_SMOOTH,
                           GL_POLYGON_OFFSET_FILL,
                           GL_POLYGON_SMOOTH,
                           GL_POLYGON_STIPPLE,
                           GL_RASTERIZER_DISCARD,
                           GL_SAMPLE_ALPHA_TO_COVERAGE,
                           GL_SAMPLE_COVERAGE,
                           GL_SCISSOR_TEST,
                           GL_STENCIL_TEST,
                           GL_VERTEX_PROGRAM_ARB};

constexpr GLenum kOffInEachUnit[] = {GL_TEXTURE_1D,       GL_TEXTURE_2D,    GL_TEXTURE_3D,
                                     GL_TEXTURE_CUBE_MAP, GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T,
                                     GL_TEXTURE_GEN_R,    GL_TEXTURE_GEN_Q, GL_TEXTURE_RECTANGLE};

constexpr int kUnits = 8;
constexpr int kClipPlanes = 6;

void SetNeutral(const Api &gl) {
    for (const GLenum state : kOff)
        gl.Disable(state);
    for (int i = 0; i < kClipPlanes; ++i)
        gl.Disable(static_cast<GLenum>(GL_CLIP_PLANE0 + i));
    for (int unit = kUnits - 1; unit >= 0; --unit) {
        gl.ActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
        for (const GLenum state : kOffInEachUnit)
            gl.Disable(state);
    }
    gl.ClientActiveTexture(GL_TEXTURE0);
    gl.BindTexture(GL_TEXTURE_2D, 0);
    gl.BindSampler(0, 0);
    gl.TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    gl.Enable(GL_BLEND);
    gl.BlendEquation(GL_FUNC_ADD);
    gl.BlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    gl.ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    gl.DepthMask(GL_TRUE);
    gl.StencilMask(~0U);
    gl.DrawBuffer(GL_FRONT);
    gl.PolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    gl.ShadeModel(GL_SMOOTH);
    gl.LineWidth(1);
    gl.PointSize(1);
    gl.Color4f(1, 1, 1, 1);
}

void SetTransfer(const Api &gl) {
    gl.BindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    gl.PixelStorei(GL_UNPACK_ALIGNMENT, 4);
    for (const GLenum zero : {GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS,
                              GL_UNPACK_SKIP_PIXELS, GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_SKIP_IMAGES})
        gl.PixelStorei(zero, 0);
    gl.PixelTransferi(GL_MAP_COLOR, GL_FALSE);
    for (const GLenum scale : {GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE})
        gl.PixelTransferf(scale, 1);
    for (const GLenum bias : {GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS})
        gl.PixelTransferf(bias, 0);
}

constexpr float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// Loads matrices instead of pushing them: the plugin may have filled the stacks.
void Load(const Api &gl, const float *projection, const float *modelView, const float *texture) {
    gl.MatrixMode(GL_TEXTURE);
    gl.LoadMatrixf(texture);
    gl.MatrixMode(GL_PROJECTION);
    gl.LoadMatrixf(projection);
    gl.MatrixMode(GL_MODELVIEW);
    gl.LoadMatrixf(modelView);
}

} // namespace

OwnState::OwnState() : mIsSet(CanDraw()) {
    if (!mIsSet)
        return;
    const Api &gl = Gl();
    mProgram = Get(GL_CURRENT_PROGRAM);
    mPipeline = Get(GL_PROGRAM_PIPELINE_BINDING);
    mDrawFramebuffer = Get(GL_DRAW_FRAMEBUFFER_BINDING);
    mReadFramebuffer = Get(GL_READ_FRAMEBUFFER_BINDING);
    mPausesFeedback = Get(GL_TRANSFORM_FEEDBACK_ACTIVE) != 0 && Get(GL_TRANSFORM_FEEDBACK_PAUSED) == 0;
    if (mPausesFeedback)
        gl.PauseTransformFeedback();
    // The attributes contain those of the bound framebuffer.
    gl.BindFramebuffer(GL_FRAMEBUFFER, 0);
    gl.PushAttrib(GL_ALL_ATTRIB_BITS);
    gl.PushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    gl.UseProgram(0);
    gl.BindProgramPipeline(0);
    gl.ActiveTexture(GL_TEXTURE0);
    mSampler = Get(GL_SAMPLER_BINDING);
    gl.GetFloatv(GL_PROJECTION_MATRIX, mProjection);
    gl.GetFloatv(GL_MODELVIEW_MATRIX, mModelView);
    gl.GetFloatv(GL_TEXTURE_MATRIX, mTexture);
    SetNeutral(gl);
    SetTransfer(gl);
    // x from 0 to the width and y from 0 to the height become -1 to 1.
    const auto width = static_cast<float>(ScreenWidth());
    const auto height = static_cast<float>(ScreenHeight());
    const float pixels[16] = {2 / width, 0, 0, 0, 0, 2 / height, 0, 0, 0, 0, -1, 0, -1, -1, 0, 1};
    Load(gl, pixels, kIdentity, kIdentity);
    gl.Viewport(0, 0, ScreenWidth(), ScreenHeight());
}

OwnState::~OwnState() {
    if (!mIsSet)
        return;
    const Api &gl = Gl();
    gl.ActiveTexture(GL_TEXTURE0);
    gl.BindSampler(0, static_cast<GLuint>(mSampler));
    Load(gl, mProjection, mModelView, mTexture);
    gl.PopClientAttrib();
    gl.PopAttrib();
    gl.BindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(mDrawFramebuffer));
    gl.BindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(mReadFramebuffer));
    gl.UseProgram(static_cast<GLuint>(mProgram));
    gl.BindProgramPipeline(static_cast<GLuint>(mPipeline));
    if (mPausesFeedback)
        gl.ResumeTransformFeedback();
}

} // namespace opengl
