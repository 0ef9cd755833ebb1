// The OpenGL of plugins: the library that they find, what their calls do with and
// without Mesa, and how the host draws among them.
#include "RunAvsk.h"

#include "OpenGL/Context.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <GL/glx.h>
#include <dlfcn.h>

namespace {

std::string Contents(const std::string &file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// ---- The library

// Those of the registry and, where there is one, of the system's library.
std::set<std::string> KnownNames() {
    std::set<std::string> names;
    for (const char *file : {"gl.xml", "glx.xml"}) {
        const std::string text = Contents(std::string(AVSK_TEST_REGISTRY "/") + file);
        const std::regex prototype("<proto[^\n]*<name>(\\w+)</name></proto>");
        for (std::sregex_iterator match(text.begin(), text.end(), prototype), end; match != end; ++match)
            names.insert((*match)[1]);
    }
    std::FILE *const nm = popen("nm -D --defined-only /usr/lib/x86_64-linux-gnu/libGL.so.1 2>/dev/null", "r");
    char name[200];
    while (nm && std::fscanf(nm, "%*s %*s %199s", name) == 1) {
        if (std::string(name).starts_with("gl"))
            names.insert(name);
    }
    if (nm)
        pclose(nm);
    return names;
}

TEST(OpenGLLibrary, ExportsEveryFunctionAndUnservedOnesAreNeutral) {
    void *const library = dlopen(AVSK_TEST_OPENGL, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto find = reinterpret_cast<void *(*)(const char *)>(dlsym(library, "glXGetProcAddress"));
    const std::set<std::string> names = KnownNames();
    EXPECT_GT(names.size(), 3000U);
    for (const std::string &name : names) {
        void *const function = dlsym(library, name.c_str());
        EXPECT_NE(function, nullptr) << name;
        EXPECT_EQ(find(name.c_str()), function) << name;
        if (!function || name == "glGetPathLengthNV" || name.starts_with("glXGetProcAddress")) // st(0); not neutral
            continue;
        const auto result = reinterpret_cast<std::uint64_t (*)()>(function)();
        const bool isText = static_cast<std::uint32_t>(result) != 0;
        EXPECT_TRUE(!isText || *reinterpret_cast<const char *>(static_cast<std::uintptr_t>(result)) == '\0') << name;
        EXPECT_EQ(isText, std::regex_match(name, std::regex("glGetStringi?|glX.*String.*"))) << name;
    }
    EXPECT_EQ(find("glNoSuchFunction"), nullptr);
    EXPECT_EQ(find(""), nullptr);
}

// ---- Runs

struct Flight {
    const char *name;
    bool needsMesa;
    const char *environment;
    const char *options;
    int status;
    std::vector<std::string> said; // in any order

    friend std::ostream &operator<<(std::ostream &out, const Flight &run) { return out << run.name; }
};

struct OpenGLRun : testing::TestWithParam<Flight> {};

TEST_P(OpenGLRun, SaysWhatTheCallsDid) {
    const Flight &run = GetParam();
    const std::string trace = testing::TempDir() + "opengl_" + run.name + ".txt";
    const std::string mesa = run.needsMesa ? "" : "AVSK_OPENGL_FOLDER=/nonexistent ";
    auto [status, said] = RunAvsk("run --root " AVSK_TEST_OPENGL_ROOT " --frames 2 " + std::string(run.options) + trace,
                                  mesa + run.environment);
    if (const auto at = said.find("avsk: OpenGL draws nothing"); run.needsMesa && at != std::string::npos)
        GTEST_SKIP() << said.substr(at, said.find('\n', at) - at);
    said += Contents(trace);
    EXPECT_EQ(status, run.status) << said;
    for (const std::string &piece : run.said)
        EXPECT_NE(said.find(piece), std::string::npos) << "no '" << piece << "' in\n" << said;
}

const std::string kTexImage =
    "glTexImage2D(target=GL_TEXTURE_2D, level=0, internalformat=GL_RGBA8, width=64, height=64, "
    "border=0, format=GL_RGBA, type=GL_UNSIGNED_BYTE, pixels=0x10)";

INSTANTIATE_TEST_SUITE_P(
    Ways, OpenGLRun,
    testing::Values(
        Flight{"Missing",
               false,
               "",
               "--profile --trace ",
               0,
               {"avsk: OpenGL draws nothing: AVSK_OPENGL_FOLDER, '/nonexistent', has no OSMesa that can be opened; "
                "'./dev setup opengl' brings one\n",
                "DrawsOpenGL: renderer ''\n", "DrawsOpenGL > OpenGL  glGetString(name=GL_RENDERER) = \"\"",
                "  DrawsOpenGL > OpenGL  glBegin(mode=GL_TRIANGLES)  [", "glVertex2f(x=0.5, y=0)",
                "glTexParameteri(target=GL_TEXTURE_2D, pname=GL_TEXTURE_MIN_FILTER, param=GL_LINEAR)",
                "glClear(mask=GL_DEPTH_BUFFER_BIT|GL_COLOR_BUFFER_BIT)", "  OpenGL in AVSKDrawCallback_f Draw\n"}},
        Flight{"Filtered",
               false,
               "",
               "--trace-function 'glv*' --trace-function glBegn --trace ",
               1,
               {"glVertex2f(x=0, y=0.5)", "no function is called 'glBegn'", "did you mean 'glBegin'"}},
        Flight{"Served", true, "", "--trace ", 0, {"DrawsOpenGL: renderer '", "pe (LLVM"}},
        Flight{"Thread",
               true,
               "AVSK_TEST_OPENGL=thread",
               "--trace ",
               0,
               {"DrawsOpenGL: neutral\n", " > OpenGL  glIsEnabled, which is not the host's thread"}},
        Flight{"Crash",
               true,
               "AVSK_TEST_OPENGL=crash",
               "--log ",
               3,
               {"avsk: plugin 'DrawsOpenGL' died of SIGSEGV", kTexImage + ", called in AVSKDrawCallback_f Draw\n"}}),
    [](const auto &run) { return run.param.name; });

TEST(OpenGLCheck, TheVerdictSaysWhatCouldNotBeJudged) {
    const std::string file = testing::TempDir() + "opengl_verdict.json";
    const auto [status, said] =
        RunAvsk("check --scenario frames " AVSK_TEST_OPENGL_ROOT " --json " + file, "AVSK_OPENGL_FOLDER=/nonexistent");
    EXPECT_EQ(status, 0) << said;
    const std::string note = "The rules about OpenGL were not judged. OpenGL draws nothing: ";
    EXPECT_NE(said.find("\n  " + note), std::string::npos) << said;
    EXPECT_NE(Contents(file).find('"' + note), std::string::npos);
}

// ---- The context

constexpr int kWidth = 64;
constexpr int kHeight = 32;

struct OpenGLContext : testing::Test {
    OpenGLContext() { opengl::Prepare(kWidth, kHeight); }
    ~OpenGLContext() override { opengl::Finish(); }
    void SetUp() override {
        if (!opengl::MakeContext())
            GTEST_SKIP() << opengl::Missing();
        opengl::BeginFrame(/*isPictured=*/true);
    }

    static std::array<int, 3> PixelAt(int x, int y) { // y downward
        const std::uint32_t pixel = opengl::ReadScreen()[y * kWidth + x];
        const auto byte = [pixel](int shift) { return static_cast<int>(pixel >> shift & 0xFF); };
        return {byte(0), byte(8), byte(16)};
    }
};

void DrawLeftHalf() {
    const opengl::Api &gl = opengl::Gl();
    gl.Color4f(0, 1, 0, 1);
    gl.Begin(GL_QUADS);
    for (const auto &[x, y] : {std::array{0, 0}, {kWidth / 2, 0}, {kWidth / 2, kHeight}, {0, kHeight}})
        gl.Vertex2f(static_cast<float>(x), static_cast<float>(y));
    gl.End();
}

// All state that the host changes, as numbers.
std::map<GLenum, std::vector<float>> State() {
    std::map<GLenum, std::vector<float>> state;
    for (const GLenum name : {GL_CURRENT_COLOR,
                              GL_CURRENT_PROGRAM,
                              GL_DRAW_FRAMEBUFFER_BINDING,
                              GL_READ_FRAMEBUFFER_BINDING,
                              GL_MATRIX_MODE,
                              GL_MODELVIEW_MATRIX,
                              GL_PROJECTION_MATRIX,
                              GL_TEXTURE_MATRIX,
                              GL_VIEWPORT,
                              GL_BLEND_SRC_RGB,
                              GL_BLEND_DST_ALPHA,
                              GL_BLEND_EQUATION,
                              GL_COLOR_WRITEMASK,
                              GL_DEPTH_WRITEMASK,
                              GL_STENCIL_WRITEMASK,
                              GL_DRAW_BUFFER,
                              GL_ACTIVE_TEXTURE,
                              GL_POLYGON_MODE,
                              GL_UNPACK_ALIGNMENT,
                              GL_UNPACK_ROW_LENGTH,
                              GL_RED_SCALE,
                              GL_ATTRIB_STACK_DEPTH,
                              GL_MODELVIEW_STACK_DEPTH,
                              GL_TEXTURE_BINDING_2D,
                              GL_CLIENT_ACTIVE_TEXTURE,
                              GL_SAMPLER_BINDING,
                              GL_ALPHA_TEST,
                              GL_BLEND,
                              GL_CLIP_PLANE2,
                              GL_COLOR_LOGIC_OP,
                              GL_CULL_FACE,
                              GL_DEPTH_TEST,
                              GL_FOG,
                              GL_LIGHTING,
                              GL_SCISSOR_TEST,
                              GL_STENCIL_TEST,
                              GL_TEXTURE_2D,
                              GL_TEXTURE_GEN_S}) {
        std::vector<float> &values = state[name];
        values.resize(16);
        glGetFloatv(name, values.data());
    }
    return state;
}

TEST_F(OpenGLContext, OwnDrawingSucceedsInAnyStateAndLeavesIt) {
    GLuint framebuffer = 0;
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glGenFramebuffers(1, &framebuffer);
    glActiveTexture(GL_TEXTURE3);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    for (const GLenum mode : {GL_TEXTURE, GL_PROJECTION, GL_MODELVIEW}) {
        glMatrixMode(mode);
        glScalef(3, 2, 1);
        for (int i = 0; i < 40; ++i) // more than fit
            glPushMatrix();
    }
    for (const GLenum state :
         {GL_ALPHA_TEST, GL_CLIP_PLANE2, GL_COLOR_LOGIC_OP, GL_CULL_FACE, GL_DEPTH_TEST, GL_FOG, GL_LIGHTING,
          GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_TEXTURE_2D, GL_TEXTURE_GEN_S, GL_POLYGON_STIPPLE})
        glEnable(state);
    glAlphaFunc(GL_NEVER, 0);
    glCullFace(GL_FRONT_AND_BACK);
    glDepthFunc(GL_NEVER);
    glStencilFunc(GL_NEVER, 0, 0);
    glLogicOp(GL_CLEAR);
    glScissor(0, 0, 0, 0);
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 7);
    glPixelTransferf(GL_RED_SCALE, 5);
    glViewport(1, 2, 3, 4);
    while (glGetError() != GL_NO_ERROR) {
    }
    glEnable(0x1234); // this error stays
    const auto before = State();
    {
        const opengl::OwnState state;
        ASSERT_TRUE(state.IsSet());
        DrawLeftHalf();
    }
    EXPECT_EQ(State(), before);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(PixelAt(kWidth / 2 - 1, 0), (std::array{0, 255, 0}));
    EXPECT_EQ(PixelAt(kWidth / 2, kHeight - 1), (std::array{0, 0, 0}));
}

TEST_F(OpenGLContext, OwnDrawingWaitsWhileItCannotBeDone) {
    const auto isSet = [] { return opengl::OwnState().IsSet(); };
    EXPECT_TRUE(isSet());
    glBegin(GL_QUADS);
    EXPECT_FALSE(isSet());
    glEnd();
    EXPECT_TRUE(isSet());
    glBegin(0x777); // refused, so nothing has begun
    EXPECT_TRUE(isSet());
    glNewList(glGenLists(1), GL_COMPILE);
    EXPECT_FALSE(isSet());
    glEndList();
    GLuint selected[8];
    glSelectBuffer(8, selected);
    glRenderMode(GL_SELECT);
    EXPECT_FALSE(isSet());
    glRenderMode(GL_RENDER);
    glGetError();
    for (int i = 0; i < 40; ++i)
        glPushAttrib(GL_ENABLE_BIT);
    EXPECT_FALSE(isSet());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_STACK_OVERFLOW));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(OpenGLContext, FramesThatNobodySeesKeepStateAndAreDrawnAgainOnceAPluginReadsPixels) {
    static int flushes = 0;
    opengl::BeforeDrawing([] { ++flushes; });
    glRectf(-1, -1, 1, 1); // white, all
    glBegin(GL_TRIANGLES);
    glVertex2f(0, 0);
    glEnd();
    EXPECT_EQ(flushes, 2) << "a flush for the rectangle and one for glBegin";
    EXPECT_EQ(PixelAt(3, 3), (std::array{255, 255, 255}));
    opengl::BeginFrame(/*isPictured=*/false);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], kWidth);
    glRectf(-1, -1, 1, 1);
    unsigned char pixel[4] = {};
    glReadPixels(40, 20, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    opengl::BeginFrame(/*isPictured=*/false);
    glRectf(-1, -1, 1, 1);
    glReadPixels(40, 20, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    EXPECT_EQ(pixel[1], 255);
    opengl::BeginFrame(/*isPictured=*/true);
    EXPECT_EQ(PixelAt(40, 20), (std::array{0, 0, 0})) << "each frame begins black";
}

} // namespace
