// The rules about the host's table of services; HostTableChecks.cpp finds what violates them.
#ifndef AVSK_HOST_RULES_HOST_TABLE_RULES_H
#define AVSK_HOST_RULES_HOST_TABLE_RULES_H

#include "Rule.h"

namespace host {

inline constexpr Rule kHostTableRules[] = {
    {"host-table-unreadable", Level::Error, "the table of services at {address} cannot be read",
     "Pass the address of a static AVSKHostCallbacks.",
     "The library keeps the pointer and reads the table in every call of a service, the first time for the log while "
     "it "
     "starts. A null or wrong pointer ends the process there."},
    {"host-table-size", Level::Error, "sizeInBytes is {size}; tables have 280, 284 or 288 bytes",
     "Set sizeInBytes to sizeof(AVSKHostCallbacks).",
     "The size decides which services the library calls. The smallest legal table ends with slot 69, saveDataFile. The "
     "library calls all slots until there without a test, so it reads past the end of a smaller table."},
    {"host-table-beyond", Level::Note, "sizeInBytes is {size}; the library knows 288 bytes",
     "Set sizeInBytes to sizeof(AVSKHostCallbacks), and build the host with the headers of the library that it loads.",
     "The library reads no word behind slot 71. Either the host was built with the headers of a newer library, and its "
     "further services are never called, or the number is not the table's size."},
    {"host-table-ends", Level::Error, "sizeInBytes is {size}, and the memory ends after {bytes} bytes",
     "Make the table a static AVSKHostCallbacks, and set sizeInBytes to its size.",
     "The library trusts sizeInBytes. Where the memory ends, the first call of a slot behind it ends the process."},
    {"host-table-version", Level::Warning,
     "{slot} is never called: version is {version} and sizeInBytes {size}, which say that it does not exist",
     "Set version to 4 and sizeInBytes to sizeof(AVSKHostCallbacks), or leave the slot null.",
     "The library calls showMessage from version 3 on and showProgress from version 4 on. It calls destroyMenu and "
     "reinitUsersPlane only if the table has 288 bytes, although both lie further in front. A host that fills the slot "
     "expects the calls."},
    {"host-table-slot-null", Level::Error, "{slot} is null",
     "Fill the slot with a function; a service without effect returns a neutral result.",
     "The library calls every slot that version and sizeInBytes promise without a test. The first plugin that needs "
     "this "
     "service ends the process. Only receiveMessage may be null."},
    {"host-table-slot-code", Level::Error, "{slot} points at {address}, where there is no code",
     "Fill the slot with the address of a function that stays loaded until the process ends.",
     "The library jumps to the address. It lies outside of all memory that can be executed, so the first call ends the "
     "process. The slot may be uninitialised, or the library that contained the service was closed."},
    {"host-table-slot-changed", Level::Warning, "{slot} changed during the call",
     "Fill the table before the start. If a service must be replaced, do that between two hooks.",
     "Slots may be changed between hooks. During a hook the library may have called the old function for the first "
     "half "
     "of a task, and calls the new one for the second half."},
    {"host-table-receiver", Level::Warning,
     "slot 71 (receiveMessage) changed, and the library goes on calling the old one",
     "Set receiveMessage before the start, and let that function hand messages on.",
     "The library copies this slot at the start and at a reload. It is the only one that it copies. Until then the "
     "old function receives all messages."},
    {"host-table-gone", Level::Error, "the memory of the table at {address} is not mapped any more",
     "Make the table static.",
     "The table must be valid until the process ends, because the library keeps the pointer. The next call of a "
     "service "
     "ends the process."},
    {"host-table-overwritten", Level::Error,
     "version and sizeInBytes are {after} and were {before}: something else lies in the table's memory",
     "Make the table static and constant.",
     "The library keeps the pointer to the table. A table in a local variable is gone when the function returns, and a "
     "freed one belongs to somebody else. The next call of a service jumps to an arbitrary address."},
    {"host-table-alignment", Level::Error, "{slot} needs a stack that is aligned to 16 bytes: {function}",
     "Compile the services with -mstackrealign.",
     "Some calls of a plugin reach a service directly, on the stack as the plugin left it. Old plugins align the stack "
     "to 4 bytes. The function moves 16 bytes to or from its stack with an instruction that faults at other addresses, "
     "and does not align the stack first. Such a fault depends on the plugin and on the depth of the call."},
};

} // namespace host

#endif
