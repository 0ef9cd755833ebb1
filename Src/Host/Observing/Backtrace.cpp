// Writes the stack of functions; see Backtrace.h. Source lines come from
// addr2line, which is part of binutils. It is a process of its own, so the state
// of this one does not affect it.
#include "Backtrace.h"

#include "Fault.h"
#include "History.h"

#include "Crossings/Words.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <tuple>

#include <csignal>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <link.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {

using crossings::Line;

namespace {

constexpr std::size_t kShown = std::tuple_size_v<decltype(Stack::frames)>;
constexpr unsigned kPatience = 5;       // seconds for addr2line
constexpr unsigned kWholePatience = 15; // seconds for a stack

std::string &gProgram = *new std::string;                   // the path of this program
std::string &gOwnFile = *new std::string;                   // of the observers: the program, or a preloaded object
std::string &gSymbolizer = *new std::string;                // the path of addr2line; empty without it
std::set<std::string> &gFiles = *new std::set<std::string>; // of stacks that are kept

Frame FrameAt(std::uintptr_t address) {
    Dl_info info{};
    link_map *map = nullptr;
    if (dladdr1(reinterpret_cast<void *>(address), &info, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP) == 0 ||
        !map)
        return {nullptr, address, false};
    const char *file = map->l_name && *map->l_name ? map->l_name : gProgram.c_str();
    return {file, address - map->l_addr, info.dli_sname || std::string_view(file).ends_with(".avp")};
}

bool IsOwn(const char *file) { return file && file == gOwnFile; }

// The functions of the observing layer, which are between any two of interest.
bool IsOfObservers(std::string_view what) {
    return what.find("crossings::") != std::string_view::npos ||
           what.find("/Prototypes.inc:") != std::string_view::npos;
}

void WriteFrame(const Frame &frame, std::string_view what) {
    Line line;
    line.Add("  ");
    const std::string_view file = frame.file ? frame.file : "";
    const std::size_t noSource = what.find(" at ??:");
    if (what.empty() || what.starts_with("??") || (noSource != std::string_view::npos && !frame.isNamed)) {
        line.Add(file.empty() ? std::string_view("no file's code at ") : file.substr(file.rfind('/') + 1));
        if (!file.empty())
            line.Add('+');
        line.AddHex(frame.offset);
    } else if (noSource != std::string_view::npos) {
        line.Add(what.substr(0, noSource));
        line.Add(" in ");
        line.Add(file.substr(file.rfind('/') + 1));
    } else {
        line.Add(what);
    }
    if (frame.times > 1) {
        line.Add(", ");
        line.Add(frame.times);
        line.Add(" times");
    }
    WriteError(line.Text());
    WriteError("\n"); // not in the line, which may be cut
}

// The output of addr2line for frames of one file. Empty if it cannot be run.
std::string_view Symbolize(std::span<const Frame> frames, std::span<char> buffer) {
    std::array<Line, kShown> offsets;
    std::array<const char *, kShown + 4> arguments{gSymbolizer.c_str(), "-Cfipe", frames.front().file};
    for (std::size_t i = 0; i < frames.size(); ++i) {
        offsets[i].AddHex(frames[i].offset);
        offsets[i].Add('\0');
        arguments[i + 3] = offsets[i].Text().data();
    }
    std::array<int, 2> ends{};
    if (gSymbolizer.empty() || !frames.front().file || pipe2(ends.data(), O_CLOEXEC) != 0)
        return {};
    const pid_t child = _Fork();
    if (child == 0) {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        std::signal(SIGALRM, SIG_DFL);
        alarm(kPatience);
        dup2(ends[1], STDOUT_FILENO);
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
        std::array<char *, 1> environment{};
        execve(gSymbolizer.c_str(), const_cast<char *const *>(arguments.data()), environment.data());
        _exit(1);
    }
    close(ends[1]);
    std::size_t length = 0;
    for (ssize_t part = 1; part > 0 && length < buffer.size(); length += static_cast<std::size_t>(part))
        part = std::max<ssize_t>(read(ends[0], buffer.data() + length, buffer.size() - length), 0);
    close(ends[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    return {buffer.data(), length};
}

void WriteFramesOfOneFile(std::span<const Frame> frames) {
    static std::array<char, 32 * 1024> buffer; // there is only one report
    std::string_view text = Symbolize(frames, buffer);
    for (const Frame &frame : frames) {
        std::string_view line = text.substr(0, text.find('\n'));
        if (!IsOfObservers(line))
            WriteFrame(frame, line);
        // The next lines are the functions into which this one was inlined.
        for (;;) {
            text.remove_prefix(std::min(line.size() + 1, text.size()));
            line = text.substr(0, text.find('\n'));
            if (!line.starts_with(" (inlined by) "))
                break;
            if (IsOfObservers(line))
                continue;
            WriteError(" ");
            WriteError(line);
            WriteError("\n");
        }
    }
}

// After a call of an address without code, unwinding starts at the return address.
void ReturnFromNowhere(ucontext_t &context) {
    greg_t &stack = context.uc_mcontext.gregs[REG_ESP];
    context.uc_mcontext.gregs[REG_EIP] = *reinterpret_cast<const greg_t *>(stack);
    stack += static_cast<greg_t>(sizeof(greg_t));
}

void *InstructionOf(const ucontext_t &context) { return reinterpret_cast<void *>(context.uc_mcontext.gregs[REG_EIP]); }

std::span<void *const> FromContextOn(std::span<void *const> stack, const ucontext_t *context) {
    const auto begin =
        context ? std::find(stack.begin(), stack.end(), InstructionOf(*context))
                : std::find_if(stack.begin(), stack.end(), [](void *address) { return !IsOwn(FileAt(address)); });
    return begin == stack.end() ? stack : std::span<void *const>(begin, stack.end());
}

// The frames of a stack. Unless the first address is an instruction, all are
// return addresses, which lie behind the call.
Stack FramesOf(std::span<void *const> addresses, bool isFirstExact) {
    Stack stack;
    for (void *address : addresses) {
        const Frame frame = FrameAt(reinterpret_cast<std::uintptr_t>(address) - (isFirstExact ? 0 : 1));
        isFirstExact = false;
        Frame *last = stack.count > 0 ? &stack.frames[stack.count - 1] : nullptr;
        if (last && last->file == frame.file && last->offset == frame.offset)
            ++last->times;
        else if (stack.count < kShown)
            stack.frames[stack.count++] = frame;
        else
            stack.isCut = true;
    }
    return stack;
}

void WriteInterruptedStack(ucontext_t *context) {
    bool isExact = context != nullptr;
    if (context && !FileAt(InstructionOf(*context))) {
        ReturnFromNowhere(*context);
        isExact = false;
    }
    static std::array<void *, 256> addresses;
    const auto depth = static_cast<std::size_t>(backtrace(addresses.data(), static_cast<int>(addresses.size())));
    Stack stack = FramesOf(FromContextOn({addresses.data(), depth}, context), isExact);
    stack.isCut = stack.isCut || depth == addresses.size();
    WriteStack(stack);
}

} // namespace

std::string SourceLineOf(const void *address) {
    const Frame frame = FrameAt(reinterpret_cast<std::uintptr_t>(address) - 1);
    std::array<char, 4096> buffer{};
    std::string_view text = Symbolize({&frame, 1}, buffer);
    text = text.substr(0, text.find('\n')); // "Tick at /home/me/Pilot.cpp:58"
    const std::size_t path = text.rfind(" at ");
    if (path == std::string_view::npos)
        return "";
    text = text.substr(path + 4);
    text = text.substr(0, text.find(" (discriminator"));
    text = text.substr(text.rfind('/') + 1);
    return text.starts_with("??") || text.ends_with(":?") || text.ends_with(":0") ? "" : std::string(text);
}

const char *FileAt(const void *address) { return FrameAt(reinterpret_cast<std::uintptr_t>(address)).file; }

std::vector<void *> ReturnAddressesIn(std::string_view file) {
    std::array<void *, 64> addresses{};
    const auto depth = static_cast<std::size_t>(backtrace(addresses.data(), static_cast<int>(addresses.size())));
    std::vector<void *> inFile;
    for (void *address : std::span(addresses).first(depth)) {
        const char *of = FileAt(address);
        if (of && file == of)
            inFile.push_back(address);
    }
    return inFile;
}

Caller CallerOfProgram() {
    std::array<void *, 64> addresses{};
    const auto depth = static_cast<std::size_t>(backtrace(addresses.data(), static_cast<int>(addresses.size())));
    Caller caller{nullptr, nullptr};
    for (void *address : std::span(addresses).first(depth)) {
        const char *file = FileAt(address);
        if (!file || IsOwn(file))
            continue;
        if (!caller.file || std::string_view(file).ends_with(".avp"))
            caller = {address, file};
        if (std::string_view(file).ends_with(".avp"))
            break;
    }
    return caller;
}

void PrepareBacktrace() {
    void *here = nullptr;
    backtrace(&here, 1); // loads the unwinder
    std::array<char, 4096> program{};
    if (readlink("/proc/self/exe", program.data(), program.size() - 1) > 0)
        gProgram = program.data();
    if (const char *const own = FileAt(reinterpret_cast<const void *>(&PrepareBacktrace)))
        gOwnFile = own;
    const char *path = std::getenv("PATH");
    std::string_view folders = path ? path : "/usr/bin:/bin";
    for (gSymbolizer.clear(); gSymbolizer.empty() && !folders.empty();) {
        const std::string file = std::string(crossings::TakeWord(folders, ":")) + "/addr2line";
        if (access(file.c_str(), X_OK) == 0)
            gSymbolizer = file;
    }
}

void WriteBacktrace(ucontext_t *context) {
    WriteError("The stack, the innermost function first:\n");
    // A child follows the stack: if the stack is overwritten, only the child faults.
    const pid_t child = _Fork();
    if (child == 0) {
        for (const int signal : kFatalSignals)
            std::signal(signal, SIG_DFL);
        std::signal(SIGALRM, SIG_DFL);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        alarm(kWholePatience);
        WriteInterruptedStack(context);
        _exit(0);
    }
    int status = 0;
    if (child > 0 && waitpid(child, &status, 0) == child && status == 0)
        return;
    const void *instruction = context ? InstructionOf(*context) : nullptr;
    if (FileAt(instruction))
        WriteFramesOfOneFile(std::array{FrameAt(reinterpret_cast<std::uintptr_t>(instruction))});
    WriteError("  The callers are unknown: the stack is overwritten.\n");
}

Stack StackOf(std::span<void *const> addresses) {
    Stack stack = FramesOf(FromContextOn(addresses, nullptr), /*isFirstExact=*/false);
    for (Frame &frame : std::span(stack.frames).first(stack.count)) {
        char *path = frame.file ? realpath(frame.file, nullptr) : nullptr;
        if (frame.file)
            frame.file = gFiles.emplace(path ? path : frame.file).first->c_str();
        std::free(path);
    }
    return stack;
}

void WriteStack(const Stack &stack) {
    for (std::span<const Frame> left(stack.frames.data(), stack.count); !left.empty();) {
        const auto end = std::find_if(left.begin(), left.end(),
                                      [&left](const Frame &frame) { return frame.file != left.front().file; });
        const auto ofOneFile = static_cast<std::size_t>(end - left.begin());
        WriteFramesOfOneFile(left.first(ofOneFile));
        left = left.subspan(ofOneFile);
    }
    if (stack.isCut)
        WriteError("  ... and more\n");
}

} // namespace host
