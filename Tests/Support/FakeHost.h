// A host for tests. It fills every slot of the table, journals each call and
// returns what the test chooses. There is one per process, like the library.
#ifndef AVSK_TESTS_FAKE_HOST_H
#define AVSK_TESTS_FAKE_HOST_H

#include "Slots.h"

#include "AVSK/AVSKHost.h"

#include <functional>
#include <list>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

// Concatenates the parts.
template <class... Parts>
std::string Line(const Parts &...parts) {
    std::ostringstream line;
    (line << ... << parts);
    return line.str();
}

// Appends a line to the journal. The journal also records host calls, as
// "setMenuItemName(menu1, 2, \"\", 0)", and entry points of puppets, as "enable A".
void Note(const std::string &line);
// Returns the journal and clears it.
Lines Take();

template <class Pointer>
struct HostService;
template <class Result, class... Arguments>
struct HostService<Result (*)(Arguments...)> {
    using Function = std::function<Result(Arguments...)>;
};

// The implementation of each slot. An empty one does nothing and returns zero.
struct HostServices {
#define AVSK_TEST_MEMBER(number, name) HostService<decltype(AVSKHostCallbacks::name)>::Function name;
    AVSK_TEST_SLOTS(AVSK_TEST_MEMBER)
#undef AVSK_TEST_MEMBER
};

struct FakeHost {
    FakeHost();

    AVSKHostCallbacks table = {};
    HostServices on; // a test may set any of them
    float now = 0;
    std::string systemPath;
    std::string aircraftModel; // path of the user's aircraft
    std::string log;           // the debug output, joined
    Lines logPieces;           // one entry per call
    std::list<std::string> menus;
    std::map<const void *, std::string> names; // how the journal shows a pointer
    int lastItemID = 100;

    // Returns the log and clears it.
    std::string TakeLog();
    // Returns the handle of the menu that was created number-th, counted from 1.
    void *Menu(int number);
};

FakeHost &Host();

#endif
