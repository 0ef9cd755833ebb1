/*
 * For the picture test of OpenGL: it draws with OpenGL and with the library in turn, in
 * the scene, on the panel and in two windows that overlap. What is drawn later is above.
 */
#include <AVSK/AVSK.h>
#include <AVSK/AVSKDisplay.h>
#include <AVSK/AVSKGraphics.h>

#include <GL/gl.h>

#include <stdio.h>

static float gWhite[] = {1, 1, 1};

static void Quad(float left, float bottom, float right, float top) {
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0), glVertex2f(left, bottom);
    glTexCoord2f(1, 0), glVertex2f(right, bottom);
    glTexCoord2f(1, 1), glVertex2f(right, top);
    glTexCoord2f(0, 1), glVertex2f(left, top);
    glEnd();
}

/* Squares on the ground in front of the tower: the lower one is drawn last, and is hidden by the other. */
static int DrawScene(int phase, int isBefore, void *refcon) {
    (void)phase, (void)isBefore, (void)refcon;
    for (int i = 0; i < 2; ++i) {
        const float size = i == 0 ? 300 : 600, height = i == 0 ? 200 : 0;
        glColor3f(i == 0, 0.5F, 0);
        glBegin(GL_QUADS);
        glVertex3f(-size, height, -1000 - size), glVertex3f(size, height, -1000 - size);
        glVertex3f(size, height, -1000 + size), glVertex3f(-size, height, -1000 + size);
        glEnd();
    }
    return 1;
}

static int DrawPanel(int phase, int isBefore, void *refcon) {
    (void)phase, (void)isBefore, (void)refcon;
    AVSKSetGraphicsState(0, 1, 0, 0, 1, 0, 0);
    for (int i = 1; i <= 3; ++i) {
        AVSKBindTexture2d(AVSKGetTexture(i), 0);
        Quad(250, 100.0F * (float)i - 90, 340, 100.0F * (float)i);
    }
    return 1;
}

/* Nothing that a plugin sets changes what the library draws, which reaches the screen at the next quad. */
static void DrawTextInAnyState(int left, int top) {
    char text[] = "under the line";
    int width = 70;
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 1, 1);
    glColorMask(0, 0, 0, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 9);
    glPixelTransferf(GL_RED_BIAS, -1);
    AVSKDrawString(gWhite, left, top, text, &width, 0);
    Quad(0, 0, 1, 1);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPopAttrib();
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
}

static void DrawWindow(AVSKWindowID window, void *refcon) {
    int left, top, right, bottom;
    AVSKGetWindowGeometry(window, &left, &top, &right, &bottom);
    glColor3f(refcon ? 0.8F : 0, 0, refcon ? 0 : 0.8F);
    Quad((float)left, (float)bottom, (float)right, (float)top);
    AVSKDrawTranslucentDarkBox(left + 10, top - 10, right - 10, bottom + 10);
    glColor4f(1, 1, 0, 0.5F);
    Quad((float)left + 20, (float)bottom + 20, (float)left + 60, (float)top - 20);
    DrawTextInAnyState(left + 15, top - 35);
    glColor3f(0, 1, 0);
    Quad((float)left + 5, (float)top - 34, (float)right - 5, (float)top - 31);
    glBegin(GL_TRIANGLES); /* inside, the library's drawing waits */
    AVSKDrawNumber(gWhite, left + 20, bottom + 15, refcon ? 1 : 2, 3, 0, 0, 2);
    glEnd();
}

static void Key(AVSKWindowID window, char key, int flags, char virtualKey, void *refcon, int losingFocus) {
    (void)window, (void)key, (void)flags, (void)virtualKey, (void)refcon, (void)losingFocus;
}
static int Click(AVSKWindowID window, int x, int y, int status, void *refcon) {
    (void)window, (void)x, (void)y, (void)status, (void)refcon;
    return 0;
}

static void LogNumbers(void) {
    int numbers[2] = {0, 0};
    char line[100];
    AVSKGenerateTextureNumbers(numbers, 2);
    snprintf(line, sizeof line, "Layers: textures %d and %d\n", numbers[0], numbers[1]);
    AVSKDebugString(line);
}

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    snprintf(outName, AVSK_TEXT_SIZE, "Layers");
    snprintf(outSignature, AVSK_TEXT_SIZE, "test.layers");
    snprintf(outDescription, AVSK_TEXT_SIZE, "Draws with OpenGL and the library in turn.");
    AVSKRegisterDrawCallback(DrawScene, 25, 0, NULL);
    AVSKRegisterDrawCallback(DrawPanel, 50, 1, NULL);
    AVSKCreateWindow(20, 160, 160, 40, 1, DrawWindow, Key, Click, NULL);
    AVSKCreateWindow(110, 110, 240, 10, 1, DrawWindow, Key, Click, gWhite);
    return 1;
}

void AVPluginStop(void) {}
int AVPluginEnable(void) {
    LogNumbers(); /* without a context, and with one */
    glGetError();
    LogNumbers();
    return 1;
}
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender, (void)message, (void)parameter;
}
