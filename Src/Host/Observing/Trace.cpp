// The trace's file and filters; see Trace.h.
#include "Trace.h"

#include "Common/UsageError.h"
#include "Crossings/Callback.h"
#include "Crossings/Format.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fnmatch.h>

namespace host {
namespace {

using crossings::Crossing;

bool Matches(const std::vector<std::string> &patterns, const std::string &text) {
    return std::any_of(patterns.begin(), patterns.end(), [&text](const std::string &pattern) {
        return fnmatch(pattern.c_str(), text.c_str(), FNM_CASEFOLD) == 0;
    });
}

} // namespace

Trace::Trace(const TraceOptions &options)
    : mOptions(options), mFile(std::fopen(options.file.c_str(), "w"), std::fclose) {
    if (!mFile)
        throw UsageError("--trace: cannot write '" + options.file + "' (" + std::strerror(errno) +
                         "): name a file in a folder that exists and is writable");
    std::setvbuf(mFile.get(), nullptr, _IOLBF, BUFSIZ);
    mWriter = options.file.ends_with(".json") ? MakeJsonWriter(mFile.get()) : MakeTextWriter(mFile.get());
    crossings::AddObserver(*this);
}

Trace::~Trace() {
    crossings::RemoveObserver(*this);
    mWriter.reset();
    if (std::ferror(mFile.get()) != 0 || std::fflush(mFile.get()) != 0)
        std::fprintf(stderr, "avsk: the trace '%s' is not complete: writing it failed\n", mOptions.file.c_str());
}

void Trace::Begins(const Crossing &crossing) {
    if (!IsWanted(crossing))
        return;
    mWriter->Begin(crossing, static_cast<int>(mShown.size()));
    mShown.push_back(&crossing);
}

void Trace::Ends(const Crossing &crossing) {
    if (mShown.empty() || mShown.back() != &crossing)
        return;
    mShown.pop_back();
    mWriter->End(crossing, static_cast<int>(mShown.size()));
}

bool Trace::IsWanted(const Crossing &crossing) const {
    if (!mOptions.functions.empty() && !Matches(mOptions.functions, crossing.what.name) &&
        !(crossing.callback && Matches(mOptions.functions, crossings::NameOf(*crossing.callback))))
        return false;
    return mOptions.plugins.empty() || Matches(mOptions.plugins, crossings::LabelOf(crossing.plugin)) ||
           (crossing.outer && Matches(mOptions.plugins, crossings::LabelOf(crossing.outer->plugin)));
}

} // namespace host
