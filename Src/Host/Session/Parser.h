// Reads the lines of a session into steps.
#ifndef AVSK_HOST_SESSION_PARSER_H
#define AVSK_HOST_SESSION_PARSER_H

#include "Step.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

// Reads the lines of one session in order.
class SessionParser {
  public:
    // The name is for messages.
    explicit SessionParser(std::string name) : mName(std::move(name)) {}

    // The step of the next line; nothing if the line has none. Throws UsageError
    // with line and column.
    std::optional<Step> Read(std::string_view line);

  private:
    [[noreturn]] void Refuse(int column, const std::string &why) const;
    std::vector<Word> Split(std::string_view line) const;
    Word TakeQuoted(std::string_view line, std::size_t &at) const;
    const Form &Find(const std::vector<Word> &words, std::size_t first, bool expectation, int end) const;
    void CheckParameters(const Form &form, const std::vector<Word> &words, int end) const;
    void CheckOrder(const Form &form, bool negated, int column);

    std::string mName;
    int mLine = 0;
    bool mBegun = false;    // a step or an expectation was read
    bool mUnloaded = false; // 'unload' was read
};

} // namespace host

#endif
