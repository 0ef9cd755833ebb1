// The definitions that this layer's own definitions hide.
#ifndef AVSK_HOST_REAL_SYMBOLS_H
#define AVSK_HOST_REAL_SYMBOLS_H

namespace crossings {

// The next definition of a name: behind this layer in the global scope, or else in
// the library, wherever the program loaded it. Null if there is none.
void *NextSymbol(const char *name);

// Whether the library is in this process.
bool IsLibraryLoaded();

// The dynamic linker's dlsym().
using Lookup = void *(*)(void *handle, const char *name);
Lookup RealLookup();

// This layer's definitions of the exported names. The last one has no name.
struct Export {
    const char *name;
    void *address;
};
extern const Export kExports[];

// This layer's definition of an exported name; null if the name is not exported.
void *LayerSymbol(const char *name);

} // namespace crossings

#endif
