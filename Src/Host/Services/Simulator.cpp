// One frame: the hooks that the simulator calls, in order. See Simulator.h.
#include "Simulator.h"

#include "Graphics.h"

#include "Common/UsageError.h"
#include "Screen/PngFile.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace host {

Simulator *gSimulator = nullptr;

Simulator::Simulator(SimulatorOptions requested)
    : options(std::move(requested)), console(options.quiet, options.logFile),
      display(options.screenWidth, options.screenHeight), commands(*this), input(*this), fleet(options.aircraftModel),
      objects(options.root), flightPlan(navData) {
    const std::string missing = display.fonts.Missing();
    if (!missing.empty() && !options.screenshots.empty())
        throw UsageError("--screenshot: cannot read the font '" + missing + "': install the package fonts-dejavu-core");
}

float Simulator::Elapsed() const { return static_cast<float>(frame / options.fps + mExtra); }

void Simulator::RunFrame(double seconds) {
    ++frame;
    mExtra += seconds - 1 / options.fps;
    FinishRequests();
    AVSKEventHook(AVSKHostEventFrame, Elapsed(), 0, 0);
    PressKeys();
    aeroplane.Step(seconds);
    track.Record(Elapsed(), aeroplane);
    fleet.Step(Elapsed(), aeroplane);
    camera.Place(aeroplane);
    Draw();
    AVSKEventHook(AVSKHostEventCommands, Elapsed(), 0, 0);
    AVSKEventHook(AVSKHostEventFrameEnd, Elapsed(), 0, 0);
    console.ShowProgress(frame, options.frames);
}

// Does what plugins asked for in the last frame. Inside a plugin's own call it
// could unload code that is running.
void Simulator::FinishRequests() {
    objects.CompleteLoads(frame);
    fleet.Update(*this);
    if (std::exchange(sceneryDue, false))
        ReportScenery();
}

void Simulator::ReportScenery() {
    for (const std::string &folder : options.scenery)
        AVSKEventHook(AVSKHostEventSceneryFolder, Elapsed(), 0, reinterpret_cast<AVSKWord>(folder.c_str()));
}

// Presses the keys that the command line asked for.
void Simulator::PressKeys() {
    constexpr double kSecondsDown = 0.5;
    input.StepKeys();
    for (const KeyPress &key : options.keys) {
        if (key.frame == frame)
            input.PressKey(key.character, key.virtualKey,
                           static_cast<int>(std::clamp(kSecondsDown * options.fps, 1.0, 1e6)));
    }
}

void Simulator::Draw() {
    const auto isDue = [this](const Screenshot &shot) { return shot.frame == frame; };
    const auto &shots = options.screenshots;
    const bool isShot = std::any_of(shots.begin(), shots.end(), isDue);
    display.wanted = display.wanted || isShot;
    display.Begin();
    DrawPasses();
    display.End();
    if (!isShot)
        return;
    const Image &picture = Picture();
    for (const Screenshot &shot : shots) {
        if (isDue(shot))
            WritePng(picture, shot.file);
    }
}

const Image &Simulator::Picture() { return display.ShownWith(menus.Shown()); }

std::string Simulator::Status() const {
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(), "%8.2f s   %9.5f  %10.5f   %6.1f m   heading %05.1f",
                  static_cast<double>(Elapsed()), aeroplane.latitude, aeroplane.longitude, aeroplane.altitude,
                  aeroplane.heading);
    return text.data();
}

void Simulator::DrawPasses() {
    constexpr int kFirstCode = 1;
    constexpr int kLastCode = 26;
    constexpr int kNoReflection = 0;
    for (int code = kFirstCode; code <= kLastCode; ++code) {
        BeginDrawCode(*this, code);
        if (AVSKDoDrawingHook(code, kNoReflection) != 0)
            display.DrawOwnPart(display.canvas ? Status() : "");
    }
}

} // namespace host
