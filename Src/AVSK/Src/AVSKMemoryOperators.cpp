// The library's own operators new and delete, and its own end of what the
// standard containers throw for a lack of memory or an impossible length: all
// of them go to MemoryExhausted. Hidden in the shared library, so the host's
// and the plugins' operators stay theirs; the static library does without. No
// globals. What the library frees it has allocated itself: nothing that new has
// returned crosses its border.
#include "AVSKMemory.h"

#include <cstddef>
#include <cstdlib>
#include <stdexcept>

void *operator new(std::size_t size) {
    void *memory = std::malloc(size); // not null for an empty block
    if (!memory)
        MemoryExhausted();
    return memory;
}

void *operator new[](std::size_t size) { return operator new(size); }

void *operator new(std::size_t size, std::align_val_t alignment) {
    const auto unit = static_cast<std::size_t>(alignment);
    void *memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit);
    if (!memory)
        MemoryExhausted();
    return memory;
}

void operator delete(void *memory) noexcept { std::free(memory); } // unreachable: every size is known
void operator delete(void *memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void *memory) noexcept { std::free(memory); } // unreachable: no array is freed
void operator delete[](void *memory, std::size_t /*size*/) noexcept { std::free(memory); } // unreachable: likewise

// NOLINTBEGIN(bugprone-reserved-identifier): the runtime's names
namespace std {

void __throw_bad_alloc() { MemoryExhausted(); }            // unreachable: no container gets this large
void __throw_bad_array_new_length() { MemoryExhausted(); } // unreachable: likewise
void __throw_length_error(const char * /*what*/) { MemoryExhausted(); }

} // namespace std
// NOLINTEND(bugprone-reserved-identifier)
