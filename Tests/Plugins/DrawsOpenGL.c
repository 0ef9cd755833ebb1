/*
 * A plugin that draws with OpenGL, as the words in the environment variable
 * AVSK_TEST_OPENGL say. Without one it draws a red triangle in each frame.
 */
#include <AVSK/AVSK.h>
#include <AVSK/AVSKDisplay.h>

#include <GL/gl.h>

#include <stdio.h>

static int Draw(int phase, int isBefore, void *refcon) {
    (void)phase, (void)isBefore, (void)refcon;
    glColor3f(1, 0, 0);
    glBegin(GL_TRIANGLES);
    glVertex2f(0, 0);
    glVertex2f(0.5F, 0);
    glVertex2f(0, 0.5F);
    glEnd();
    return 1;
}

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    snprintf(outName, AVSK_TEXT_SIZE, "DrawsOpenGL");
    snprintf(outSignature, AVSK_TEXT_SIZE, "test.opengl");
    snprintf(outDescription, AVSK_TEXT_SIZE, "Draws with OpenGL.");
    char line[200];
    snprintf(line, sizeof line, "DrawsOpenGL: version '%s'\n", (const char *)glGetString(GL_VERSION));
    AVSKDebugString(line);
    AVSKRegisterDrawCallback(Draw, 50, 0, NULL);
    return 1;
}
