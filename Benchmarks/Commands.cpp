// Commands: a phase with handlers and one without, and held commands.
#include "Counters.h"
#include "FakeHost.h"
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKUtilities.h"

namespace {

constexpr int kPlugins = 10;
constexpr unsigned kCommands = 2000;
constexpr unsigned kHandlers = 10;
constexpr unsigned kPhases = 100; // in a batch

int CountPhase(AVSKCommandRef /*command*/, int /*phase*/, void *refcon) {
    Count(refcon);
    return 1;
}

AVSKCommandRef CreateCommand(unsigned index) {
    return AVSKCreateCommand(("corvane/bench/command_" + std::to_string(index)).c_str(), "Benchmark");
}

std::vector<AVSKCommandRef> CreateCommands(unsigned count) {
    std::vector<AVSKCommandRef> commands;
    for (unsigned i = 0; i < count; ++i)
        commands.push_back(CreateCommand(i));
    return commands;
}

void Register(Simulator &simulator, unsigned owner, AVSKCommandRef command, unsigned &counter) {
    simulator.AsPlugin(1 + static_cast<int>(owner % kPlugins),
                       [&] { AVSKRegisterCommandHandler(command, CountPhase, 1, &counter); });
}

// The phase of a command that is held, before the host acts.
int Continue(AVSKCommandRef command) { return AVSKCommandHook(command, 0, 0, 1); }

// A batch is a number of phases; each phase calls every handler.
template <class Phase>
Side Phases(const Counters &counters, Phase phase) {
    return Side::Here(
        kPhases * kHandlers,
        [phase] {
            unsigned goOn = 0;
            for (unsigned i = 0; i < kPhases; ++i)
                goOn += static_cast<unsigned>(phase());
            if (goOn != kPhases)
                throw WrongCount("a command was stopped, which no handler asked for");
        },
        [&counters] { return Sum(counters); });
}

void ComparePhase(Report &report) {
    Simulator simulator(kPlugins);
    const std::vector<AVSKCommandRef> commands = CreateCommands(kCommands);
    const AVSKCommandRef busy = commands[kCommands / 2];
    Counters others(kCommands);
    for (unsigned i = 0; i < kCommands; ++i)
        if (commands[i] != busy)
            Register(simulator, i, commands[i], others[i]);
    Counters counters(kHandlers);
    for (unsigned i = 0; i < kHandlers; ++i)
        Register(simulator, i, busy, counters[i]);

    struct Handler {
        AVSKCommandHandler_f function;
        void *refcon;
    };
    Counters bareCounters(kHandlers);
    std::vector<Handler> bare;
    for (unsigned &counter : bareCounters)
        bare.push_back({Opaque(&CountPhase), &counter});

    report.Compare("command phase, 10 handlers, each / indirect calls", 4.0,
                   Phases(counters, [busy] { return Continue(busy); }), Phases(bareCounters, [&bare, busy] {
                       for (const Handler &handler : bare)
                           if (!handler.function(busy, AVSKCommandPhaseContinue, handler.refcon))
                               return 0;
                       return 1;
                   }));
    if (Sum(others) != 0)
        throw WrongCount("handlers of other commands were called");
}

void MeasureSilentPhase(Report &report) {
    Simulator simulator(kPlugins);
    const std::vector<AVSKCommandRef> commands = CreateCommands(2 * kCommands);
    Counters counters(kCommands);
    for (unsigned i = 0; i < kCommands; ++i)
        Register(simulator, i, commands[2 * i], counters[i]);
    std::uint64_t answers = 0;
    // The unit is a phase. No handler may be called.
    report.Measure("command phase without handlers, 2000 commands with",
                   Side::Here(
                       kCommands,
                       [&] {
                           int goOn = 0;
                           for (unsigned i = 0; i < kCommands; ++i)
                               goOn += Continue(commands[2 * i + 1]);
                           answers += static_cast<unsigned>(goOn);
                       },
                       [&] { return answers + Sum(counters); }));
}

void MeasureHeld(Report &report) {
    constexpr unsigned kHeld = 10000;
    Simulator simulator(kPlugins);
    for (unsigned i = 0; i < kHeld; ++i)
        simulator.AsPlugin(1 + static_cast<int>(i % kPlugins), [i] { AVSKCommandBegin(CreateCommand(i)); });
    report.Measure("frame with 10000 held commands, each",
                   Side::Here(
                       kHeld, [] { AVSKEventHook(AVSKHostEventCommands, 0, 0, 0); }, FakeHostContinuedCommands));
}

} // namespace

std::vector<Comparison> CommandComparisons() {
    return {{"command phase, 10 handlers", ComparePhase},
            {"command phase without handlers", MeasureSilentPhase},
            {"held commands", MeasureHeld}};
}
