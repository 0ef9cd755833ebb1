// The definitions that this program's own definitions hide.
#ifndef AVSK_HOST_REAL_SYMBOLS_H
#define AVSK_HOST_REAL_SYMBOLS_H

namespace crossings {

// The next definition of a name behind this program's: for an exported name the library's.
void *NextSymbol(const char *name);

} // namespace crossings

#endif
