// Writes every call across the library's border to a file, with arguments, result
// and duration: as indented text, or as JSON for trace viewers.
#ifndef AVSK_HOST_OBSERVING_TRACE_H
#define AVSK_HOST_OBSERVING_TRACE_H

#include "ForeignCalls.h"
#include "ObservingOptions.h"
#include "TraceFile.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A format of the trace. It gets only calls that pass the filters; the depth
// counts only these.
class TraceWriter {
  public:
    virtual ~TraceWriter() = default;
    virtual void Begin(const crossings::Crossing &crossing, int depth) = 0;
    virtual void End(const crossings::Crossing &crossing, int depth) = 0;
    // A call on another thread, of which nothing else is known.
    virtual void Foreign(const crossings::Prototype &function, int thread, int depth) = 0;
};

// The writers do not own the sink.
std::unique_ptr<TraceWriter> MakeTextWriter(TraceSink &file);
std::unique_ptr<TraceWriter> MakeJsonWriter(TraceSink &file);

class Trace : public crossings::Observer {
  public:
    // JSON if the file's name ends in .json. Throws UsageError if it cannot be
    // written or a filter names a function that does not exist.
    explicit Trace(const TraceOptions &options);
    ~Trace() override;

    crossings::Interest InterestInOpenGL(const crossings::Prototype & /*function*/) const override {
        return crossings::Interest::All;
    }
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

    // Closes the file. A line for each reason why the trace is not what was asked
    // for: it could not be written, or a filter matched nothing.
    std::vector<std::string> Finish();

  private:
    bool IsWanted(const crossings::Crossing &crossing) const;
    void TakeForeign();
    void NoteNames(const crossings::Crossing &crossing);

    const TraceOptions mOptions;
    TraceFile mFile;
    bool mIsFinished = false;
    std::unique_ptr<TraceWriter> mWriter;
    ForeignCalls mForeign;
    std::set<std::string> mPlugins; // names of plugins that were started
    // Patterns that match no function of the interface, and the names of callbacks that they may match.
    std::vector<std::string> mUnknown;
    std::set<std::string> mCallbacks;
    std::vector<const crossings::Crossing *> mShown; // those under way
};

} // namespace host

#endif
