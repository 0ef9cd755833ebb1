// The checks of buffers; see HostTextChecks.h.
#include "HostTextChecks.h"

#include "HostServiceRules.h"

#include "Common/Utf8.h"
#include "Crossings/ValueText.h"

#include "AVSK/AVSKTypes.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <sys/uio.h>
#include <unistd.h>

namespace host {
namespace {

using crossings::Crossing;

constexpr std::size_t kPage = 4096;
constexpr std::size_t kLongest = 512; // the largest buffer of a text
constexpr char kUnwritten = '\x01';   // begins no path

constexpr TextRow kTexts[] = {
    {"getAircraftModel", "outPath", AVSK_TEXT_SIZE},
    {"getAircraftModel", "outFileName", AVSK_TEXT_SIZE},
    {"getSystemPath", "outPath", 512},
    {"getPrefsPath", "outPath", 512},
};

// The kernel writes, so a bad address is an error and not a fault.
bool WriteByte(char *to, char byte) {
    const iovec source{&byte, 1};
    const iovec target{to, 1};
    return process_vm_writev(getpid(), &source, 1, &target, 1, 0) == 1;
}

// A text whose bytes may be anything.
std::string Printable(std::string_view text) {
    std::string shown;
    for (const char c : text.substr(0, 80)) {
        std::array<char, 5> code{};
        std::snprintf(code.data(), code.size(), "\\x%02x", static_cast<unsigned char>(c));
        shown += c >= ' ' && c < 0x7F ? std::string(1, c) : code.data();
    }
    return Quoted(shown);
}

} // namespace

constexpr CallRow<HostTextChecks> HostTextChecks::kBefore[] = {
    {"AVSKInitializePlugins", &HostTextChecks::BeforeStart},
    {"generateTextureNumbers", &HostTextChecks::BeforeTextures},
};

HostTextChecks::HostTextChecks(Findings &findings) : mFindings(findings), mBefore(kBefore), mTexts(kTexts) {
    crossings::AddObserver(*this);
}

HostTextChecks::~HostTextChecks() { crossings::RemoveObserver(*this); }

// Of all calls: what a service calls may rightly change memory.
crossings::Interest HostTextChecks::InterestIn(const crossings::Prototype & /*function*/) const {
    return crossings::Interest::Work;
}

void HostTextChecks::Begins(const Crossing &crossing) {
    mLast = &crossing;
    mBefore.Apply(*this, crossing);
    for (const auto &[row, argument] : mTexts.Of(crossing.what))
        Watch(crossing, row->parameter, crossing.arguments[argument].pointer, row->size, true);
}

void HostTextChecks::Ends(const Crossing &crossing) {
    mModel.reset();
    while (!mBuffers.empty() && mBuffers.back().call == &crossing) {
        Judge(mBuffers.back(), mLast == &crossing);
        mBuffers.pop_back();
    }
}

// ---- Buffers

// The service must write at least the first byte of a text, so that byte can tell
// whether it did. It is restored if it did not.
void HostTextChecks::Watch(const Crossing &call, std::string_view name, const void *begin, std::size_t size,
                           bool isText) {
    Buffer buffer{.call = &call,
                  .name = name,
                  .begin = static_cast<char *>(const_cast<void *>(begin)),
                  .size = size,
                  .isText = isText,
                  .first = '\0',
                  .guard = 0,
                  .behind = {}};
    const char *end = buffer.begin + size;
    buffer.guard = std::min(kGuard, kPage - reinterpret_cast<std::uintptr_t>(end) % kPage);
    for (Buffer &other : mBuffers) { // the two texts of one call may lie side by side
        if (other.call != &call)
            continue;
        if (other.begin >= end)
            buffer.guard = std::min(buffer.guard, static_cast<std::size_t>(other.begin - end));
        else if (begin >= other.begin + other.size)
            other.guard = std::min(other.guard, static_cast<std::size_t>(buffer.begin - other.begin - other.size));
        else
            return;
    }
    if (!crossings::ReadMemory(end, buffer.behind.data(), buffer.guard))
        buffer.guard = 0;
    if (isText && (!crossings::ReadMemory(begin, &buffer.first, 1) || !WriteByte(buffer.begin, kUnwritten)))
        return;
    mBuffers.push_back(buffer);
}

void HostTextChecks::Judge(const Buffer &buffer, bool isUndisturbed) {
    const Crossing &call = *buffer.call;
    const std::string name(buffer.name);
    std::array<char, kLongest + 1> text{};
    const bool isRead = buffer.isText && crossings::ReadText(buffer.begin, -1, text.data(), buffer.size + 1);
    const bool isUnwritten = isRead && text[0] == kUnwritten;
    if (isUnwritten)
        WriteByte(buffer.begin, buffer.first);
    if (!call.returned)
        return;
    std::array<char, kGuard> behind{};
    const bool isOverrun = isUndisturbed &&
                           crossings::ReadMemory(buffer.begin + buffer.size, behind.data(), buffer.guard) &&
                           std::memcmp(behind.data(), buffer.behind.data(), buffer.guard) != 0;
    const std::size_t length = std::strlen(text.data());
    if (isOverrun)
        mFindings.Add(Named(kHostServiceRules, "host-overrun"), call,
                      {{"buffer", name}, {"size", std::to_string(buffer.size)}});
    else if (isUnwritten)
        mFindings.Add(Named(kHostServiceRules, "host-text-unfilled"), call, {{"buffer", name}});
    else if (isRead && length == buffer.size)
        mFindings.Add(Named(kHostServiceRules, "host-text-unterminated"), call,
                      {{"buffer", name}, {"size", std::to_string(buffer.size)}});
    else if (isRead)
        JudgeText(buffer, {text.data(), length});
}

// The buffers of a call are judged in reverse: the file name of a model, then its path.
void HostTextChecks::JudgeText(const Buffer &buffer, std::string_view text) {
    const Crossing &call = *buffer.call;
    if (FindMalformed(text) != std::string_view::npos)
        return mFindings.Add(Named(kHostServiceRules, "host-text-encoding"), call,
                             {{"buffer", std::string(buffer.name)}, {"text", Printable(text)}});
    const std::string_view service = call.what.name;
    if (service == "getSystemPath")
        return CheckFolder(call, std::string(text));
    if (service != "getAircraftModel")
        return;
    if (buffer.name == "outFileName") {
        mModel = text;
        return;
    }
    const bool isFull = mModel && text.starts_with('/') && text.substr(text.rfind('/') + 1) == *mModel;
    if (mModel && !isFull && !(text.empty() && mModel->empty()))
        mFindings.Add(Named(kHostServiceRules, "host-model-path"), call,
                      {{"path", Quoted(text)}, {"name", Quoted(*mModel)}});
}

void HostTextChecks::BeforeTextures(const Crossing &call) {
    const auto count = static_cast<std::size_t>(std::max(call["count"].integer, 0));
    if (call["textures"].pointer)
        Watch(call, "textures", call["textures"].pointer, count * sizeof(int), false);
}

// ---- Folders

void HostTextChecks::CheckFolder(const Crossing &call, const std::string &folder) {
    if (!folder.empty() && !folder.ends_with('/'))
        mFindings.Add(Named(kHostServiceRules, "host-folder-separator"), call, {{"folder", Quoted(folder)}});
    else if (folder != mFolder)
        mFindings.Add(Named(kHostServiceRules, "host-folder-differs"), call,
                      {{"folder", Quoted(folder)}, {"before", Quoted(mFolder)}});
}

void HostTextChecks::BeforeStart(const Crossing &call) { mFolder = crossings::WholeText(call["path"]); }

} // namespace host
