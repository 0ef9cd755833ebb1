// One line of a session after it was read.
#ifndef AVSK_HOST_SESSION_STEP_H
#define AVSK_HOST_SESSION_STEP_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Form;

struct Word {
    std::string text; // without quotes and escapes
    int column;       // 1 is the first
    bool quoted;
};

struct Step {
    const Form *form;
    int line;
    std::string text;        // as written
    bool negated;            // expect no ...
    std::vector<Word> words; // the parameters that are present

    const std::string &operator[](std::size_t index) const { return words[index].text; }
    std::size_t Count() const { return words.size(); }
    // True if an unquoted word is among the parameters after the first.
    bool Has(std::string_view word) const;
    std::vector<std::string> From(std::size_t first) const;
};

} // namespace host

#endif
