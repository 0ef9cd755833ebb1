// The floor's two kinds of records, and the two hooks that walk them. Called by
// the comparisons of draw passes and flight loops.
#include "Floor.h"

#include <vector>

namespace {

struct Draw {
    int phase;
    int isBefore;
    AVSKDrawCallback_f callback;
    int owner;
    void *refcon;
};

struct Loop {
    float lastTime;
    int lastPass;
    float interval;
    AVSKFlightLoop_f callback;
    int owner;
    void *refcon;
};

std::vector<Draw> draws;
std::vector<Loop> loops;
int pass = 0;
int dispatched = 0;
bool isOn[kFloorOwners];

bool Enter(int owner) {
    dispatched = owner;
    return isOn[owner];
}

// As the library decides it.
bool IsDue(const Loop &loop, float now) {
    if (loop.interval > 0) {
        const float due = loop.lastTime + loop.interval;
        return now >= due;
    }
    return loop.interval < 0 && static_cast<double>(pass) - loop.lastPass >= -static_cast<double>(loop.interval);
}

} // namespace

void FloorAddDraw(AVSKDrawCallback_f callback, int owner, int phase, int isBefore, void *refcon) {
    isOn[owner] = true;
    draws.push_back({phase, isBefore, callback, owner, refcon});
}

int FloorDrawHook(int phase, int isBefore) {
    const int previous = dispatched;
    int answer = 1;
    for (const Draw &draw : draws)
        if (draw.phase == phase && draw.isBefore == isBefore && Enter(draw.owner))
            answer &= draw.callback(phase, isBefore, draw.refcon);
    dispatched = previous;
    return answer;
}

void FloorAddLoop(AVSKFlightLoop_f callback, int owner, float interval, void *refcon) {
    isOn[owner] = true;
    loops.push_back({0, 0, interval, callback, owner, refcon});
}

void FloorFrameHook(float now) {
    const int previous = dispatched;
    ++pass;
    for (Loop &loop : loops)
        if (IsDue(loop, now) && Enter(loop.owner)) {
            loop.interval = loop.callback(now - loop.lastTime, now, pass, loop.refcon);
            loop.lastTime = now;
            loop.lastPass = pass;
        }
    dispatched = previous;
}
