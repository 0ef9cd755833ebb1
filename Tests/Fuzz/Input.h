// The input of one run, consumed from the front; a used-up one yields zeros.
#ifndef AVSK_FUZZ_INPUT_H
#define AVSK_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>

class Input {
  public:
    void Set(const std::uint8_t *bytes, std::size_t size) {
        at = bytes;
        end = bytes + size;
    }
    bool Empty() const { return at == end; }
    unsigned Byte() { return at == end ? 0 : *at++; }
    // A number from 0 to limit - 1; limit is at most 256.
    int Below(int limit) { return static_cast<int>(Byte() % static_cast<unsigned>(limit)); }
    // True once in so many.
    bool Rarely(int oneIn) { return Below(oneIn) == oneIn - 1; }
    bool Flag() { return (Byte() & 1U) != 0; }
    template <class T, std::size_t kCount>
    T OneOf(const T (&values)[kCount]) {
        return values[Byte() % kCount];
    }

  private:
    const std::uint8_t *at = nullptr;
    const std::uint8_t *end = nullptr;
};

#endif
