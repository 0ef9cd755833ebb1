// OpenGL's state and the services that change it; see Graphics.h. The interface leaves
// the meaning of the graphics state to the host. This one's seven numbers are: fog,
// number of texture units, lighting, alpha test, alpha blending, depth test, depth
// writing. Without a context they are kept for it, and texture numbers are counted.
// Owns what is kept.
#include "Graphics.h"

#include "OpenGL/Context.h"
#include "OwnTextures.h"
#include "ServiceTable.h"
#include "Simulator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <optional>
#include <vector>

namespace host {
namespace {

constexpr int kUnits = 8; // of OpenGL without programs

bool CanCall() { return opengl::HasContext() && !opengl::IsBetweenBeginAndEnd(); }

void Switch(GLenum state, bool isOn) { (isOn ? opengl::Gl().Enable : opengl::Gl().Disable)(state); }

struct GraphicsState {
    int fog, textureUnits, lighting, alphaTest, blending, depthTest, depthWriting;
};

// What plugins asked for at this draw code before there was a context, which then begins with it.
struct Requests {
    std::optional<GraphicsState> state;
    std::map<int, int> textures; // by unit
    int unit = 0;                // the last one
};
Requests gRequests;

void Apply(const GraphicsState &state) {
    const opengl::Api &gl = opengl::Gl();
    Switch(GL_FOG, state.fog != 0);
    for (int unit = kUnits - 1; unit >= 0; --unit) {
        gl.ActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        Switch(GL_TEXTURE_2D, unit < state.textureUnits);
    }
    Switch(GL_LIGHTING, state.lighting != 0);
    Switch(GL_LIGHT0, state.lighting != 0);
    Switch(GL_ALPHA_TEST, state.alphaTest != 0);
    gl.AlphaFunc(GL_GREATER, 0);
    Switch(GL_BLEND, state.blending != 0);
    gl.BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    Switch(GL_DEPTH_TEST, state.depthTest != 0);
    gl.DepthFunc(GL_LEQUAL);
    gl.DepthMask(state.depthWriting != 0 ? GL_TRUE : GL_FALSE);
}

void Bind(int texture, int unit) {
    opengl::Gl().ActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    opengl::Gl().BindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
}

// ---- Matrices, by columns

using Matrix = std::array<double, 16>;

Matrix Product(const Matrix &a, const Matrix &b) {
    Matrix product{};
    for (std::size_t column = 0; column < 4; ++column) {
        for (std::size_t row = 0; row < 4; ++row) {
            for (std::size_t i = 0; i < 4; ++i)
                product[column * 4 + row] += a[i * 4 + row] * b[column * 4 + i];
        }
    }
    return product;
}

// Pixels with y upward; z from -1 to 1.
Matrix PixelProjection(const Display &display) {
    return {2.0 / display.width, 0, 0, 0, 0, 2.0 / display.height, 0, 0, 0, 0, -1, 0, -1, -1, 0, 1};
}

constexpr Matrix kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

double Radians(double degrees) { return degrees * std::numbers::pi / 180; }

Matrix CameraProjection(const Display &display, const Camera::Position &camera) {
    constexpr double kFieldOfView = 45; // degrees from the lower to the upper edge
    constexpr double kNear = 1;
    constexpr double kFar = 100'000;
    const double zoom = camera[6] > 0 ? static_cast<double>(camera[6]) : 1; // plugins may set anything
    const double scale = zoom / std::tan(Radians(kFieldOfView / 2));
    const double depth = kNear - kFar;
    return {scale * display.height / display.width,
            0,
            0,
            0,
            0,
            scale,
            0,
            0,
            0,
            0,
            (kFar + kNear) / depth,
            -1,
            0,
            0,
            2 * kFar * kNear / depth,
            0};
}

// From local metres (x east, y up, z south) to the camera, which looks along -z.
Matrix CameraView(const Camera::Position &camera) {
    const double pitch = Radians(camera[3]);
    const double heading = Radians(camera[4]);
    const double roll = Radians(camera[5]);
    const Matrix rolled{
        std::cos(roll), std::sin(roll), 0, 0, -std::sin(roll), std::cos(roll), 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const Matrix pitched{1, 0, 0, 0, 0, std::cos(pitch), -std::sin(pitch), 0, 0, std::sin(pitch), std::cos(pitch),
                         0, 0, 0, 0, 1};
    const Matrix turned{std::cos(heading), 0, -std::sin(heading), 0, 0, 1, 0, 0,
                        std::sin(heading), 0, std::cos(heading),  0, 0, 0, 0, 1};
    Matrix moved = kIdentity;
    moved[12] = -camera[0];
    moved[13] = -camera[1];
    moved[14] = -camera[2];
    return Product(Product(rolled, pitched), Product(turned, moved));
}

// Codes of the phases 0 to 30 and 101.
bool Is3D(int drawCode) {
    constexpr int kLastOfScene = 12;
    constexpr int kBefore101 = 21;
    return drawCode <= kLastOfScene || drawCode == kBefore101 || drawCode == kBefore101 + 1;
}

// ---- Textures

void MakeOwnTexture(int number) {
    const opengl::Api &gl = opengl::Gl();
    const Image image = OwnTexture(number);
    gl.BindTexture(GL_TEXTURE_2D, static_cast<GLuint>(number));
    gl.TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image.width, image.height, 0, GL_RGBA, GL_UNSIGNED_BYTE, image.Bytes());
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.BindTexture(GL_TEXTURE_2D, 0);
}

// A new context gives the numbers from 1 on, in order: also those that plugins have already.
void FillContext() {
    Simulator &simulator = Enter();
    Display &display = simulator.display;
    std::vector<GLuint> given(static_cast<std::size_t>(display.lastTexture));
    opengl::Gl().GenTextures(display.lastTexture, given.data());
    for (int number = 1; number <= Display::kOwnTextures; ++number)
        MakeOwnTexture(number);
    display.MakeLayerTexture();
    const Requests requests = gRequests;
    BeginDrawCode(simulator, display.drawCode);
    if (requests.state)
        Apply(*requests.state);
    for (const auto &[unit, texture] : requests.textures)
        Bind(texture, unit);
    opengl::Gl().ActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(requests.unit));
}

// ---- Services

void SetGraphicsState(int fog, int textureUnits, int lighting, int alphaTest, int blending, int depthTest,
                      int depthWriting) {
    Enter();
    const GraphicsState state{fog, textureUnits, lighting, alphaTest, blending, depthTest, depthWriting};
    if (!opengl::HasContext())
        gRequests.state = state;
    else if (CanCall())
        Apply(state);
}

void BindTexture2d(int texture, int unit) {
    Enter();
    if (!opengl::HasContext()) {
        gRequests.textures[unit] = texture;
        gRequests.unit = unit;
    } else if (CanCall()) {
        Bind(texture, unit);
    }
}

void GenerateTextureNumbers(int *textures, int count) {
    Display &display = Enter().display;
    for (int i = 0; textures && i < count; ++i) {
        GLuint number = 0;
        if (opengl::HasContext())
            opengl::Gl().GenTextures(1, &number);
        else
            number = static_cast<GLuint>(++display.lastTexture);
        textures[i] = static_cast<int>(number);
    }
}

// 0 means no texture.
int GetTexture(int texture) {
    Enter();
    return texture >= 1 && texture <= Display::kOwnTextures ? texture : 0;
}

} // namespace

void ServeOpenGL() {
    gRequests = {};
    opengl::OnContext(FillContext);
}

void BeginDrawCode(Simulator &simulator, int drawCode) {
    const Display &display = simulator.display;
    simulator.display.drawCode = drawCode;
    if (drawCode != 0)
        gRequests = {};
    if (drawCode == 0 || !CanCall())
        return;
    const bool is3D = Is3D(drawCode);
    const Camera::Position &camera = simulator.camera.Used();
    const opengl::Api &gl = opengl::Gl();
    gl.Viewport(0, 0, display.width, display.height);
    gl.MatrixMode(GL_PROJECTION);
    gl.LoadMatrixd(is3D ? CameraProjection(display, camera).data() : PixelProjection(display).data());
    gl.MatrixMode(GL_MODELVIEW);
    gl.LoadMatrixd(is3D ? CameraView(camera).data() : kIdentity.data());
    const int depth = is3D ? 1 : 0;
    Apply({.fog = 0,
           .textureUnits = 0,
           .lighting = 0,
           .alphaTest = 0,
           .blending = 1,
           .depthTest = depth,
           .depthWriting = depth});
    gl.BindTexture(GL_TEXTURE_2D, 0);
    gl.Color4f(1, 1, 1, 1);
}

void FillGraphicsSlots(AVSKHostCallbacks &table) {
    table.setGraphicsState = SetGraphicsState;
    table.bindTexture2d = BindTexture2d;
    table.generateTextureNumbers = GenerateTextureNumbers;
    table.getTexture = GetTexture;
}

} // namespace host
