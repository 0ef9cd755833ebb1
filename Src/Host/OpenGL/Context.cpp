// The context of Mesa and its screen; see Context.h. Owns both.
#include "Context.h"

#include "Calls.h"
#include "Mesa.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace opengl {
namespace {

struct Screen {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; // empty without a context
    bool isWhole = false;              // else Mesa draws into one pixel
};

Screen gScreen;
Mesa::Context gContext = nullptr;
Api gApi{};
std::string gMissing;
void (*gMade)() = nullptr;
void (*gTellMissing)() = nullptr;
int gWholeFrames = 0; // to come, this one included
bool gIsRead = false; // a plugin reads pixels, so every frame is drawn

// Whether the screen is what Mesa draws into, or only a pixel of it.
void SetScreen(bool isWhole) {
    if (isWhole == gScreen.isWhole)
        return;
    const int width = isWhole ? gScreen.width : 1;
    const int height = isWhole ? gScreen.height : 1;
    OpenMesa().makeCurrent(gContext, gScreen.pixels.data(), GL_UNSIGNED_BYTE, width, height);
    gScreen.isWhole = isWhole;
}

void Clear() {
    const OwnState state;
    if (!state.IsSet())
        return;
    gApi.ClearColor(0, 0, 0, 1);
    gApi.ClearDepth(1);
    gApi.ClearStencil(0);
    gApi.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

void DrawEveryFrame() {
    gIsRead = true;
    if (!IsBetweenBeginAndEnd() && !gScreen.isWhole) {
        SetScreen(true);
        Clear();
    }
    UpdateSlots();
}

void ServeFirstCall() {
    if (!MakeContext() && gTellMissing)
        gTellMissing();
}

// The script beside an installed avsk, or else the one of the project.
std::string SetUpCommand() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path script = program.parent_path().parent_path() / AVSK_PRIVATE_FOLDER / "setup-opengl";
    return std::filesystem::exists(script, error) ? script.string() : "./dev setup opengl";
}

void *Find(const char *name) { return reinterpret_cast<void *>(OpenMesa().find(name)); }

} // namespace

void Prepare(int width, int height) {
    gScreen.width = width;
    gScreen.height = height;
    gHandlers.first = ServeFirstCall;
    TakeCalls();
#ifdef __SANITIZE_ADDRESS__
    OpenMesa(); // before plugins are loaded, whose symbols Mesa would use: here it has no scope of its own
#endif
}

void Finish() {
    gHandlers = {};
    SetFunctions(nullptr);
    if (gContext) {
        OpenMesa().makeCurrent(nullptr, nullptr, 0, 0, 0); // Mesa crashes if it destroys the current context
        OpenMesa().destroy(gContext);
    }
    gContext = nullptr;
    gScreen = {};
    gWholeFrames = 0;
    gIsRead = false;
}

const std::string &Missing() {
    if (!OpenMesa().fault.empty())
        gMissing = "OpenGL draws nothing: " + OpenMesa().fault + "; '" + SetUpCommand() + "' brings one";
    return gMissing;
}

int ScreenWidth() { return gScreen.width; }
int ScreenHeight() { return gScreen.height; }

void OnMissing(void (*tell)()) { gTellMissing = tell; }

bool HasContext() { return gContext != nullptr; }

bool MakeContext() {
    const Mesa &mesa = OpenMesa();
    if (gContext || !mesa.fault.empty())
        return gContext != nullptr;
    constexpr int kDepthBits = 24;
    constexpr int kStencilBits = 8;
    constexpr int kAccumulationBits = 16;
    gHandlers.first = nullptr;
    gContext = mesa.create(GL_RGBA, kDepthBits, kStencilBits, kAccumulationBits, nullptr);
    if (!gContext)
        return false;
    gScreen.pixels.resize(static_cast<std::size_t>(gScreen.width) * static_cast<std::size_t>(gScreen.height));
#define AVSK_OPENGL_FIND(name) gApi.name = reinterpret_cast<decltype(gApi.name)>(Find("gl" #name));
    AVSK_OPENGL_API(AVSK_OPENGL_FIND)
#undef AVSK_OPENGL_FIND
    // First the whole: this determines the viewport that plugins find.
    SetScreen(true);
    constexpr int kBottomRowFirst = 0x11; // OSMESA_Y_UP
    mesa.pixelStore(kBottomRowFirst, GL_FALSE);
    gHandlers.reading = DrawEveryFrame;
    SetFunctions(mesa.find);
    Clear();
    if (gMade)
        gMade();
    return true;
}

void OnContext(void (*made)()) { gMade = made; }

const Api &Gl() { return gApi; }

void BeginFrame(bool isPictured) {
    if (!gContext || IsBetweenBeginAndEnd())
        return;
    // Mesa keeps what the last frame used, deleted textures too, until its commands are executed. glFlush() waits for
    // that and for the pixels, a fence only begins it.
    if (gScreen.isWhole)
        gApi.DeleteSync(gApi.FenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0));
    else
        gApi.Flush();
    // A change of the screen's size costs as much as a whole frame, and every second frame is often pictured.
    constexpr int kWholeFrames = 2; // from a picture on
    gWholeFrames = isPictured ? kWholeFrames : std::max(gWholeFrames - 1, 0);
    SetScreen(gWholeFrames > 0 || gIsRead);
    if (gScreen.isWhole)
        Clear();
}

void BeforeDrawing(void (*flush)()) {
    if (flush == gHandlers.drawing)
        return;
    gHandlers.drawing = flush;
    UpdateSlots();
}

bool IsScreenRead() { return gIsRead; }

bool IsCompilingList() {
    GLint list = 0;
    if (gContext && !IsBetweenBeginAndEnd())
        gApi.GetIntegerv(GL_LIST_INDEX, &list);
    return list != 0;
}

const std::uint32_t *ReadScreen() {
    if (!IsBetweenBeginAndEnd()) {
        // Copies Mesa's image into the pixels, if its framebuffer is bound. Independent of other state.
        GLint framebuffer = 0;
        gApi.GetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
        gApi.BindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
        gApi.Finish();
        gApi.BindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
    }
    return gScreen.pixels.data();
}

} // namespace opengl
