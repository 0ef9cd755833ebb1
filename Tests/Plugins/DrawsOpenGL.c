/*
 * A plugin that draws with OpenGL: a red triangle in each frame, and what the
 * environment variable AVSK_TEST_OPENGL says.
 */
#include <AVSK/AVSK.h>
#include <AVSK/AVSKDisplay.h>

#include <GL/gl.h>

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char *gMode = "";

static void *OtherThread(void *result) {
    *(GLenum *)result = glGetError() + (GLenum)glIsEnabled(GL_DEPTH_TEST);
    glBegin(GL_QUADS);
    return NULL;
}

static int Draw(int phase, int isBefore, void *refcon) {
    (void)phase, (void)isBefore, (void)refcon;
    glColor3f(1, 0, 0);
    glBegin(GL_TRIANGLES);
    glVertex2f(0, 0);
    glVertex2f(0.5F, 0);
    glVertex2f(0, 0.5F);
    glEnd();
    if (strcmp(gMode, "thread") == 0) {
        pthread_t thread;
        GLenum error = 1;
        pthread_create(&thread, NULL, OtherThread, &error);
        pthread_join(thread, NULL);
        AVSKDebugString(error == 0 ? "DrawsOpenGL: neutral\n" : "DrawsOpenGL: not neutral\n");
    } else if (strcmp(gMode, "crash") == 0) {
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 64, 64, 0, GL_RGBA, GL_UNSIGNED_BYTE, (const void *)16);
    }
    return 1;
}

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    char line[200];
    if (getenv("AVSK_TEST_OPENGL"))
        gMode = getenv("AVSK_TEST_OPENGL");
    snprintf(outName, AVSK_TEXT_SIZE, "DrawsOpenGL");
    snprintf(outSignature, AVSK_TEXT_SIZE, "test.opengl");
    snprintf(outDescription, AVSK_TEXT_SIZE, "Draws with OpenGL.");
    snprintf(line, sizeof line, "DrawsOpenGL: renderer '%.8s'\n", (const char *)glGetString(GL_RENDERER));
    AVSKDebugString(line);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    AVSKRegisterDrawCallback(Draw, 50, 0, NULL);
    return 1;
}

void AVPluginStop(void) {}
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender, (void)message, (void)parameter;
}
