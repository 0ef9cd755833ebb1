// OpenGL for plugins: their calls of libGL.so.1 reach Mesa, which draws into memory
// of the screen's size. Plugins without OpenGL cost nothing: Mesa is opened at
// the first call of a plugin.
#ifndef AVSK_HOST_OPENGL_CONTEXT_H
#define AVSK_HOST_OPENGL_CONTEXT_H

#include "Api.h"

#include <cstdint>
#include <string>

namespace opengl {

// To be called before plugins start, with the screen's size in pixels. Opens nothing yet.
void Prepare(int width, int height);
// To be called when plugins are unloaded. Destroys the context.
void Finish();

// Whether a plugin has called a function.
bool IsUsed();
// Calls of plugins. Those that went straight to Mesa are not counted.
unsigned long CountedCalls();
// One sentence: what is missing and which command brings it; empty if nothing is missing. Opens Mesa.
const std::string &Missing();

// The screen's size, as it was prepared.
int ScreenWidth();
int ScreenHeight();

// Called at the first call of a plugin if Mesa is missing. Null for none.
void OnMissing(void (*tell)());

bool HasContext();
// False without Mesa. A plugin's first call does it too.
bool MakeContext();
// Called once, when the context was made. Null for none.
void OnContext(void (*made)());
// Mesa's functions for the host's own drawing. Only with a context.
const Api &Gl();

// If someone looks at the frame, the pixels are all drawn, into a screen that is black at first. Else the screen is a
// single pixel, which costs next to nothing; all other state stays as it was. After a plugin has called a function
// that reads pixels, every frame is drawn.
void BeginFrame(bool isPictured);
// Whether a plugin has called a function that reads pixels.
bool IsScreenRead();
// Called before each call of a plugin that may draw or read pixels, outside of glBegin and glEnd. Null for none.
void BeforeDrawing(void (*flush)());

// Also true for a glBegin that Mesa refuses because of something else than its mode.
bool IsBetweenBeginAndEnd();
bool IsCompilingList();

// Exists while the host draws. Keeps the state of plugins and sets a neutral one: pixels as coordinates with y upward,
// the screen's framebuffer, no program, texture, test or light, all masks, and blending over what is there
// by premultiplied alpha. No set errors change.
class OwnState {
  public:
    OwnState();
    ~OwnState();
    OwnState(const OwnState &) = delete;
    OwnState &operator=(const OwnState &) = delete;

    // False, and nothing is changed, if the host cannot draw now: there is no context, or the plugin is between glBegin
    // and glEnd, compiles a list, selects, or has filled an attribute stack.
    bool IsSet() const { return mIsSet; }

  private:
    bool mIsSet = false;
    int mProgram = 0;
    int mPipeline = 0;
    int mDrawFramebuffer = 0;
    int mReadFramebuffer = 0;
    int mSampler = 0;
    bool mPausesFeedback = false;
    float mProjection[16];
    float mModelView[16];
    float mTexture[16];
};

// The screen: width * height pixels, red in the lowest byte, the top row first. Only with a context, in a frame that is
// drawn. Valid until the next frame.
const std::uint32_t *ReadScreen();

} // namespace opengl

#endif
