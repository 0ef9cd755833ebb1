// The rules about calls of OpenGL; OpenGLChecks.cpp finds what violates them.
#ifndef AVSK_HOST_RULES_OPENGL_RULES_H
#define AVSK_HOST_RULES_OPENGL_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kOpenGLRules[] = {
    {"gl-error", Level::Error, "the error {error} is left behind, made by {call}",
     "Correct the call; if it may fail, ask for the error with glGetError() right after it.",
     "OpenGL ignores a call that it reports as an error, and keeps the first error until somebody asks for it. The "
     "host or another plugin asks next and takes the error for its own. In a checked run the error is asked for after "
     "each call, so the finding names the call; the plugin's own glGetError() still returns it. The errors of calls "
     "between glBegin() and glEnd() are known at glEnd() only. A checked run clears what was left."},
    {"gl-begin-end", Level::Error, "{begin} is not ended", "End what was begun before the callback returns.",
     "Between glBegin() and glEnd() nearly every call is an error, and while a list is compiled calls are recorded and "
     "not executed. Nothing that the host and other plugins draw appears from here on. A checked run ends what was "
     "begun."},
    {"gl-attributes", Level::Error, "{stack} is {after} deep and was {before}",
     "Call glPopAttrib() once for each glPushAttrib(), and glPopClientAttrib() for each glPushClientAttrib(), on each "
     "path through the callback.",
     "These stacks hold as few as 16 entries. What a callback leaves there in each frame soon fills them, and then "
     "nobody can save attributes any more. What it pops too often belongs to somebody else. A checked run restores the "
     "depth."},
    {"gl-matrix-mode", Level::Error, "the matrix mode is {after} and was {before}",
     "Call glMatrixMode(GL_MODELVIEW) before the callback returns, or restore the mode that it found.",
     "The next glLoadMatrix(), glTranslate() or glPushMatrix() of the host or of another plugin changes the wrong "
     "matrix, and what it draws is displaced. A checked run restores the mode."},
    {"gl-matrix-depth", Level::Error, "{stack} is {after} deep and was {before}",
     "Call glPopMatrix() once for each glPushMatrix(), with the same matrix mode, on each path through the callback.",
     "The stacks of projection and texture matrices hold as few as two. A matrix that stays there displaces what "
     "others draw, and a full stack refuses theirs. A checked run restores the depth."},
    {"gl-texture-binding", Level::Warning, "{what} is {after}, and the host expects {before}",
     "Bind textures with AVSKBindTexture2d(), or restore the binding that the callback found.",
     "The host keeps the texture of each unit, and does not bind one again that it believes to be bound. After a "
     "glBindTexture() or glActiveTexture() that it does not know of, the host and other plugins draw with the wrong "
     "texture. Creating a texture changes the binding too. A checked run restores it."},
    {"gl-graphics-state", Level::Warning, "{what} is {after}, and the host expects it {before}",
     "Switch it with AVSKSetGraphicsState(), or restore what the callback found.",
     "The host keeps fog, texturing of each unit, lighting, alpha test, blending, depth test and depth writing, and "
     "does not set again what it believes to be set. After a glEnable() or glDisable() that it does not know of, "
     "others draw with the wrong state. glPushAttrib() and glPopAttrib() around the drawing are no fault. A checked "
     "run restores the state."},
    {"gl-client-arrays", Level::Error, "{what} is {after} and was {before}",
     "Call glDisableClientState() or glDisableVertexAttribArray() for each array, and bind buffer 0 and vertex array "
     "0, before the callback returns.",
     "The next call that draws from arrays reads this one too, from memory of the plugin that may be gone: the process "
     "crashes in somebody else's code. While a buffer is bound, the addresses that others pass are taken for offsets "
     "in it. A checked run restores arrays and buffers."},
    {"gl-program", Level::Error, "{what} is {after} and was {before}",
     "Call glUseProgram(0) before the callback returns.",
     "A program replaces the transformation, lighting and texturing with which the host and other plugins draw. A "
     "checked run restores it."},
    {"gl-framebuffer", Level::Error, "{what} is {after} and was {before}",
     "Bind the framebuffer that the callback found, asked for by GL_FRAMEBUFFER_BINDING, before it returns.",
     "Everything that others draw goes into the plugin's own image and not to the screen. A checked run restores the "
     "binding."},
    {"gl-scissor", Level::Error, "{what} is {after} and was {before}",
     "Call glDisable(GL_SCISSOR_TEST) before the callback returns.",
     "Whatever others draw outside of the rectangle disappears, clearing the screen included. A checked run restores "
     "the test."},
    {"gl-texture-number", Level::Warning, "AVSKGenerateTextureNumbers() did not give the number {number}",
     "Get the numbers of textures from AVSKGenerateTextureNumbers() only.",
     "The host reserves the numbers of textures. glGenTextures() may return one that it has reserved for a texture "
     "which does not exist yet, and an invented number may be in use. Two textures then replace each other's image."},
    {"gl-place", Level::Error, "it draws while the host does not",
     "Draw in a draw callback or in the draw function of a window; a texture may be made and filled elsewhere.",
     "Outside of the host's draw passes the matrices and the state are those of the last one to draw, and the screen "
     "is cleared afterwards. Drawing into a framebuffer of the plugin's own, and compiling a list, are no fault."},
    {"gl-textures-left", Level::Warning, "textures made in {callback} still exist: {count}, {size} in all",
     "Delete textures with glDeleteTextures() in AVPluginStop, or in AVPluginDisable if AVPluginEnable makes them.",
     "The library does not know of a plugin's textures, so nobody deletes them when the plugin is unloaded. Each time "
     "the plugin is loaded again, the graphics memory loses as much."},
};

} // namespace host

#endif
