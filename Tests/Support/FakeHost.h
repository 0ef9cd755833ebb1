// A host for tests: fills every slot of the table, writes each call to the
// journal, and answers as a test says. One per process, as the library is.
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

// The parts as one text.
template <class... Parts>
std::string Line(const Parts &...parts) {
    std::ostringstream line;
    (line << ... << parts);
    return line.str();
}

// What happened, in order: host calls as "setMenuItemName(menu1, 2, \"\", 0)",
// entry points of puppets as "enable A", and what tests note themselves.
void Note(const std::string &line);
// The journal so far, which starts afresh.
Lines Take();

template <class Pointer>
struct HostService;
template <class Result, class... Arguments>
struct HostService<Result (*)(Arguments...)> {
    using Function = std::function<Result(Arguments...)>;
};

// What each slot does; an empty one does nothing and answers zero.
struct HostServices {
#define AVSK_TEST_MEMBER(number, name) HostService<decltype(AVSKHostCallbacks::name)>::Function name;
    AVSK_TEST_SLOTS(AVSK_TEST_MEMBER)
#undef AVSK_TEST_MEMBER
};

struct FakeHost {
    FakeHost();

    AVSKHostCallbacks table = {};
    HostServices on; // set any of them
    float now = 0;
    std::string systemPath;
    std::string aircraftModel; // path of the user's aircraft
    std::string log;           // the debug output, joined
    Lines logPieces;           // and call by call
    std::list<std::string> menus;
    std::map<const void *, std::string> names; // of pointers, for the journal
    int lastItemID = 100;

    // The log so far, which starts afresh.
    std::string TakeLog();
    // The handle of the menu created as the numberth, from 1.
    void *Menu(int number);
};

FakeHost &Host();

#endif
