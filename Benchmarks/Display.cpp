// Draw callbacks, windows and hot keys: a draw pass that calls many, few or
// none, the search for the window under the mouse, and look-ups by handle.
#include "Counters.h"
#include "Floor.h"
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKHost.h"

#include <algorithm>
#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal.hpp>
#include <boost/signals2/signal_type.hpp>
#include <memory>

namespace {

constexpr int kPlugins = 10;

// Adjacent records belong to different plugins.
AVSKPluginID OwnerOf(unsigned index) { return 1 + static_cast<int>(index % kPlugins); }

// ---- Draw passes

constexpr int kPhase = 5;
constexpr int kDrawCode = 2;       // before that phase
constexpr int kSilentDrawCode = 4; // after phase 10

int CountDraw(int /*phase*/, int /*isBefore*/, void *refcon) {
    Count(refcon);
    return 1;
}

void RegisterDraws(Simulator &simulator, Counters &counters, int phase) {
    for (unsigned i = 0; i < counters.size(); ++i)
        simulator.AsPlugin(OwnerOf(i), [&] { AVSKRegisterDrawCallback(CountDraw, phase, 1, &counters[i]); });
}

// Runs enough passes for a thousand calls. Each pass returns whether the host draws.
template <class Pass>
Side DrawPasses(const Counters &counters, Pass pass) {
    const auto callbacks = static_cast<unsigned>(counters.size());
    const unsigned passes = 1000 / callbacks;
    return Side::Here(
        passes * callbacks,
        [passes, pass] {
            unsigned drawn = 0;
            for (unsigned i = 0; i < passes; ++i)
                drawn += static_cast<unsigned>(pass());
            if (drawn != passes)
                throw WrongCount("a draw pass kept the host from drawing, which no callback asked for");
        },
        [&counters] { return Sum(counters); });
}

// Combines results as the library does: an even result suppresses the host's drawing.
struct Agreement {
    using result_type = int;
    template <class Iterator>
    int operator()(Iterator at, Iterator end) const {
        int answer = 1;
        for (; at != end; ++at)
            answer &= *at;
        return answer;
    }
};

template <unsigned callbacks>
void CompareDrawing(Report &report) {
    namespace signals2 = boost::signals2;
    Simulator simulator(kPlugins);
    Counters counters(callbacks);
    RegisterDraws(simulator, counters, kPhase);
    const Side ours = DrawPasses(counters, [] { return AVSKDoDrawingHook(kDrawCode, 0); });

    struct Callback {
        AVSKDrawCallback_f function;
        void *refcon;
    };
    Counters bareCounters(callbacks);
    std::vector<Callback> bare;
    for (unsigned &counter : bareCounters)
        bare.push_back({Opaque(&CountDraw), &counter});

    // Only one thread draws, so the signal works without locks.
    using Signal = signals2::signal_type<int(int, int), signals2::keywords::combiner_type<Agreement>,
                                         signals2::keywords::mutex_type<signals2::dummy_mutex>>::type;
    Counters slotCounters(callbacks);
    Signal signal;
    for (unsigned &counter : slotCounters)
        signal.connect([&counter](int phase, int isBefore) { return CountDraw(phase, isBefore, &counter); });

    Counters floorCounters(callbacks);
    for (unsigned i = 0; i < callbacks; ++i)
        FloorAddDraw(Opaque(&CountDraw), OwnerOf(i), kPhase, 1, &floorCounters[i]);

    const std::string name = "draw pass, " + std::to_string(callbacks) + (callbacks == 1 ? " callback" : " callbacks");
    report.Compare(name + " / indirect calls", 4.0, ours, DrawPasses(bareCounters, [&bare] {
                       int answer = 1;
                       for (const Callback &callback : bare)
                           answer &= callback.function(kPhase, 1, callback.refcon);
                       return answer;
                   }));
    report.Compare(name + " / floor", callbacks == 1 ? 1.6 : 1.3, ours,
                   DrawPasses(floorCounters, [] { return FloorDrawHook(kPhase, 1); }));
    report.Compare(name + " / boost::signals2", 0.33, ours,
                   DrawPasses(slotCounters, [&signal] { return signal(kPhase, 1); }));
}

void MeasureSilentDrawing(Report &report) {
    constexpr unsigned kPasses = 1000;
    Simulator simulator(kPlugins);
    Counters counters(1000);
    RegisterDraws(simulator, counters, kPhase);
    std::uint64_t answers = 0;
    // The unit is a pass. No callback may be called.
    report.Measure("draw pass nobody listens to, 1000 callbacks elsewhere",
                   Side::Here(
                       kPasses,
                       [&answers] {
                           int drawn = 0;
                           for (unsigned i = 0; i < kPasses; ++i)
                               drawn += AVSKDoDrawingHook(kSilentDrawCode, 0);
                           answers += static_cast<unsigned>(drawn);
                       },
                       [&] { return answers + Sum(counters); }));
}

// ---- The cursor

constexpr unsigned kWindows = 500;
constexpr int kTile = 20;    // pixels
constexpr int kColumns = 25; // of tiles
constexpr int kCursor = 7;   // a status that the host defines

void DrawNothing(AVSKWindowID /*window*/, void * /*refcon*/) {}
void IgnoreKey(AVSKWindowID /*window*/, char /*key*/, int /*flags*/, char /*virtualKey*/, void * /*refcon*/,
               int /*losingFocus*/) {}
int IgnoreClick(AVSKWindowID /*window*/, int /*x*/, int /*y*/, int /*status*/, void * /*refcon*/) { return 0; }

int ChooseCursor(AVSKWindowID /*window*/, int /*x*/, int /*y*/, void *refcon) {
    Count(refcon);
    return kCursor;
}
int LeaveCursor(AVSKWindowID /*window*/, int /*x*/, int /*y*/, void *refcon) {
    Count(refcon);
    return 0;
}

// The least work that a search for the cursor needs.
struct Rectangle {
    int left, top, right, bottom;
    AVSKHandleCursor_f cursor;
    void *refcon;
};

Rectangle Tile(unsigned index, AVSKHandleCursor_f cursor, unsigned &counter) {
    const int left = static_cast<int>(index % kColumns) * kTile;
    const int bottom = static_cast<int>(index / kColumns) * kTile;
    return {left, bottom + kTile, left + kTile, bottom, Opaque(cursor), &counter};
}

void CreateWindows(Simulator &simulator, const std::vector<Rectangle> &rectangles) {
    for (unsigned i = 0; i < rectangles.size(); ++i) {
        const Rectangle &at = rectangles[i];
        const AVSKCreateWindowParams params = {sizeof params, at.left,     at.top,    at.right,  at.bottom, 1,
                                               DrawNothing,   IgnoreClick, IgnoreKey, at.cursor, nullptr,   at.refcon};
        simulator.AsPlugin(OwnerOf(i), [&params] { AVSKCreateWindowEx(&params); });
    }
}

int AskRectangles(const std::vector<Rectangle> &rectangles, int x, int y) {
    for (const Rectangle &at : rectangles)
        if (at.left <= x && x < at.right && at.bottom <= y && y < at.top)
            if (const int status = at.cursor(nullptr, x, y, at.refcon))
                return status;
    return 0;
}

// The window that chooses is behind all others, so that a choice proves that
// every window was tested.
template <class Ask>
Side Searches(const Counters &counters, Ask ask) {
    return Side::Here(
        kWindows,
        [ask] {
            if (ask(kTile / 2, kTile / 2) != kCursor)
                throw WrongCount("the window that chooses the cursor was not asked");
        },
        [&counters] { return counters[0] * std::uint64_t{kWindows}; });
}

// The last rectangle tested is that of the window created first.
std::vector<Rectangle> InTheOrderAsked(std::vector<Rectangle> rectangles) {
    std::reverse(rectangles.begin(), rectangles.end());
    return rectangles;
}

void CompareCursorElsewhere(Report &report) {
    Simulator simulator(kPlugins);
    const auto tiles = [](Counters &counters) {
        std::vector<Rectangle> rectangles;
        for (unsigned i = 0; i < kWindows; ++i)
            rectangles.push_back(Tile(i, ChooseCursor, counters[i]));
        return rectangles;
    };
    Counters counters(kWindows);
    Counters bareCounters(kWindows);
    CreateWindows(simulator, tiles(counters));
    report.Compare("cursor, 500 windows, the last one hit, each / bare search", Report::kNoGoal,
                   Searches(counters, AVSKCursorHook),
                   Searches(bareCounters, [bare = InTheOrderAsked(tiles(bareCounters))](int x, int y) {
                       return AskRectangles(bare, x, y);
                   }));
}

void CompareCursorAbove(Report &report) {
    Simulator simulator(kPlugins);
    const auto pile = [](Counters &counters) {
        std::vector<Rectangle> rectangles;
        for (unsigned i = 0; i < kWindows; ++i)
            rectangles.push_back(Tile(0, i == 0 ? ChooseCursor : LeaveCursor, counters[i]));
        return rectangles;
    };
    // The unit is a call: here every window is called.
    const auto searches = [](const Counters &counters, auto ask) {
        return Side::Here(
            kWindows, [ask] { ask(kTile / 2, kTile / 2); }, [&counters] { return Sum(counters); });
    };
    Counters counters(kWindows);
    Counters bareCounters(kWindows);
    CreateWindows(simulator, pile(counters));
    report.Compare("cursor, 500 windows, all hit, each / bare search", Report::kNoGoal,
                   searches(counters, AVSKCursorHook),
                   searches(bareCounters, [bare = InTheOrderAsked(pile(bareCounters))](int x, int y) {
                       return AskRectangles(bare, x, y);
                   }));
}

// ---- Look-ups by handle

// Looks up one handle; the record that was made first is found last.
template <class LookUp>
void MeasureLookUp(Report &report, const std::string &name, LookUp lookUp) {
    constexpr unsigned kLookUps = 100;
    std::uint64_t found = 0;
    report.Measure(name, Side::Here(
                             kLookUps,
                             [&] {
                                 for (unsigned i = 0; i < kLookUps; ++i)
                                     found += lookUp();
                             },
                             [&found] { return found; }));
}

template <unsigned count>
void MeasureHandles(Report &report) {
    Simulator simulator(kPlugins);
    const std::string ofMany = " by handle, the last of " + std::to_string(count);
    AVSKWindowID window = nullptr;
    AVSKHotKeyID hotKey = nullptr;
    for (unsigned i = 0; i < count; ++i)
        simulator.AsPlugin(OwnerOf(i), [&] {
            const AVSKWindowID newWindow =
                AVSKCreateWindow(0, 7, 9, 0, 1, DrawNothing, IgnoreKey, IgnoreClick, nullptr);
            const AVSKHotKeyID newHotKey = AVSKRegisterHotKey('K', 0, "Benchmark", nullptr, nullptr);
            if (i == 0) {
                window = newWindow;
                hotKey = newHotKey;
            }
        });
    MeasureLookUp(report, "window" + ofMany, [window] {
        int top = 0;
        AVSKGetWindowGeometry(window, nullptr, &top, nullptr, nullptr);
        return top == 7;
    });
    MeasureLookUp(report, "hot key" + ofMany, [hotKey] {
        char virtualKey = 0;
        AVSKGetHotKeyInfo(hotKey, &virtualKey, nullptr, nullptr, nullptr);
        return virtualKey == 'K';
    });
}

} // namespace

std::vector<Comparison> DisplayComparisons() {
    return {{"draw pass, 1 callback", CompareDrawing<1>},
            {"draw pass, 10 callbacks", CompareDrawing<10>},
            {"draw pass, 100 callbacks", CompareDrawing<100>},
            {"draw pass, 1000 callbacks", CompareDrawing<1000>},
            {"draw pass nobody listens to", MeasureSilentDrawing},
            {"cursor, windows elsewhere", CompareCursorElsewhere},
            {"cursor, windows under it", CompareCursorAbove},
            {"handles of 100", MeasureHandles<100>},
            {"handles of 1000", MeasureHandles<1000>},
            {"handles of 10000", MeasureHandles<10000>}};
}
