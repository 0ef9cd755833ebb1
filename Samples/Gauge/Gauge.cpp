// Gauge: a compass on the panel, drawn with OpenGL. The dial is a texture, the needle
// is a triangle that a dataref turns, and the texts are drawn by the library.
#include <AVSK/AVSK.h>

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

constexpr float kRadius = 90;  // pixels
constexpr int kFont = 1;       // the simulator defines the fonts; this one is monospaced
constexpr int kDialSize = 256; // pixels of the texture

AVSKDataRef gHeading = nullptr;
int gDial = 0; // texture number

// One pixel of the dial, 1 at the rim: red, green, blue and opacity.
std::array<float, 4> DialAt(float x, float y) {
    constexpr float kTick = 0.5235988F; // an angle between two ticks
    constexpr float kEdge = kDialSize / 2.0F;
    const float radius = std::hypot(x, y);
    const float angle = std::atan2(x, y);
    const float toTick = radius * std::abs(std::remainder(angle, kTick));
    const bool isRim = radius > 0.93F;
    const bool isTick = radius > 0.78F && radius < 0.88F && toTick < 0.015F;
    const float light = isTick ? 0.9F : isRim ? 0.5F - 0.2F * x + 0.2F * y : 0.1F;
    return {light, light, light, std::clamp((1 - radius) * kEdge, 0.0F, 1.0F)};
}

void MakeDial() {
    std::vector<float> pixels;
    for (int row = 0; row < kDialSize; ++row) {
        for (int column = 0; column < kDialSize; ++column) {
            const auto place = [](int i) { return 2 * (static_cast<float>(i) + 0.5F) / kDialSize - 1; };
            const std::array<float, 4> pixel = DialAt(place(column), place(row));
            pixels.insert(pixels.end(), pixel.begin(), pixel.end());
        }
    }
    // The simulator must know which numbers are in use and what is bound.
    AVSKGenerateTextureNumbers(&gDial, 1);
    AVSKBindTexture2d(gDial, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kDialSize, kDialSize, 0, GL_RGBA, GL_FLOAT, pixels.data());
}

void DrawDial() {
    AVSKSetGraphicsState(0, 1, 0, 0, 1, 0, 0); // one texture, and blending
    AVSKBindTexture2d(gDial, 0);
    glColor4f(1, 1, 1, 1);
    glBegin(GL_QUADS);
    for (const auto &[s, t] : {std::array{0.0F, 0.0F}, {1.0F, 0.0F}, {1.0F, 1.0F}, {0.0F, 1.0F}}) {
        glTexCoord2f(s, t);
        glVertex2f((2 * s - 1) * kRadius, (2 * t - 1) * kRadius);
    }
    glEnd();
}

void DrawNeedle(float heading) {
    AVSKSetGraphicsState(0, 0, 0, 0, 1, 0, 0); // no texture
    glPushMatrix();
    glRotatef(-heading, 0, 0, 1); // OpenGL turns counterclockwise
    glColor3f(1, 0.55F, 0.1F);
    glBegin(GL_TRIANGLES);
    glVertex2f(-5, -20);
    glVertex2f(5, -20);
    glVertex2f(0, kRadius * 0.75F);
    glEnd();
    glPopMatrix();
}

// Phase 50 is the panel, which has two dimensions: pixels with y upward.
int Draw(int /*phase*/, int /*isBefore*/, void * /*refcon*/) {
    constexpr int kDigits = 3;
    int width = 0;
    int height = 0;
    int charWidth = 0;
    int charHeight = 0;
    AVSKGetScreenSize(&width, &height);
    AVSKGetFontDimensions(kFont, &charWidth, &charHeight, nullptr);
    const int x = width - 110;
    const int y = 140;
    const float heading = AVSKGetDataf(gHeading);
    std::array<float, 3> white{1, 1, 1};
    char north[] = "N";

    if (gDial == 0)
        MakeDial();
    glPushMatrix(); // what is changed is restored: other plugins use the same context
    glTranslatef(static_cast<float>(x), static_cast<float>(y), 0);
    DrawDial();
    AVSKDrawString(white.data(), x - charWidth / 2, y + 55, north, nullptr, kFont);
    DrawNeedle(heading);
    AVSKDrawNumber(white.data(), x - kDigits * charWidth / 2, y - 50, double{heading}, kDigits, 0, 0, kFont);
    glPopMatrix();
    return 1;
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "Gauge");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.gauge");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "A compass drawn with OpenGL.");
    return 1;
}

void AVPluginStop() {}

int AVPluginEnable() {
    gHeading = AVSKFindDataRef("sim/flight/heading");
    AVSKRegisterDrawCallback(Draw, 50, 1, nullptr);
    return 1;
}

void AVPluginDisable() {
    AVSKUnregisterDrawCallback(Draw, 50, 1, nullptr);
    const auto dial = static_cast<GLuint>(gDial);
    glDeleteTextures(1, &dial); // the library does not know textures: nobody else deletes them
    gDial = 0;
}

void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
