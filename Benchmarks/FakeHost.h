// A host whose services do nothing, so that only the library's own cost is measured.
#ifndef AVSK_BENCH_FAKE_HOST_H
#define AVSK_BENCH_FAKE_HOST_H

#include "AVSK/AVSKHost.h"

#include <cstdint>
#include <string>

// The host's services, every slot filled.
const AVSKHostCallbacks &FakeHostTable();

// Sets the model of the user's aircraft; empty without one. At most 255 bytes.
void SetFakeHostAircraft(const std::string &model);

// The number of messages that plugin 0 has received.
std::uint64_t FakeHostMessages();

// The number of times that a held command was continued.
std::uint64_t FakeHostContinuedCommands();

// The handle of the menu created last, and the ID of the item appended last;
// IDs are handed out in order.
void *FakeHostMenu();
int FakeHostMenuItem();

#endif
