// Finds what violates the rules about a plugin's life: the answers of its start,
// calls at the wrong time or on other threads, what it leaves, and exceptions.
#ifndef AVSK_HOST_RULES_LIFE_CHECKS_H
#define AVSK_HOST_RULES_LIFE_CHECKS_H

#include "Findings.h"

#include "Crossings/Crossing.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace host {

class Ledger;

class LifeChecks : public crossings::Observer {
  public:
    // One at a time. The ledger must be notified before this.
    LifeChecks(Findings &findings, const Ledger &owners);
    ~LifeChecks() override;
    LifeChecks(const LifeChecks &) = delete;
    LifeChecks &operator=(const LifeChecks &) = delete;

    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;
    // Adds the calls on other threads until now. Called on the main thread.
    void TakeForeign();
    // Adds the calls on other threads, and the files that are still mapped.
    void Finish();

    // What each open descriptor leads to: "/dev/null", "socket:[12]".
    using Descriptors = std::map<int, std::string>;

  private:
    struct Plugin {
        std::string label; // before its start returned
        std::string file;  // as it was opened
        Descriptors before;
        Descriptors own;               // that appeared in its entry points
        std::set<std::string> threads; // before its start
    };

    void CheckStray(const crossings::Crossing &crossing);
    void BeginEntryPoint(const crossings::Crossing &crossing);
    void EndEntryPoint(const crossings::Crossing &crossing);
    void EndStart(const crossings::Crossing &crossing);
    void CheckLeft(const crossings::Crossing &stop);
    void CheckDescriptors(const crossings::Crossing &stop, const Plugin &plugin);
    void CheckThreads(const crossings::Crossing &stop, const Plugin &plugin);
    void CheckException(const crossings::Crossing &crossing);

    Findings &mFindings;
    const Ledger &mOwners;
    std::map<AVSKPluginID, Plugin> mPlugins;      // that were started
    std::map<std::string, std::string> mLabels;   // by file
    std::map<std::string, std::string> mUnloaded; // labels by resolved path, of what must be unmapped at the end
    std::string mRefused;                         // the file of the last plugin that refused to start
    std::vector<Descriptors> mOpen;               // at the begins of the entry points under way
    bool mPasses = false;                         // an exception leaves one call after the other
    bool mHasThrown = false;
};

} // namespace host

#endif
