// The files that `avsk new` writes, with @NAME@ for the plugin's name, @LANGUAGE@
// and @EXTENSION@ for its language, @PREFIX@ for the folder of the SDK, and
// @CONFIGURE@ and @AVSK@ for the commands that use it. Used by NewCommand.cpp.
#ifndef AVSK_HOST_COMMAND_LINE_NEW_PROJECT_FILES_H
#define AVSK_HOST_COMMAND_LINE_NEW_PROJECT_FILES_H

namespace host {

constexpr const char *kNewCMakeLists = R"file(cmake_minimum_required(VERSION 3.20)
project(@NAME@ VERSION 1.0 LANGUAGES @LANGUAGE@)

# Optimised, with the lines that reports of crashes and traces name.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()

find_package(AVSK 2.10 REQUIRED)

# A folder like the simulator's, to run the plugin in.
set(SIM ${PROJECT_BINARY_DIR}/sim)
avsk_add_plugin(@NAME@ FOLDER ${SIM}/Resources/plugins SOURCES @NAME@.@EXTENSION@)
target_compile_options(@NAME@ PRIVATE -Wall -Wextra)

enable_testing()
avsk_add_session_test(@NAME@_session SESSION @NAME@.avs PLUGINS @NAME@)
)file";

constexpr const char *kNewSession = R"file(# What a user does, and what comes of it. `avsk run --words` lists the words.
expect plugin @NAME@ enabled
expect log "@NAME@: hello"

seconds 1
expect log "@NAME@: 60 frames"

unload
expect nothing left
)file";

constexpr const char *kNewSourceC = R"file(/*
 * @NAME@: says hello, and each second how many frames there have been.
 */
#include <AVSK/AVSK.h>

#include <stdio.h>

static int gFrames;

/* Called in each frame. */
static float EachFrame(float sinceLastCall, float elapsed, int pass, void *refcon) {
    char line[AVSK_TEXT_SIZE];
    (void)sinceLastCall, (void)pass, (void)refcon;
    if (++gFrames % 60 == 0) {
        snprintf(line, sizeof line, "@NAME@: %d frames in %.2f s\n", gFrames, elapsed);
        AVSKDebugString(line);
    }
    return -1.0f; /* again in the next frame */
}

/* Loaded. Say who you are and register what you need; callbacks begin once you are enabled. */
int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    snprintf(outName, AVSK_TEXT_SIZE, "@NAME@");
    /* No other plugin may have this signature: put your organisation in front. */
    snprintf(outSignature, AVSK_TEXT_SIZE, "example.@NAME@");
    snprintf(outDescription, AVSK_TEXT_SIZE, "Says hello and counts frames.");
    AVSKRegisterFlightLoopCallback(EachFrame, -1.0f, NULL);
    return 1; /* 0 refuses, and the plugin is unloaded */
}

/* About to be unloaded. Free what is yours; what you registered goes by itself. */
void AVPluginStop(void) {}

/* Every plugin has started by now, so this is the first place where others can be looked for. */
int AVPluginEnable(void) {
    AVSKDebugString("@NAME@: hello\n");
    return 1; /* 0 stays disabled */
}

/* No more callbacks until the next enable. */
void AVPluginDisable(void) {}

/* A message: from the simulator (sender 0) or from another plugin. */
void AVPluginReceiveMessage(AVSKPluginID sender, int message, void *parameter) {
    (void)sender, (void)message, (void)parameter;
}
)file";

constexpr const char *kNewSourceCpp = R"file(// @NAME@: logs a greeting, and each second the number of frames so far.
#include <AVSK/AVSK.h>

#include <cstdio>
#include <string>

namespace {

int gFrames = 0;

// Called in each frame.
float EachFrame(float /*sinceLastCall*/, float /*elapsed*/, int /*pass*/, void * /*refcon*/) {
    if (++gFrames % 60 == 0)
        AVSKDebugString(("@NAME@: " + std::to_string(gFrames) + " frames\n").c_str());
    return -1.0F; // again in the next frame
}

} // namespace

// Called when the plugin is loaded. Fill in the texts and register callbacks; they are called once the plugin is enabled.
int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "@NAME@");
    // The signature must be unique: begin it with your organisation.
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "example.@NAME@");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Says hello and counts frames.");
    AVSKRegisterFlightLoopCallback(EachFrame, -1.0F, nullptr);
    return 1; // 0 refuses, and the plugin is unloaded
}

// Called before the plugin is unloaded. Free your own memory; the library removes what you registered.
void AVPluginStop() {}

// Called when every plugin has started: the first place to look for other plugins.
int AVPluginEnable() {
    AVSKDebugString("@NAME@: hello\n");
    return 1; // 0 stays disabled
}

// After this no callback is called until the next enable.
void AVPluginDisable() {}

// Receives a message from the simulator (sender 0) or from another plugin.
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
)file";

constexpr const char *kNewReadme = R"file(# @NAME@

A plugin for the Aerivo flight simulator. Build it, test it and run it without the simulator:

    @CONFIGURE@
    cmake --build build
    ctest --test-dir build --output-on-failure
    @AVSK@ run --root build/sim --frames 180
    @AVSK@ run @NAME@.avs --root build/sim

`@NAME@.avs` is the session that the test runs, and `@PREFIX@` is where the AVSK SDK was when this project
was made. The compiler must be able to make 32-bit programs: on Debian, install g++-multilib.

For the simulator, copy the folder `build/sim/Resources/plugins/@NAME@` into its `Resources/plugins`. Before you
hand the plugin on, change its signature in `@NAME@.@EXTENSION@`: no two plugins may have the same.
)file";

constexpr const char *kNewGitignore = "/build/\n";

} // namespace host

#endif
