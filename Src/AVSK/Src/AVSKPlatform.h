// What the library needs of the operating system, shared libraries and
// folders, and two small text functions. Floor 2.
#ifndef AVSK_PLATFORM_H
#define AVSK_PLATFORM_H

#include "AVSK/AVSKUtilities.h"

#include <string>
#include <vector>

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

// Loads a shared library, resolves all its symbols and makes them visible to
// libraries loaded later. Null if the file is missing or, with a line in the
// log, if it cannot be loaded.
void *AVSKLoadDLL(const char *path);
void AVSKUnloadDLL(void *handle);

// The address of an exported symbol, or null; a failure is logged if
// logFailure is non-zero. A null handle has no symbols.
void *AVSKFindSymbol(void *handle, const char *name, int logFailure);

// Appends the names of a folder's entries, in the system's order. The pattern
// is "*.*" for all, "*" and an ending, or "DIR" for folders. "DIR" also counts
// as an ending, so a folder "my.dir" is appended twice.
void AVSKFetchDirectoryContents(const char *path, const char *pattern, std::vector<std::string> &out);

// 1 if name ends as pattern requires, regardless of case.
int suffix_matches(const char *name, const char *pattern);

// Copies src into a buffer of size bytes, truncated and zero-terminated.
void strcpytrunc(char *dst, const std::string &src, int size);

#pragma GCC visibility pop

#endif
