// Observes all calls across the library's border. This program repeats every test
// with it: the results must not change.
#include "Crossings/Format.h"

namespace {

// Formats every call, as a trace does.
struct Everything : crossings::Observer {
    Everything() { crossings::AddObserver(*this); }
    void Begins(const crossings::Crossing &crossing) override {
        crossings::Line line;
        AddSides(line, crossing);
        AddCall(line, crossing);
    }
    void Ends(const crossings::Crossing &crossing) override {
        crossings::Line line;
        AddResult(line, crossing);
    }
};
[[maybe_unused]] Everything &gEverything = *new Everything;

} // namespace
