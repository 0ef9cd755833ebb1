// The definitions behind names that this program defines itself.
#ifndef AVSK_HOST_REAL_SYMBOLS_H
#define AVSK_HOST_REAL_SYMBOLS_H

namespace crossings {

// The next definition of a name: the library's, for an exported name.
void *NextSymbol(const char *name);

} // namespace crossings

#endif
