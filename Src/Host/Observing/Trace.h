// Writes every call across the library's border to a file, nested, with its
// arguments, result and duration: as text for a reader, or as JSON that trace
// viewers open.
#ifndef AVSK_HOST_OBSERVING_TRACE_H
#define AVSK_HOST_OBSERVING_TRACE_H

#include "Crossings/Crossing.h"
#include "ObservingOptions.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// One form of trace. Calls that the filters leave out do not come here, so the
// depth is that among the others.
class TraceWriter {
  public:
    virtual ~TraceWriter() = default;
    virtual void Begin(const crossings::Crossing &crossing, int depth) = 0;
    virtual void End(const crossings::Crossing &crossing, int depth) = 0;
};

// Line by line, so that nothing is missing when a plugin ends the run. They do
// not own the file.
std::unique_ptr<TraceWriter> MakeTextWriter(std::FILE *file);
std::unique_ptr<TraceWriter> MakeJsonWriter(std::FILE *file);

class Trace : public crossings::Observer {
  public:
    // JSON if the file's name ends so. Throws UsageError if it cannot be written.
    explicit Trace(const TraceOptions &options);
    ~Trace() override;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

  private:
    bool IsWanted(const crossings::Crossing &crossing) const;

    const TraceOptions mOptions;
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> mFile;
    std::unique_ptr<TraceWriter> mWriter;
    std::vector<const crossings::Crossing *> mShown; // those that have begun and not ended
};

} // namespace host

#endif
