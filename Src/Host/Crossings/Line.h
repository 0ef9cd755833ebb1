// A text of limited length, made without allocation. Signal handlers use it too.
#ifndef AVSK_HOST_LINE_H
#define AVSK_HOST_LINE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace crossings {

class Line {
  public:
    static constexpr std::size_t kSize = 480;

    // What exceeds the size is cut, and "..." marks the cut.
    void Add(std::string_view text);
    void Add(char c) { Add(std::string_view(&c, 1)); }
    void Add(int number);
    void Add(double number);
    void AddHex(std::uintptr_t number);

    std::string_view Text() const { return {mText, mLength}; }
    void Clear() { mLength = 0; }

  private:
    char mText[kSize];
    std::size_t mLength = 0;
};

} // namespace crossings

#endif
