// The record of a run: what was found and what the plugins made, for `avsk check`.
// Each line of the file is written when it is known, so that nothing is lost if a
// plugin ends the process.
#ifndef AVSK_HOST_SESSION_RECORD_H
#define AVSK_HOST_SESSION_RECORD_H

#include "Inventory.h"

#include "Rules/Findings.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace host {

// What a record and `avsk check --json` both say of a finding.
nlohmann::json FindingJson(const Finding &finding);

class Record {
  public:
    // Throws UsageError if the file cannot be written.
    explicit Record(const std::string &file);
    ~Record();
    Record(const Record &) = delete;
    Record &operator=(const Record &) = delete;

    void Add(const Finding &finding);
    void Add(const Inventory &inventory);
    // Why a plugin was not loaded or does not work.
    void AddFault(const std::string &path, const std::string &fault);
    // A step that could not be executed.
    void AddFailure(const std::string &step, const std::string &why);
    // What could not be judged.
    void AddNote(const std::string &note);
    // The run has come to its end. The findings are those that were added, with their counts.
    void End(const std::vector<Finding> &findings);

  private:
    int mFile;
};

// A record that was read.
struct Recorded {
    struct Pair {
        std::string about; // a path, or a step
        std::string text;
    };
    std::vector<Finding> findings;
    std::vector<Inventory> inventories;
    std::vector<Pair> faults;
    std::vector<Pair> failures;
    std::vector<std::string> notes;
    bool isWhole = false; // the run came to its end
};
Recorded ReadRecord(const std::string &file);

} // namespace host

#endif
