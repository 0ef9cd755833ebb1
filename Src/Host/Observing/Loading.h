// Says on standard error why a plugin was not loaded or does not work: one line
// for each fault. The library's own log says little, and nothing of files that
// it does not look for.
#ifndef AVSK_HOST_OBSERVING_LOADING_H
#define AVSK_HOST_OBSERVING_LOADING_H

#include "Crossings/Crossing.h"
#include "Elf/PluginFiles.h"

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace host {

class ObservedHost;

// What is wrong with a plugin that needs a symbol or a library which nobody has:
// "needs AVSKFoo, which nothing exports; did you mean 'AVSKFood'?"
std::string SymbolFault(const std::string &symbol);
std::string LibraryFault(const std::string &library);

class Loading : public crossings::Observer {
  public:
    explicit Loading(const ObservedHost &host);
    ~Loading() override;
    Loading(const Loading &) = delete;
    Loading &operator=(const Loading &) = delete;

    // Called with the path of the plugin and the text of each fault.
    void OnFault(std::function<void(const std::string &path, const std::string &fault)> notify) {
        mNotify = std::move(notify);
    }

    crossings::Interest InterestIn(const crossings::Prototype &function) const override;
    void Begins(const crossings::Crossing &crossing) override;
    void Ends(const crossings::Crossing &crossing) override;

  private:
    // A plugin whose AVPluginStart returned.
    struct Started {
        std::string path;
        bool accepted;
        std::string name;
        std::string signature;
    };

    void NoteStart(const crossings::Crossing &crossing);
    void Report(const std::string &folder, PluginFolder kind);
    void ReportStart(const Started &started);
    // Why the dynamic linker did not load a file.
    std::string ReasonOf(const std::string &path) const;
    void Say(const std::string &path, const std::string &fault);

    const ObservedHost &mHost;
    std::vector<Started> mStarted;
    bool mReloads = false; // the plugins of the root
    bool mReasonFollows = false;
    std::vector<std::string> mReasons; // of the dynamic linker, as the library logged them
    std::set<std::string> mSaid;
    std::function<void(const std::string &path, const std::string &fault)> mNotify;
};

} // namespace host

#endif
