// The frame: what the simulator reports to the library, in order. See Simulator.h.
#include "Simulator.h"

#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <utility>

namespace host {

Simulator *gSimulator = nullptr;

Simulator::Simulator(Options requested)
    : options(std::move(requested)), console(options.quiet, options.logFile),
      display(options.screenWidth, options.screenHeight), commands(*this), input(*this), fleet(options.aircraftModel),
      objects(options.root), flightPlan(navData) {
    const std::string missing = display.fonts.Missing();
    if (!missing.empty() && !options.screenshots.empty())
        throw UsageError("--screenshot: cannot read the font '" + missing + "': install the package fonts-dejavu-core");
}

float Simulator::Elapsed() const { return static_cast<float>(frame / options.fps); }

void Simulator::RunFrame() {
    ++frame;
    FinishRequests();
    AVSKEventHook(AVSKHostEventFrame, Elapsed(), 0, 0);
    PressKeys();
    aeroplane.Step(1 / options.fps);
    track.Record(Elapsed(), aeroplane);
    fleet.Step(Elapsed(), aeroplane);
    camera.Place(aeroplane);
    Draw();
    AVSKEventHook(AVSKHostEventCommands, Elapsed(), 0, 0);
    AVSKEventHook(AVSKHostEventFrameEnd, Elapsed(), 0, 0);
    console.ShowProgress(frame, options.frames);
}

// What plugins asked for and could not have at once: loading and unloading
// plugins inside a plugin's own call would take the floor from under it.
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

// The user's keys, which are those of the command line.
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
    const auto wanted = [this](const Screenshot &shot) { return shot.frame == frame; };
    const auto &shots = options.screenshots;
    display.Begin(std::any_of(shots.begin(), shots.end(), wanted));
    DrawPasses();
    for (const Screenshot &shot : shots) {
        if (wanted(shot))
            display.Write(*this, shot.file);
    }
    display.Begin(/*written=*/false);
}

void Simulator::DrawPasses() {
    constexpr int kFirstCode = 1;
    constexpr int kLastCode = 26;
    constexpr int kNoReflection = 0;
    for (int code = kFirstCode; code <= kLastCode; ++code) {
        if (AVSKDoDrawingHook(code, kNoReflection) != 0)
            display.DrawOwnPart(*this, code);
    }
}

} // namespace host
