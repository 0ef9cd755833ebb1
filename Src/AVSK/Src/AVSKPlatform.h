// What the library needs of the operating system: shared libraries, folders,
// and two small text functions.
#ifndef AVSK_PLATFORM_H
#define AVSK_PLATFORM_H

#include "AVSK/AVSKUtilities.h"

#include <string>
#include <vector>

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

// Loads a shared library with all its symbols resolved and visible to those
// loaded later. Null if there is no such file, or, with a line in the log, if
// it cannot be loaded.
void *AVSKLoadDLL(const char *path);
void AVSKUnloadDLL(void *handle);

// The address of an exported symbol, or null, which is logged if logFailure
// is non-zero. A null handle has no symbols.
void *AVSKFindSymbol(void *handle, const char *name, int logFailure);

// Appends the names of a folder's entries, in the system's order. The pattern
// is "*.*" for all, "*" and an ending, or "DIR" for folders; "DIR" is also
// taken as an ending, so that a folder "my.dir" is appended twice.
void AVSKFetchDirectoryContents(const char *path, const char *pattern, std::vector<std::string> &out);

// 1 if name ends as pattern says, in any case of letters.
int suffix_matches(const char *name, const char *pattern);

// Copies src into a buffer of size bytes, cut to fit and zero-terminated.
void strcpytrunc(char *dst, const std::string &src, int size);

#pragma GCC visibility pop

#endif
