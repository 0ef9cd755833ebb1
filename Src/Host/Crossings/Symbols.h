// Names of functions, static ones too, from the symbol tables of their files.
#ifndef AVSK_HOST_SYMBOLS_H
#define AVSK_HOST_SYMBOLS_H

#include <string>

namespace crossings {

// "Tick" or "lights::Tick", without parameters; "lin.avp+0x1234" where the
// file has no symbol there.
std::string SymbolAt(const void *address);
// Reads the file of an address anew when it is asked for: it may have been replaced.
void ForgetSymbolsNear(const void *address);

} // namespace crossings

#endif
