// Names of functions, including static ones, from the symbol tables of their files.
#ifndef AVSK_HOST_SYMBOLS_H
#define AVSK_HOST_SYMBOLS_H

#include <cstddef>
#include <string>
#include <string_view>

namespace crossings {

// The function at an address: "Tick" or "lights::Tick", without parameters, or
// "lin.avp+0x1234" if the file has no symbol for it.
std::string SymbolAt(const void *address);
// The size of the function that begins at an address; 0 if its file has no symbol for it.
std::size_t SizeAt(const void *function);
// The same text outside the heap, where it stays. Looks each address up once.
std::string_view KeptNameAt(const void *address);
// Forgets the symbols of the file that an address belongs to, which may have been
// replaced, and those of files that were removed.
void ForgetSymbolsNear(const void *address);

} // namespace crossings

#endif
