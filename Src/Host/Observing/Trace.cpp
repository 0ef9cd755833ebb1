// The trace's file and filters; see Trace.h.
#include "Trace.h"

#include "Common/NearestName.h"
#include "Common/UsageError.h"
#include "Crossings/Callback.h"
#include "Crossings/Prototypes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fnmatch.h>

namespace host {
namespace {

using crossings::Crossing;

bool Matches(const std::string &pattern, const std::string &text) {
    return fnmatch(pattern.c_str(), text.c_str(), FNM_CASEFOLD) == 0;
}

bool MatchesAny(const std::vector<std::string> &patterns, const std::string &text) {
    return std::any_of(patterns.begin(), patterns.end(),
                       [&text](const std::string &pattern) { return Matches(pattern, text); });
}

template <class Names>
bool IsMatched(const std::string &pattern, const Names &names) {
    return std::any_of(names.begin(), names.end(),
                       [&pattern](const std::string &name) { return Matches(pattern, name); });
}

// Plugins' own functions have other names.
bool IsOfInterface(const std::string &pattern) { return Matches("AVSK*", pattern) || Matches("AVPlugin*", pattern); }

// The patterns that match none of the interface's or OpenGL's names; callbacks may have such names.
std::vector<std::string> UnknownFunctions(const std::vector<std::string> &patterns) {
    const std::vector<std::string> names = crossings::PrototypeNames();
    std::vector<std::string> unknown;
    for (const std::string &pattern : patterns) {
        if (IsMatched(pattern, names) || IsMatched(pattern, crossings::OpenGLNames()))
            continue;
        if (IsOfInterface(pattern))
            throw UsageError("--trace-function: there is no function, callback type or entry point '" + pattern + "'" +
                             DidYouMean(pattern, names));
        unknown.push_back(pattern);
    }
    return unknown;
}

} // namespace

Trace::Trace(const TraceOptions &options)
    : mOptions(options), mFile(options.file), mPlugins{"host"}, mUnknown(UnknownFunctions(options.functions)) {
    if (!mFile.IsOpen())
        throw UsageError("--trace: cannot write '" + options.file + "' (" + std::strerror(errno) +
                         "): name a file in a folder that exists and is writable");
    mWriter = options.file.ends_with(".json") ? MakeJsonWriter(mFile) : MakeTextWriter(mFile);
    crossings::AddObserver(*this);
}

Trace::~Trace() {
    if (!mIsFinished)
        Finish();
}

std::vector<std::string> Trace::Finish() {
    crossings::RemoveObserver(*this);
    mWriter.reset(); // writes the end
    std::vector<std::string> faults;
    mIsFinished = true;
    if (!mFile.Close())
        faults.push_back("--trace: '" + mOptions.file + "' is not complete: writing it failed");
    for (const std::string &pattern : mOptions.plugins) {
        if (!IsMatched(pattern, mPlugins))
            faults.push_back("--trace-plugin: no plugin '" + pattern + "' was started" +
                             DidYouMean(pattern, std::vector<std::string>(mPlugins.begin(), mPlugins.end())));
    }
    for (const std::string &pattern : mUnknown) {
        if (IsMatched(pattern, mCallbacks))
            continue;
        std::vector<std::string> names = crossings::PrototypeNames();
        for (const std::string &name : crossings::OpenGLNames())
            names.push_back(name);
        names.insert(names.end(), mCallbacks.begin(), mCallbacks.end());
        faults.push_back("--trace-function: no function is called '" + pattern +
                         "', and no callback of that name was called" + DidYouMean(pattern, names));
    }
    return faults;
}

// Whose calls they are is not known, so a filter for plugins leaves them out.
void Trace::TakeForeign() {
    mForeign.Take([this](const crossings::Prototype &function, int thread) {
        if (mOptions.plugins.empty() && (mOptions.functions.empty() || MatchesAny(mOptions.functions, function.name)))
            mWriter->Foreign(function, thread, static_cast<int>(mShown.size()));
    });
}

void Trace::Begins(const Crossing &crossing) {
    if (mForeign.IsAny())
        TakeForeign();
    NoteNames(crossing);
    if (!IsWanted(crossing))
        return;
    mWriter->Begin(crossing, static_cast<int>(mShown.size()));
    mShown.push_back(&crossing);
}

void Trace::Ends(const Crossing &crossing) {
    if (mForeign.IsAny())
        TakeForeign();
    if (crossing.IsStart())
        mPlugins.insert(crossings::LabelOf(crossing.plugin));
    if (!mShown.empty() && mShown.back() == &crossing) {
        mShown.pop_back();
        mWriter->End(crossing, static_cast<int>(mShown.size()));
    }
    if (crossing.depth == 0)
        mFile.Flush();
}

void Trace::NoteNames(const Crossing &crossing) {
    if (crossing.IsStart())
        mPlugins.insert(crossings::LabelOf(crossing.plugin)); // the folder's name
    if (!mUnknown.empty() && crossing.callback)
        mCallbacks.insert(crossings::NameOf(*crossing.callback));
}

bool Trace::IsWanted(const Crossing &crossing) const {
    if (!mOptions.functions.empty() && !MatchesAny(mOptions.functions, crossing.what.name) &&
        !(crossing.callback && MatchesAny(mOptions.functions, crossings::NameOf(*crossing.callback))))
        return false;
    return mOptions.plugins.empty() || MatchesAny(mOptions.plugins, crossings::LabelOf(crossing.plugin)) ||
           (crossing.outer && MatchesAny(mOptions.plugins, crossings::LabelOf(crossing.outer->plugin)));
}

} // namespace host
