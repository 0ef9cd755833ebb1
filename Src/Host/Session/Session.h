// A session: steps read from a text. What the words are is in
// Forms.cpp, how they are read in SessionParser.cpp, what they do in
// SessionSteps.cpp and SessionExpect.cpp.
#ifndef AVSK_HOST_SESSION_SESSION_H
#define AVSK_HOST_SESSION_SESSION_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class SessionRunner;
struct Step;

// Does a step. The answer says what went wrong; empty if nothing did.
using StepAction = std::string (*)(SessionRunner &run, const Step &step);

enum class StepKind {
    SetUp,  // before the plugins are loaded
    Step,   // something happens
    Expect, // something is looked at
};

// A kind of line. The parameters are words from left to right:
//
//     TEXT COUNT INTEGER NUMBER POINT RECT SIZE KEY SLOT KIND VALUE    one of that kind
//     a|b      one of the words themselves
//     [..]     may be missing
//     ..+      the last one may be repeated
struct Form {
    StepKind kind;
    std::string_view name; // the first word, behind "expect" or "expect no" for expectations
    std::string_view parameters;
    std::string_view help;
    StepAction action; // null for set-up
    bool afterUnload = false;
};

std::span<const Form> SessionForms();
// Lists them for a reader, on standard output.
void PrintSessionWords();

struct Word {
    std::string text;
    int column;
    bool quoted;
};

struct Step {
    const Form *form;
    int line;
    std::string text;        // as it was written
    bool negated = false;    // expect no ...
    std::vector<Word> words; // the parameters that are there

    const std::string &operator[](std::size_t index) const { return words[index].text; }
    std::size_t Count() const { return words.size(); }
    // Whether a plain word is among the parameters behind the first.
    bool Has(std::string_view word) const;
    std::vector<std::string> From(std::size_t first) const;
};

// Reads lines of one session in order. Throws UsageError with the place of the fault.
class SessionParser {
  public:
    explicit SessionParser(std::string name) : mName(std::move(name)) {}

    // Adds the step of a line, if there is one on it.
    void Read(std::string_view line, std::vector<Step> &steps);

  private:
    [[noreturn]] void Refuse(int column, const std::string &why) const;
    std::vector<Word> Split(std::string_view line) const;
    const Form &Find(const std::vector<Word> &words, std::size_t first, bool expectation, int end) const;
    void Fit(const Form &form, const std::vector<Word> &words, int end) const;
    void CheckOrder(const Step &step, int column);

    std::string mName;
    int mLine = 0;
    bool mBegun = false;
    bool mUnloaded = false;
};

// The numbers of words that the parser has let pass.
double NumberOf(std::string_view text);
std::vector<int> IntegersOf(std::string_view text); // x,y or l,t,r,b or WxH
// A virtual key code by the library's name of the key, in any case; 0 if there is none.
int KeyOf(std::string_view name);

} // namespace host

#endif
