// Starts rlwrap; see Rlwrap.h. A line editor as a library would need a 32-bit
// package, which is not always installable.
#include "Rlwrap.h"

#include "Forms.h"

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <sys/ioctl.h>
#include <unistd.h>

namespace host {
namespace {

// Set under rlwrap: the file of words, which rlwrap has read by then.
constexpr const char *kWordsVariable = "AVSK_SESSION_WORDS";

std::set<std::string> Vocabulary() {
    std::set<std::string> words{"expect", "no", "help", "quit"};
    for (const Form &form : SessionForms()) {
        words.emplace(form.word);
        std::string word;
        for (const char c : std::string(form.parameters) + " ") {
            if (c >= 'a' && c <= 'z') {
                word += c;
            } else if (!word.empty()) {
                words.insert(word);
                word.clear();
            }
        }
    }
    return words;
}

// Returns the name of a new file of words; empty if it cannot be written.
std::string WriteWords() {
    std::string name = (std::filesystem::temp_directory_path() / "avsk-words-XXXXXX").string();
    const int file = mkstemp(name.data());
    if (file < 0)
        return "";
    std::string text;
    for (const std::string &word : Vocabulary())
        text += word + "\n";
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(file);
    return written ? name : "";
}

// rlwrap needs the width of the terminal.
bool IsTerminal() {
    winsize size{};
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1 && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 &&
           size.ws_col > 0;
}

} // namespace

void RestartUnderRlwrap(char **argv) {
    std::error_code error;
    if (const char *words = std::getenv(kWordsVariable)) {
        std::filesystem::remove(words, error);
        return;
    }
    const bool isEdited = std::getenv("RLWRAP_COMMAND_PID") != nullptr;
    if (isEdited || !IsTerminal())
        return;
    const std::string words = WriteWords();
    std::string program = std::filesystem::read_symlink("/proc/self/exe", error).string();
    if (words.empty() || error)
        return;
    setenv(kWordsVariable, words.c_str(), /*overwrite=*/1);
    // --remember: rlwrap also completes words that were printed or typed, such as names of plugins.
    std::vector<std::string> command{"rlwrap", "--command-name", "avsk", "--remember", "--file", words, program};
    for (char **argument = argv + 1; *argument; ++argument)
        command.emplace_back(*argument);
    std::vector<char *> pointers;
    pointers.reserve(command.size() + 1);
    for (std::string &part : command)
        pointers.push_back(part.data());
    pointers.push_back(nullptr);
    execvp(pointers.front(), pointers.data());
    unsetenv(kWordsVariable);
    std::filesystem::remove(words, error);
}

} // namespace host
