/* Breaks the rules about OpenGL. */
#define GL_GLEXT_PROTOTYPES
#include "Zoo.h"

#include <GL/gl.h>
#include <GL/glext.h>

static int calls;
static GLuint object;
static int texture;

static void MakeTexture(void) {
    AVSKGenerateTextureNumbers(&texture, 1);
    glBindTexture(GL_TEXTURE_2D, (GLuint)texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 64, 32, 0, GL_RGBA, GL_UNSIGNED_BYTE, NULL);
    glBindTexture(GL_TEXTURE_2D, 0);
}
static void DeleteTexture(void) { glDeleteTextures(1, (GLuint *)&texture); }

static void LeaveError(void) {
    glEnable(GL_QUADS);
    glLineWidth(2);
}
static void BeginQuads(void) { glBegin(GL_QUADS); }
static void ChangeMode(void) { glMatrixMode(GL_PROJECTION); }
static void PushMatrix(void) {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
}
static void PushAttributes(void) {
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_BLEND);
    glEnable(GL_SCISSOR_TEST);
}
static void BindTexture(void) { glBindTexture(GL_TEXTURE_2D, (GLuint)texture); }
static void SwitchState(void) {
    AVSKSetGraphicsState(1, 1, 0, 0, 0, 1, 1);
    glDisable(GL_FOG);
}
static void LeaveArray(void) {
    static const float vertices[2];
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, vertices);
}
static void LeaveProgram(void) {
    if (object == 0) {
        object = glCreateProgram();
        glLinkProgram(object);
        while (glGetError() != GL_NO_ERROR) {
        }
    }
    glUseProgram(object);
}
static void LeaveFramebuffer(void) {
    if (object == 0)
        glGenFramebuffers(1, &object);
    glBindFramebuffer(GL_FRAMEBUFFER, object);
}
static void LeaveScissor(void) { glEnable(GL_SCISSOR_TEST); }
static void InventNumber(void) {
    glBindTexture(GL_TEXTURE_2D, 4711);
    glBindTexture(GL_TEXTURE_2D, 0);
}
static void DeleteInvented(void) {
    const GLuint number = 4711;
    glDeleteTextures(1, &number);
}
static void DrawRectangle(void) { glRectf(0, 0, 10, 10); }

/* What is no fault, and what --gl counts: 3 + 4 + 2 * 4 + 3 + 6 vertices, and a texture of 8 kB with a buffer of 1 kB.
 */
static void StartCorrect(void) {
    MakeTexture();
    object = glGenLists(1);
    glNewList(object, GL_COMPILE);
    glRecti(0, 0, 10, 10);
    glEndList();
}
static void DrawCorrect(void) {
    static const float vertices[12];
    static const GLint firsts[] = {0, 3};
    static const GLsizei counts[] = {3, 3};
    const GLubyte lists[] = {0, 0};
    GLuint buffer;
    if (++calls > 2)
        return;
    AVSKSetGraphicsState(0, 1, 0, 0, 1, 0, 0);
    AVSKBindTexture2d(texture, 0);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushMatrix();
    glEnable(GL_LIGHTING);
    glBindTexture(GL_TEXTURE_2D, 0);
    glBegin(GL_TRIANGLES);
    for (int i = 0; i < 3; ++i)
        glVertex2f(0, (float)i);
    glEnd();
    glCallList(object);
    glListBase(object);
    glCallLists(2, GL_UNSIGNED_BYTE, lists);
    glPopMatrix();
    glPopAttrib();
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, vertices);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glMultiDrawArrays(GL_TRIANGLES, firsts, counts, 2);
    glPopClientAttrib();
    glEnable(GL_QUADS);
    if (glGetError() != GL_INVALID_ENUM || glGetError() != GL_NO_ERROR)
        AVSKDebugString("Zoo: glGetError() does not return the error\n");
    if (calls == 1) {
        glGenBuffers(1, &buffer);
        glBindBuffer(GL_ARRAY_BUFFER, buffer);
        glBufferData(GL_ARRAY_BUFFER, 1024, NULL, GL_STATIC_DRAW);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
    }
}

const Inhabitant kOpenGL[] = {
    {.rule = "gl-error", .draw = LeaveError},
    {.rule = "gl-begin-end", .draw = BeginQuads},
    {.rule = "gl-matrix-mode", .draw = ChangeMode},
    {.rule = "gl-matrix-depth", .draw = PushMatrix},
    {.rule = "gl-attributes", .draw = PushAttributes},
    {.rule = "gl-texture-binding", .start = MakeTexture, .draw = BindTexture, .stop = DeleteTexture},
    {.rule = "gl-graphics-state", .draw = SwitchState},
    {.rule = "gl-client-arrays", .draw = LeaveArray},
    {.rule = "gl-program", .draw = LeaveProgram},
    {.rule = "gl-framebuffer", .draw = LeaveFramebuffer},
    {.rule = "gl-scissor", .draw = LeaveScissor},
    {.rule = "gl-texture-number", .draw = InventNumber, .stop = DeleteInvented},
    {.rule = "gl-place", .frame = DrawRectangle},
    {.rule = "gl-textures-left", .start = MakeTexture},
    {.rule = "gl-correct", .start = StartCorrect, .draw = DrawCorrect, .stop = DeleteTexture},
    {.rule = "gl-kept", .start = StartCorrect, .draw = DrawCorrect},
    {0},
};
