// The stack of functions; see Backtrace.h. The lines come from addr2line, which
// stands beside every compiler: it is another process, so whatever this one
// has come to does not matter to it.
#include "Backtrace.h"

#include "History.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

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

constexpr std::size_t kShown = 32;
constexpr unsigned kPatience = 5; // seconds for addr2line

std::string &gProgram = *new std::string;    // this one's file
std::string &gSymbolizer = *new std::string; // empty without one

struct Frame {
    const char *file; // null: nobody's code
    std::uintptr_t offset;
    bool isNamed;  // by a symbol of its own: in a file without them all addr2line takes the next best
    int times = 1; // that it follows itself
};

Frame FrameAt(std::uintptr_t address) {
    Dl_info info{};
    link_map *map = nullptr;
    if (dladdr1(reinterpret_cast<void *>(address), &info, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP) == 0 ||
        !map)
        return {nullptr, address, false};
    const char *file = map->l_name && *map->l_name ? map->l_name : gProgram.c_str();
    return {file, address - map->l_addr, info.dli_sname || std::string_view(file).ends_with(".avp")};
}

// The observers' own functions, which stand between any two that matter.
bool IsOfObservers(std::string_view what) {
    return what.find("crossings::") != std::string_view::npos ||
           what.find("/Prototypes.inc:") != std::string_view::npos;
}

void AddHex(Line &line, std::uintptr_t number) { line.Add(crossings::ValueOf(reinterpret_cast<const void *>(number))); }

void WriteFrame(const Frame &frame, std::string_view what) {
    Line line;
    line.Add("  ");
    const std::string_view file = frame.file ? frame.file : "";
    const std::size_t noSource = what.find(" at ??:");
    if (what.empty() || what.starts_with("??") || (noSource != std::string_view::npos && !frame.isNamed)) {
        line.Add(file.empty() ? std::string_view("no file's code at ") : file.substr(file.rfind('/') + 1));
        if (!file.empty())
            line.Add('+');
        AddHex(line, frame.offset);
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
    line.Add('\n');
    WriteError(line.Text());
}

// What addr2line says about frames of one file. Nothing if it cannot be run.
std::string_view Symbolize(std::span<const Frame> frames, std::span<char> buffer) {
    std::array<Line, kShown> offsets;
    std::array<const char *, kShown + 4> arguments{gSymbolizer.c_str(), "-Cfipe", frames.front().file};
    for (std::size_t i = 0; i < frames.size(); ++i) {
        AddHex(offsets[i], frames[i].offset);
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
    static std::array<char, 32 * 1024> buffer; // there is but one report
    std::string_view text = Symbolize(frames, buffer);
    for (const Frame &frame : frames) {
        std::string_view line = text.substr(0, text.find('\n'));
        if (!IsOfObservers(line))
            WriteFrame(frame, line);
        // Behind it are the functions that it was inlined into.
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

// A call of what is no code leaves nothing to unwind from but the address to return to.
void ReturnFromNowhere(ucontext_t &context) {
    greg_t &stack = context.uc_mcontext.gregs[REG_ESP];
    context.uc_mcontext.gregs[REG_EIP] = *reinterpret_cast<const greg_t *>(stack);
    stack += static_cast<greg_t>(sizeof(greg_t));
}

void *InstructionOf(const ucontext_t &context) { return reinterpret_cast<void *>(context.uc_mcontext.gregs[REG_EIP]); }

std::span<void *const> FromContextOn(std::span<void *const> stack, const ucontext_t *context) {
    const auto begin = context ? std::find(stack.begin(), stack.end(), InstructionOf(*context))
                               : std::find_if(stack.begin(), stack.end(),
                                              [](void *address) { return FileAt(address) != gProgram.c_str(); });
    return begin == stack.end() ? stack : std::span<void *const>(begin, stack.end());
}

} // namespace

const char *FileAt(const void *address) { return FrameAt(reinterpret_cast<std::uintptr_t>(address)).file; }

void PrepareBacktrace() {
    void *here = nullptr;
    backtrace(&here, 1); // loads the unwinder
    std::array<char, 4096> program{};
    if (readlink("/proc/self/exe", program.data(), program.size() - 1) > 0)
        gProgram = program.data();
    const char *path = std::getenv("PATH");
    std::string_view folders = path ? path : "/usr/bin:/bin";
    for (gSymbolizer.clear(); gSymbolizer.empty() && !folders.empty();) {
        const std::string file = std::string(folders.substr(0, folders.find(':'))) + "/addr2line";
        folders.remove_prefix(std::min(folders.find(':') + 1 ? folders.find(':') + 1 : folders.size(), folders.size()));
        if (access(file.c_str(), X_OK) == 0)
            gSymbolizer = file;
    }
}

void WriteBacktrace(ucontext_t *context) {
    bool isExact = context != nullptr; // other frames are addresses to return to, behind the call
    if (context && !FileAt(InstructionOf(*context))) {
        ReturnFromNowhere(*context);
        isExact = false;
    }
    static std::array<void *, 256> stack;
    const int depth = backtrace(stack.data(), static_cast<int>(stack.size()));
    std::array<Frame, kShown> frames;
    std::size_t count = 0;
    WriteError("The stack, the innermost function first:\n");
    for (void *address : FromContextOn({stack.data(), static_cast<std::size_t>(depth)}, context)) {
        const Frame frame = FrameAt(reinterpret_cast<std::uintptr_t>(address) - (isExact ? 0 : 1));
        isExact = false;
        if (count > 0 && frames[count - 1].file == frame.file && frames[count - 1].offset == frame.offset)
            ++frames[count - 1].times;
        else if (count < kShown)
            frames[count++] = frame;
        else
            break;
    }
    for (std::span<const Frame> left(frames.data(), count); !left.empty();) {
        const auto end = std::find_if(left.begin(), left.end(),
                                      [&left](const Frame &frame) { return frame.file != left.front().file; });
        const auto ofOneFile = static_cast<std::size_t>(end - left.begin());
        WriteFramesOfOneFile(left.first(ofOneFile));
        left = left.subspan(ofOneFile);
    }
    if (depth == static_cast<int>(stack.size()))
        WriteError("  ... and more\n");
}

} // namespace host
