// A ring of notes, which all threads write and one reads; see ForeignCalls.h. Owns the ring.
#include "ForeignCalls.h"

#include <array>
#include <atomic>
#include <string_view>

#include <unistd.h>

namespace host {
namespace {

struct Note {
    std::atomic<const crossings::Prototype *> function = nullptr; // null: not written yet, or taken
    std::atomic<int> thread = 0;
};

constexpr unsigned kSize = 256;
std::array<Note, kSize> gNotes;
std::atomic<unsigned> gWritten = 0;
unsigned gTaken = 0;

void NoteCall(const crossings::Prototype &function) {
    if (std::string_view(function.name).ends_with("TLS"))
        return; // these are for all threads
    Note &note = gNotes[gWritten++ % kSize];
    note.thread = gettid();
    note.function = &function;
}

} // namespace

ForeignCalls::ForeignCalls() { crossings::AddForeignHandler(NoteCall); }
ForeignCalls::~ForeignCalls() { crossings::RemoveForeignHandler(NoteCall); }

bool ForeignCalls::IsAny() const { return gWritten.load(std::memory_order_relaxed) != gTaken; }

void ForeignCalls::Take(const Use &use) {
    const unsigned written = gWritten;
    if (written - gTaken > kSize)
        gTaken = written - kSize;
    for (; gTaken != written; ++gTaken) {
        Note &note = gNotes[gTaken % kSize];
        const crossings::Prototype *const function = note.function.exchange(nullptr);
        if (!function)
            return; // it is being written
        use(*function, note.thread);
    }
}

} // namespace host
